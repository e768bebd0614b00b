// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILPalette.h"

#include <QColor>
#include <QImage>
#include <QList>
#include <QString>

namespace orvimage {

// A line of text under a bar; its baseline stands `offset` font heights under that of the first.
struct ColorBarTextLine
{
    double offset = 0.0;
    QString text;
};

struct StackedColorBarOptions
{
    QList<ColorBarTextLine> lines; // what the numbers are
    int fontPixels = 14;
    QColor text = Qt::black;
    QColor background = Qt::white;
};

// The colours of a palette between its two limits, the upper limit on top, in QImage::Format_ARGB32. Height stands for
// value: a logarithmic palette bends the colours, so that half way up is the middle of the range. Null without a size.
QImage colorBarStrip(const CILPalette& palette, int width, int height);

// A number at an end of a bar, with four significant digits, as "0.125" or "1.25×10⁷"; "-" for what is not finite.
QString colorBarNumber(double value);

// An upright bar of `height` pixels with the text of the maximum above, that of the minimum beneath and the unit's
// lines under that, the first one's baseline half a font height under the minimum's box, in QImage::Format_ARGB32. Text
// needs a QGuiApplication, which may be the "offscreen" one; without it the bar comes alone. A height below 2 counts
// as 2.
QImage drawStackedColorBar(const CILPalette& palette, double minimum, double maximum, int height,
                           const StackedColorBarOptions& options);

} // namespace orvimage
