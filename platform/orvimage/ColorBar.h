// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILPalette.h"

#include <QColor>
#include <QImage>
#include <QString>
#include <QStringList>

namespace orvimage {

struct ColorBarOptions
{
    Qt::Orientation orientation = Qt::Vertical; // vertical: beside a picture, the maximum on top; horizontal: under it
    int fontPixels = 14;
    QStringList unitLines; // what the numbers are, such as "Radiance" and "p/s/cm²/sr"
    QColor text = Qt::black;
    QColor background = Qt::white;
};

// Part of the bar, 0 to 1 from its lower end, at which a value stands. The bar shows the whole table evenly, so a
// logarithmic palette bends the scale instead of the colours.
double colorBarPosition(const CILPalette& palette, double value, double minimum, double maximum);

// A colour bar of that length in pixels from minimum to maximum, with ticks at round values, a common power of ten and
// the unit's lines; in QImage::Format_ARGB32. Text needs a QGuiApplication, which may be the "offscreen" one; without
// it the bar comes without text.
QImage drawColorBar(const CILPalette& palette, double minimum, double maximum, int length,
                    const ColorBarOptions& options);

// The picture with the bar beside or under it.
QImage withColorBar(const QImage& picture, const CILPalette& palette, double minimum, double maximum,
                    const ColorBarOptions& options);

} // namespace orvimage
