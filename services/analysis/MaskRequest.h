// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Which pixels an analysis takes.
struct MaskRequest
{
    enum class Kind
    {
        None, // every pixel
        Photograph,
        File,
        Rectangle,
        Ellipse,
        Region
    };
    Kind kind = Kind::None;
    bool asked = false; // by the user; else the kind is the default
    QString file;
    QString region; // as analysedRegion() takes it
    // Of a rectangle and of the rectangle around an ellipse, in pixels of the analysis: x from the left, y from the
    // top.
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    // Percent of the photograph's range; below 0: found automatically.
    double threshold = -1.0;
};
