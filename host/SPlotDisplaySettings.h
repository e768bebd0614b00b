// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>

// How a line of a plot is drawn.
struct SPlotDisplaySettings
{
    QColor color;           // an invalid one is that of the plot's texts
    double width = 1.5;     // pixels
    bool showPoints = true; // a dot at each point; a point without a neighbour always has one
    bool dashed = false;
};
