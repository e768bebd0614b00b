// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

class QImage;

namespace orvimage {

// A picture as a PNG file, weakly compressed: a stronger compression takes longer than a fit and saves a quarter of the
// bytes. Grey pictures (QImage::Format_Grayscale8) stay so, others become red, green and blue; nothing shines through.
// Between rows it passes cancellation points, as a large picture takes a tenth of a second. No bytes of an empty one.
QByteArray pngBytes(const QImage& picture);

} // namespace orvimage
