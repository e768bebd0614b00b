// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/PixelTypes.h"
#include "platform/orvimage/TiffFile.h"
#include "platform/orvimage/TiffIo.h"
#include "platform/orvimage/TiffLayout.h"
#include "platform/orvimage/TiffPageReader.h"

#include <QImage>
#include <qfloat16.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <new>
#include <type_traits>
#include <vector>

using orvimage::TiffFile;
using orvimage::TiffLayout;

namespace {

bool report(const QString& path, const QString& reason, QString* error)
{
    if (error != nullptr) {
        *error = path + QStringLiteral(": ") + (reason.isEmpty() ? QStringLiteral("cannot be read") : reason);
    }
    return false;
}

using Combine = TiffReadOptions::Combine;

template <typename Pixel>
bool isNan(Pixel value)
{
    if constexpr (std::is_floating_point_v<Pixel>) {
        return std::isnan(value);
    } else {
        return false;
    }
}

// A pixel of a page into that of the image.
template <typename Pixel>
void put(Combine combine, Pixel value, Pixel& pixel)
{
    if (combine == Combine::Sum) {
        pixel = static_cast<Pixel>(pixel + value);
    } else if (combine == Combine::Replace || value > pixel || isNan(value)) {
        pixel = value;
    }
}

// What is taken from each pixel: one sample, or three of which the luma is made.
struct Channels
{
    std::array<int, 3> sample{0, 0, 0};
    int count = 1;
};

// A strip or tile, or with planes apart the strips or tiles of each channel.
struct Block
{
    std::array<const unsigned char*, 3> channel{}; // first sample of each
    std::size_t stride = 1;                        // samples from one pixel to the next
    std::size_t rowSamples = 0;                    // samples from one row to the next
    std::uint32_t x = 0, y = 0;                    // place of the first pixel in the image
    std::uint32_t width = 0, height = 0;           // pixels inside the image
};

template <typename Sample>
double luma(Sample red, Sample green, Sample blue)
{
    // Sums of thousandths are exact for integers, so that equal channels give their own value.
    return (299.0 * static_cast<double>(red) + 587.0 * static_cast<double>(green) + 114.0 * static_cast<double>(blue)) /
           1000.0;
}

// Decodes a page block by block into an image.
class PageReader
{
public:
    PageReader(TiffFile& file, const TiffLayout& layout, const Channels& channels, bool keepColours, Combine combine)
        : m_file(file), m_layout(layout), m_channels(channels), m_keepColours(keepColours), m_combine(combine)
    {
    }

    bool read(CILImage& out);
    QImage& colours() { return m_colours; }

private:
    bool makeImage(CILImage& out);
    bool readBlocks(CILImage& out);
    bool readBlock(std::uint32_t x, std::uint32_t y, std::uint32_t rows, std::uint32_t rowPixels, Block* block);
    bool decode(std::size_t plane, std::uint32_t x, std::uint32_t y, std::size_t bytes);
    void store(const Block& block, CILImage& out);
    template <typename Sample>
    void storeAs(const Block& block, CILImage& out);
    template <typename Sample>
    void storeColours(const Block& block);
    std::size_t place(std::uint32_t x, std::uint32_t y) const;

    TiffFile& m_file;
    const TiffLayout& m_layout;
    const Channels m_channels;
    const bool m_keepColours;
    const Combine m_combine;
    std::array<std::vector<unsigned char>, 3> m_buffers;
    QImage m_colours;
};

bool PageReader::makeImage(CILImage& out)
{
    if (m_combine != Combine::Replace) {
        const ORVDataTypes type = m_combine == Combine::Sum ? ORVTYPE_DOUBLE : m_layout.pixelType();
        const bool same = out.dataType() == type && out.m_lWidth == static_cast<long>(m_layout.width) &&
                          out.m_lHeight == static_cast<long>(m_layout.height);
        return same || m_file.fail(QStringLiteral("the page has another extent or other pixels than those before"));
    }
    if (out.InitWithType(m_layout.pixelType(), static_cast<long>(m_layout.width), static_cast<long>(m_layout.height)) !=
        EIL_SUCCESS) {
        return m_file.fail(QStringLiteral("there is not enough memory for the image"));
    }
    if (m_keepColours) {
        m_colours = QImage(static_cast<int>(m_layout.width), static_cast<int>(m_layout.height), QImage::Format_ARGB32);
        if (m_colours.isNull()) {
            return m_file.fail(QStringLiteral("there is not enough memory for the image"));
        }
    }
    return true;
}

bool PageReader::read(CILImage& out)
{
    return makeImage(out) && readBlocks(out);
}

bool PageReader::readBlocks(CILImage& out)
{
    TIFF* tiff = m_file.handle();
    std::uint32_t blockWidth = m_layout.width;
    std::uint32_t blockHeight = m_layout.height;
    if (m_layout.tiled) {
        if (TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &blockWidth) != 1 ||
            TIFFGetField(tiff, TIFFTAG_TILELENGTH, &blockHeight) != 1) {
            return m_file.fail(QStringLiteral("the tiles have no size"));
        }
    } else {
        TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &blockHeight);
        blockHeight = std::min(blockHeight, m_layout.height);
    }
    if (blockWidth == 0 || blockHeight == 0) {
        return m_file.fail(QStringLiteral("the strips or tiles have no size"));
    }

    for (std::uint64_t y = 0; y < m_layout.height; y += blockHeight) {
        for (std::uint64_t x = 0; x < m_layout.width; x += blockWidth) {
            const auto left = static_cast<std::uint32_t>(x);
            const auto top = static_cast<std::uint32_t>(y);
            Block block;
            block.width = std::min(blockWidth, m_layout.width - left);
            block.height = std::min(blockHeight, m_layout.height - top);
            // A tile is whole even where it reaches beyond the image; the last strip is not.
            if (!readBlock(left, top, m_layout.tiled ? blockHeight : block.height, blockWidth, &block)) {
                return false;
            }
            store(block, out);
        }
    }
    return true;
}

bool PageReader::readBlock(std::uint32_t x, std::uint32_t y, std::uint32_t rows, std::uint32_t rowPixels, Block* block)
{
    const bool apart = m_layout.planar == PLANARCONFIG_SEPARATE;
    const std::size_t sampleBytes = m_layout.bits / 8U;
    block->x = x;
    block->y = y;
    block->stride = apart ? 1 : m_layout.samples;
    block->rowSamples = block->stride * rowPixels;
    const std::size_t bytes = block->rowSamples * rows * sampleBytes;
    for (int c = 0; c < m_channels.count; ++c) {
        const auto channel = static_cast<std::size_t>(c);
        const auto sample = static_cast<std::size_t>(m_channels.sample[channel]);
        const std::size_t buffer = apart ? channel : 0;
        if (apart || c == 0) {
            m_buffers[buffer].resize(bytes);
            if (!decode(buffer, x, y, bytes)) {
                return false;
            }
        }
        block->channel[channel] = m_buffers[buffer].data() + (apart ? 0 : sample * sampleBytes);
    }
    return true;
}

bool PageReader::decode(std::size_t buffer, std::uint32_t x, std::uint32_t y, std::size_t bytes)
{
    TIFF* tiff = m_file.handle();
    const bool apart = m_layout.planar == PLANARCONFIG_SEPARATE;
    const auto plane = static_cast<std::uint16_t>(apart ? m_channels.sample[buffer] : 0);
    const auto wanted = static_cast<tmsize_t>(bytes);
    tmsize_t got = -1;
    if (m_layout.tiled) {
        got = TIFFTileSize(tiff) == wanted
                  ? TIFFReadEncodedTile(tiff, TIFFComputeTile(tiff, x, y, 0, plane), m_buffers[buffer].data(), wanted)
                  : -1;
    } else {
        got = TIFFReadEncodedStrip(tiff, TIFFComputeStrip(tiff, y, plane), m_buffers[buffer].data(), wanted);
    }
    // Codecs may report an error and still deliver; what they delivered is not to be trusted.
    if (got == wanted && m_file.reason().isEmpty()) {
        return true;
    }
    return m_file.failFor(QStringLiteral("the pixels from row %1 on cannot be read").arg(y));
}

std::size_t PageReader::place(std::uint32_t x, std::uint32_t y) const
{
    const bool right = m_layout.orientation == ORIENTATION_TOPRIGHT || m_layout.orientation == ORIENTATION_BOTRIGHT;
    const bool bottom = m_layout.orientation == ORIENTATION_BOTLEFT || m_layout.orientation == ORIENTATION_BOTRIGHT;
    const std::size_t column = right ? m_layout.width - 1 - x : x;
    const std::size_t row = bottom ? m_layout.height - 1 - y : y;
    return row * m_layout.width + column;
}

void PageReader::store(const Block& block, CILImage& out)
{
    switch (m_layout.sampleKind()) {
    case TiffInfo::Samples::Unsigned:
        return m_layout.bits == 8    ? storeAs<std::uint8_t>(block, out)
               : m_layout.bits == 16 ? storeAs<std::uint16_t>(block, out)
               : m_layout.bits == 32 ? storeAs<std::uint32_t>(block, out)
                                     : storeAs<std::uint64_t>(block, out);
    case TiffInfo::Samples::Signed:
        return m_layout.bits == 8    ? storeAs<std::int8_t>(block, out)
               : m_layout.bits == 16 ? storeAs<std::int16_t>(block, out)
               : m_layout.bits == 32 ? storeAs<std::int32_t>(block, out)
                                     : storeAs<std::int64_t>(block, out);
    case TiffInfo::Samples::Float:
        return m_layout.bits == 16   ? storeAs<qfloat16>(block, out)
               : m_layout.bits == 32 ? storeAs<float>(block, out)
                                     : storeAs<double>(block, out);
    case TiffInfo::Samples::Other:
        break;
    }
}

template <typename Sample>
void PageReader::storeAs(const Block& block, CILImage& out)
{
    const bool turn = m_layout.photometric == PHOTOMETRIC_MINISWHITE && std::is_unsigned_v<Sample>;
    const Combine combine = m_combine;
    orvimage::visitPixels(out, [&](auto* pixels, std::size_t) {
        using Pixel = std::remove_pointer_t<decltype(pixels)>;
        for (std::uint32_t j = 0; j < block.height; ++j) {
            const auto row = [&](std::size_t c) {
                return reinterpret_cast<const Sample*>(block.channel[c]) + j * block.rowSamples;
            };
            const Sample* first = row(0);
            for (std::uint32_t i = 0; i < block.width; ++i) {
                const std::size_t at = i * block.stride;
                Pixel& pixel = pixels[place(block.x + i, block.y + j)];
                if (m_channels.count == 3) {
                    pixel = orvimage::toPixel<Pixel>(luma(first[at], row(1)[at], row(2)[at]));
                } else if (turn) {
                    // NOLINTNEXTLINE(bugprone-signed-char-misuse)
                    put(combine, static_cast<Pixel>(std::numeric_limits<Sample>::max() - first[at]), pixel);
                } else {
                    // NOLINTNEXTLINE(bugprone-signed-char-misuse): a signed sample keeps its sign
                    put(combine, static_cast<Pixel>(first[at]), pixel);
                }
            }
        }
    });
    if constexpr (std::is_unsigned_v<Sample> && sizeof(Sample) <= 2) {
        if (m_keepColours) {
            storeColours<Sample>(block);
        }
    }
}

template <typename Sample>
void PageReader::storeColours(const Block& block)
{
    constexpr int scale = std::numeric_limits<Sample>::max() / 255;
    for (std::uint32_t j = 0; j < block.height; ++j) {
        const auto level = [&](std::size_t c, std::uint32_t i) {
            const Sample v = reinterpret_cast<const Sample*>(block.channel[c])[j * block.rowSamples + i * block.stride];
            return (static_cast<int>(v) + scale / 2) / scale;
        };
        for (std::uint32_t i = 0; i < block.width; ++i) {
            const std::size_t at = place(block.x + i, block.y + j);
            auto* line = reinterpret_cast<QRgb*>(m_colours.scanLine(static_cast<int>(at / m_layout.width)));
            line[at % m_layout.width] = qRgb(level(0, i), level(1, i), level(2, i));
        }
    }
}

// Colour maps, bits, YCbCr and so on through libtiff's conversion to colours.
bool readAsColours(TiffFile& file, const TiffLayout& layout, QImage& picture)
{
    char reason[1024] = "";
    if (TIFFRGBAImageOK(file.handle(), reason) != 1) {
        return file.fail(QString::fromLocal8Bit(reason));
    }
    constexpr std::uint32_t maxSide = 32767;
    if (layout.width > maxSide || layout.height > maxSide) {
        return file.fail(
            QStringLiteral("%1 x %2 pixels in colours are not supported").arg(layout.width).arg(layout.height));
    }
    std::vector<std::uint32_t> raster(std::size_t{layout.width} * layout.height);
    if (TIFFReadRGBAImageOriented(file.handle(), layout.width, layout.height, raster.data(), ORIENTATION_TOPLEFT, 1) !=
            1 ||
        !file.reason().isEmpty()) {
        return file.fail(QStringLiteral("the pixels cannot be read"));
    }
    picture = QImage(static_cast<int>(layout.width), static_cast<int>(layout.height), QImage::Format_ARGB32);
    if (picture.isNull()) {
        return file.fail(QStringLiteral("there is not enough memory for the image"));
    }
    const std::uint32_t* from = raster.data();
    for (int y = 0; y < picture.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x, ++from) {
            line[x] = qRgb(static_cast<int>(TIFFGetR(*from)), static_cast<int>(TIFFGetG(*from)),
                           static_cast<int>(TIFFGetB(*from)));
        }
    }
    return true;
}

bool readPage(TiffFile& file, int page, const TiffReadOptions& options, CILImage& out)
{
    TiffLayout layout;
    if (!readTiffLayout(file, page, &layout)) {
        return false;
    }
    // Asked for by its number, a sample is what the file stores; a colour map tells only how to show it.
    if (options.band >= 0 && layout.photometric == PHOTOMETRIC_PALETTE) {
        layout.photometric = PHOTOMETRIC_MINISBLACK;
    }
    if (!checkTiffLayout(file, layout)) {
        return false;
    }
    if (options.band >= layout.samples) {
        return file.fail(QStringLiteral("there is no sample %1, only %2").arg(options.band).arg(layout.samples));
    }
    const bool mix = layout.isRgb() && options.band < 0;
    if (options.combine != Combine::Replace && (mix || !layout.isPlain())) {
        return file.fail(QStringLiteral("pages in colours or of less than 8 bits cannot be combined"));
    }
    if (!layout.isPlain()) {
        QImage picture;
        if (!readAsColours(file, layout, picture)) {
            return false;
        }
        out.setRGBImage(picture);
        if (out.isEmpty()) {
            return file.fail(QStringLiteral("there is not enough memory for the image"));
        }
        if (!options.keepColours || layout.isGrey()) {
            out.dropRGBImage();
        }
        return true;
    }
    if (layout.orientation > ORIENTATION_BOTLEFT) {
        return file.fail(QStringLiteral("the image lies on its side (orientation %1), which is not supported")
                             .arg(layout.orientation));
    }
    Channels channels;
    if (mix) {
        channels = {{0, 1, 2}, 3};
    } else {
        channels.sample[0] = std::max(0, options.band);
    }
    const bool keepColours =
        mix && options.keepColours && layout.bits <= 16 && layout.sampleKind() == TiffInfo::Samples::Unsigned;
    PageReader reader(file, layout, channels, keepColours, options.combine);
    if (!reader.read(out)) {
        return false;
    }
    if (keepColours) {
        out.setRGBImage(reader.colours());
    }
    return true;
}

} // namespace

bool readTiff(const QString& path, int page, CILImage& out, QString* error)
{
    return readTiff(path, page, TiffReadOptions(), out, error);
}

bool readTiff(const QString& path, int page, const TiffReadOptions& options, CILImage& out, QString* error)
{
    return TiffPageReader().read(path, page, options, out, error);
}

bool readTiffHeader(const QString& path, int page, TiffInfo* info, QString* error)
{
    return TiffPageReader().readHeader(path, page, info, error);
}

TiffPageReader::TiffPageReader() = default;
TiffPageReader::~TiffPageReader() = default;

bool TiffPageReader::open(const QString& path, QString* error)
{
    if (m_pFile != nullptr && path == m_strPath) {
        return true;
    }
    m_pFile = std::make_unique<TiffFile>();
    m_strPath = path;
    if (m_pFile->openForReading(path)) {
        return true;
    }
    report(path, m_pFile->reason(), error);
    m_pFile.reset();
    return false;
}

bool TiffPageReader::read(const QString& path, int page, const TiffReadOptions& options, CILImage& out, QString* error)
{
    const bool combined = options.combine != Combine::Replace;
    if (!combined) {
        out.clear();
    } else if (m_pFile != nullptr && !m_pFile->reason().isEmpty()) {
        m_pFile.reset();
    }
    const bool reused = m_pFile != nullptr && path == m_strPath && !combined;
    if (!open(path, error)) {
        out.clear();
        return false;
    }
    bool ok = false;
    try {
        ok = readPage(*m_pFile, page, options, out);
    } catch (const std::bad_alloc&) {
        m_pFile->fail(QStringLiteral("there is not enough memory for the image"));
    }
    if (!ok) {
        out.clear();
        report(path, m_pFile->reason(), error);
        m_pFile.reset();
        // What another page had to complain of does not count against this one.
        return reused && read(path, page, options, out, error);
    }
    if (!combined) {
        out.RefreshImageStats();
    }
    return true;
}

bool TiffPageReader::readHeader(const QString& path, int page, TiffInfo* info, QString* error)
{
    TiffLayout layout;
    const bool reused = m_pFile != nullptr && path == m_strPath;
    if (!open(path, error)) {
        return false;
    }
    if (!readTiffLayout(*m_pFile, page, &layout)) {
        report(path, m_pFile->reason(), error);
        m_pFile.reset();
        return reused && readHeader(path, page, info, error);
    }
    TiffInfo read;
    read.width = static_cast<long>(layout.width);
    read.height = static_cast<long>(layout.height);
    read.bitsPerSample = layout.bits;
    read.sampleFormat = layout.sampleKind();
    read.samplesPerPixel = layout.samples;
    read.isColour = !layout.isGrey() && (layout.isRgb() || !layout.isPlain());
    read.type = layout.pixelType();
    const auto text = [&](std::uint32_t tag) {
        const char* characters = nullptr;
        return TIFFGetField(m_pFile->handle(), tag, &characters) == 1 ? QString::fromUtf8(characters) : QString();
    };
    read.description = text(TIFFTAG_IMAGEDESCRIPTION);
    read.software = text(TIFFTAG_SOFTWARE);
    *info = read;
    return true;
}

int tiffPageCount(const QString& path, QString* error)
{
    TiffFile file;
    const int pages = file.openForReading(path) ? static_cast<int>(TIFFNumberOfDirectories(file.handle())) : 0;
    if (pages < 1) {
        report(path, file.reason(), error);
    }
    return pages;
}
