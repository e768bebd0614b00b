// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QImage>

namespace orvexport {

// Files that draw one picture, a point wide and high for each pixel. `picture` is QImage::Format_RGB32 and not empty.

// A metafile with a placeable header, at most 32767 pixels a side. Layout: [MS-WMF] "Windows Metafile Format", sections
// 2.2.2.3 (DeviceIndependentBitmap), 2.3.1.6 (META_STRETCHDIB) and 2.3.2 (headers and end).
QByteArray metafileBytes(const QImage& picture);

// An enhanced metafile. Layout: [MS-EMF] "Enhanced Metafile Format", sections 2.3.1.7 (EMR_STRETCHDIBITS) and 2.3.4
// (EMR_HEADER, EMR_EOF).
QByteArray enhancedMetafileBytes(const QImage& picture);

} // namespace orvexport
