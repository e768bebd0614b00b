// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

struct TiffInfo;

// Memory of an import, estimated from headers: a small file can claim, and hold, images of gigabytes.

// Bytes that reading a page takes at most: the image, and the samples that are decoded for it, which may lie in one
// strip. `info.type` must be known.
qint64 tiffMemory(const TiffInfo& info);

// What is known of an import before a pixel is read.
struct ImportSize
{
    long width = 0; // of every image, as it is stored
    long height = 0;
    qint64 readPixels = 0; // of the largest image, as it is read
    qint64 readBytes = 0;  // to read one image, itself included, and its dark image
    int pixelBytes = 0;    // of the widest image
    int corrections = 0;   // dark image, flat field: 0 to 2
    bool sorted = false;   // pixels are copied for the background
    bool resized = false;  // images are brought to another size
    qint64 photograph = 0; // bytes to load the photograph; 0 for the mean image
};

// Bytes that the import takes at its peak: an image as it is read, corrected and padded to a square, beside the
// corrections and the photograph.
qint64 importMemory(const ImportSize& size);

// A sentence that such an import is refused for, when it takes more than `lMost` bytes; else empty.
QString reasonAgainstMemory(const ImportSize& size, qint64 lMost);
