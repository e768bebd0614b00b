// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QString>

// One layer of a false-colour composite: a concentration map, or the picture behind the maps.
struct CompositeChannel
{
    double minFraction = 0.1; // lower end of the display window as a fraction of the data range, 0 to 1
    double maxFraction = 0.9; // its upper end
    double brightness = 1.0;  // weight of the layer, 0 to 1
    QColor color;
    bool logScale = false;
    QString label;
};
