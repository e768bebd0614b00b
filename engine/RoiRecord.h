// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// The regions of interest of one unmixed image: keys and values side by side, and the number of the concentration map
// that they belong to.
struct RoiRecord
{
    QStringList keys;
    QStringList values;
    QString concentrationMap;
};
