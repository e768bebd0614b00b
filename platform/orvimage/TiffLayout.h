// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvimage/TiffFile.h"
#include "platform/orvimage/TiffIo.h"

#include <cstdint>

namespace orvimage {

// How a page's pixels lie in the file.
struct TiffLayout
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t bits = 1;
    std::uint16_t format = SAMPLEFORMAT_UINT;
    std::uint16_t samples = 1;
    std::uint16_t planar = PLANARCONFIG_CONTIG;
    std::uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    std::uint16_t compression = COMPRESSION_NONE;
    std::uint16_t orientation = ORIENTATION_TOPLEFT;
    bool tiled = false;

    bool isRgb() const { return photometric == PHOTOMETRIC_RGB && samples >= 3; }
    bool isGrey() const { return photometric == PHOTOMETRIC_MINISBLACK || photometric == PHOTOMETRIC_MINISWHITE; }
    // Samples that are whole numbers of bytes with a plain meaning are decoded here, the rest (colour maps, bits,
    // YCbCr, CMYK and so on) by libtiff's own conversion to colours.
    bool isPlain() const { return bits >= 8 && (isGrey() || isRgb()); }
    // Type of the image, ORVTYPE_NONE for samples that are not supported.
    ORVDataTypes pixelType() const;
    TiffInfo::Samples sampleKind() const;
};

// Goes to the page and reads its layout. False with a reason in the file.
bool readTiffLayout(TiffFile& file, int page, TiffLayout* layout);

// Whether the page can be taken for what its header says; called before memory is allocated for pixels.
bool checkTiffLayout(TiffFile& file, const TiffLayout& layout);

} // namespace orvimage
