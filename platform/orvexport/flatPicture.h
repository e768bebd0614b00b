// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>

namespace orvexport {

// The pixels of a picture without what shines through, on white, as QImage::Format_RGB32; a ratio of device pixels of
// 1. A null picture where there is no memory.
QImage flatPicture(const QImage& picture);

} // namespace orvexport
