// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

#include <QString>
#include <QStringList>

// The units as the command line names them.
class UnitNames
{
public:
    // "counts", "radiance", "radiant-efficiency", "efficiency", by number.
    static QStringList options();
    // By option name or shown text, without regard to case; -1 when there is none.
    static int fromText(const QString& strText);
    // Shown text: "Counts", "Radiance", "Radiant Efficiency", "Efficiency".
    static QString text(int nUnit);
    // Physical unit for an axis or a colour bar.
    static QString quantity(int nUnit);
};
