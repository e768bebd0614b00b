// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QString>
#include <QVector>

namespace orvimage {

// A named table of 256 opaque colours, from the lower end of a range to the upper.
struct ColorTable
{
    QString name;
    QVector<QRgb> colors;
};

// All tables, in the order of their indices. Made once, on first use.
const QVector<ColorTable>& colorTables();

// Lightness of a colour, 0 to 1, in the Oklab space (B. Ottosson, A perceptual color space for image processing, 2020).
double oklabLightness(QRgb color);

} // namespace orvimage
