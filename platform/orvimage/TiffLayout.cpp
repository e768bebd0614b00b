// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/TiffLayout.h"

#include <algorithm>

namespace orvimage {

namespace {

constexpr std::uint64_t kMaxPixelBytes = std::uint64_t{4} << 30;
constexpr std::uint32_t kMaxSide = 0x7fffffff;
// No compression in use packs photographs and maps better than deflate packs zeros (1032 to 1); twice that is allowed,
// and a small amount besides, so that a tiny file can still hold an empty image.
constexpr std::uint64_t kMaxCompression = 2064;
constexpr std::uint64_t kAllowance = std::uint64_t{1} << 20;

std::uint16_t field(TIFF* tiff, std::uint32_t tag, std::uint16_t absent)
{
    std::uint16_t value = absent;
    return TIFFGetFieldDefaulted(tiff, tag, &value) == 1 ? value : absent;
}

// Bytes that the page's blocks (strips or tiles, padding included) have when decoded.
std::uint64_t decodedBytes(TiffFile& file, const TiffLayout& layout)
{
    TIFF* tiff = file.handle();
    if (!layout.tiled) {
        const std::uint64_t rowBits = std::uint64_t{layout.width} * layout.bits * layout.samples;
        return (rowBits + 7) / 8 * layout.height;
    }
    const tmsize_t tile = TIFFTileSize(tiff);
    return tile <= 0 ? 0 : static_cast<std::uint64_t>(tile) * TIFFNumberOfTiles(tiff);
}

} // namespace

ORVDataTypes TiffLayout::pixelType() const
{
    if (!isPlain()) {
        return bits <= 16 && sampleKind() == TiffInfo::Samples::Unsigned ? ORVTYPE_BYTE : ORVTYPE_NONE;
    }
    switch (sampleKind()) {
    case TiffInfo::Samples::Unsigned:
        return bits == 8                  ? ORVTYPE_BYTE
               : bits == 16               ? ORVTYPE_USHORT
               : bits == 32 || bits == 64 ? ORVTYPE_DOUBLE
                                          : ORVTYPE_NONE;
    case TiffInfo::Samples::Signed:
        return bits == 8 || bits == 16 || bits == 32 ? ORVTYPE_INT : bits == 64 ? ORVTYPE_DOUBLE : ORVTYPE_NONE;
    case TiffInfo::Samples::Float:
        return bits == 16 || bits == 32 ? ORVTYPE_FLOAT : bits == 64 ? ORVTYPE_DOUBLE : ORVTYPE_NONE;
    case TiffInfo::Samples::Other:
        break;
    }
    return ORVTYPE_NONE;
}

TiffInfo::Samples TiffLayout::sampleKind() const
{
    switch (format) {
    case SAMPLEFORMAT_UINT:
    case SAMPLEFORMAT_VOID: // untyped data: read as numbers without sign, the default of the format
        return TiffInfo::Samples::Unsigned;
    case SAMPLEFORMAT_INT:
        return TiffInfo::Samples::Signed;
    case SAMPLEFORMAT_IEEEFP:
        return TiffInfo::Samples::Float;
    default:
        return TiffInfo::Samples::Other;
    }
}

bool readTiffLayout(TiffFile& file, int page, TiffLayout* layout)
{
    TIFF* tiff = file.handle();
    if (page < 0 || !file.goToPage(page)) {
        const int pages = static_cast<int>(TIFFNumberOfDirectories(tiff));
        return page >= 0 && page < pages
                   ? file.fail(QStringLiteral("page %1 cannot be read").arg(page))
                   : file.fail(QStringLiteral("there is no page %1, only %2").arg(page).arg(pages));
    }
    TiffLayout read;
    if (TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &read.width) != 1 ||
        TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &read.height) != 1) {
        return file.fail(QStringLiteral("the image has no width or height"));
    }
    read.bits = field(tiff, TIFFTAG_BITSPERSAMPLE, 1);
    read.format = field(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    read.samples = field(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    read.planar = field(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    read.compression = field(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    read.orientation = field(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    // No default in the format; a page without it is taken for grey, or for colours when it has as many samples.
    const std::uint16_t guess = read.samples >= 3 && read.samples <= 4 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
    read.photometric = guess;
    TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &read.photometric);
    read.tiled = TIFFIsTiled(tiff) != 0;
    *layout = read;
    return true;
}

bool checkTiffLayout(TiffFile& file, const TiffLayout& layout)
{
    if (layout.width == 0 || layout.height == 0 || layout.samples == 0) {
        return file.fail(QStringLiteral("the image has no pixels"));
    }
    const ORVDataTypes type = layout.pixelType();
    if (type == ORVTYPE_NONE) {
        return file.fail(
            QStringLiteral("%1 bit samples of format %2 are not supported").arg(layout.bits).arg(layout.format));
    }

    const std::uint64_t pixels = std::uint64_t{layout.width} * layout.height;
    const std::uint64_t sampleBytes =
        layout.isPlain() ? std::max<std::uint64_t>(layout.bits / 8U, CILImage::bytesPerPixel(type)) : 4U;
    const QString size = QStringLiteral("%1 x %2 x %3").arg(layout.width).arg(layout.height).arg(layout.samples);
    if (layout.width > kMaxSide || layout.height > kMaxSide || pixels > kMaxPixelBytes / sampleBytes / layout.samples) {
        return file.fail(QStringLiteral("the header claims %1 samples, more than 4 GiB").arg(size));
    }

    const std::uint64_t decoded = decodedBytes(file, layout);
    const bool packed = layout.compression != COMPRESSION_NONE;
    const std::uint64_t most = packed ? file.fileSize() * kMaxCompression + kAllowance : file.fileSize();
    const std::uint64_t raster = layout.isPlain() ? 0 : pixels * 4;
    if (decoded == 0 || decoded > most ||
        raster > std::max(file.fileSize() * kMaxCompression, std::uint64_t{64} << 20)) {
        return file.fail(
            QStringLiteral("the header claims %1 samples of %2 bits, more than a file of %3 bytes can hold")
                .arg(size)
                .arg(layout.bits)
                .arg(file.fileSize()));
    }
    return true;
}

} // namespace orvimage
