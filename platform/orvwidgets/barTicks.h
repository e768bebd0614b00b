// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILPalette.h"

#include <QImage>
#include <QString>

#include <vector>

namespace orvwidgets {

struct BarTick
{
    double place = 0.0; // 0 to 1 from the lower end of the bar
    QString text;
};

// Ticks at round values inside a bar of `length` pixels, apart from each other and from the ends by two heights of the
// font; the ends have numbers of their own.
std::vector<BarTick> barTicks(const CILPalette& palette, double minimum, double maximum, double length,
                              double fontHeight);

// The whole table evenly from bottom to top, one pixel wide.
QImage barStrip(const CILPalette& palette);

} // namespace orvwidgets
