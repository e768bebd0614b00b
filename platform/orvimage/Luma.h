// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRgb>

namespace orvimage {

// Luma of ITU-R BT.601, rounded to nearest.
inline int luma(QRgb color)
{
    return (299 * qRed(color) + 587 * qGreen(color) + 114 * qBlue(color) + 500) / 1000;
}

} // namespace orvimage
