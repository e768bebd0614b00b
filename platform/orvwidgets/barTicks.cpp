// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/barTicks.h"

#include "platform/orvimage/ColorBar.h"
#include "platform/orvimage/StackedColorBar.h"
#include "platform/orvimage/TickMarks.h"

#include <algorithm>

namespace orvwidgets {

namespace {

constexpr int kStripHeight = 256;
constexpr int kMostTicks = 9;
constexpr double kApart = 2.0; // font heights

} // namespace

std::vector<BarTick> barTicks(const CILPalette& palette, double minimum, double maximum, double length,
                              double fontHeight)
{
    std::vector<BarTick> ticks;
    if (!(maximum > minimum) || !(fontHeight > 0.0)) {
        return ticks;
    }
    const double apart = kApart * fontHeight;
    const int most = std::clamp(static_cast<int>(length / apart), 1, kMostTicks);
    double last = 0.0;
    for (const double value : orvimage::tickValues(minimum, maximum, most)) {
        const double place = orvimage::colorBarPosition(palette, value, minimum, maximum);
        if ((place - last) * length >= apart && (1.0 - place) * length >= apart) {
            ticks.push_back({place, orvimage::colorBarNumber(value)});
            last = place;
        }
    }
    return ticks;
}

QImage barStrip(const CILPalette& palette)
{
    CILPalette even = palette;
    even.setLogScale(0);
    QImage strip(1, kStripHeight, QImage::Format_RGB32);
    for (int y = 0; y < kStripHeight; ++y) {
        strip.setPixel(0, y, even.colorAt(1.0 - y / (kStripHeight - 1.0)));
    }
    return strip;
}

} // namespace orvwidgets
