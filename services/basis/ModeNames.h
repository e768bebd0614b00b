// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// The run modes as the command line names them: "library", "guided", "automatic", "manual", by number.
class ModeNames
{
public:
    static QString option(int nMode);
    // By name without regard to case; -1 when there is none.
    static int fromText(const QString& strText);
};
