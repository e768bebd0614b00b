// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <gtest/gtest.h>
#include <tiffio.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

// One page of a file that a test writes with libtiff itself.
struct TestPage
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    int bits = 8;
    int format = SAMPLEFORMAT_UINT;
    int samples = 1;
    int photometric = PHOTOMETRIC_MINISBLACK;
    int planar = PLANARCONFIG_CONTIG;
    int compression = COMPRESSION_NONE;
    int predictor = PREDICTOR_NONE;
    std::uint32_t tile = 0; // side of a tile, 0 for strips
    std::uint32_t rowsPerStrip = 3;
    int orientation = ORIENTATION_TOPLEFT;
    const char* description = nullptr;
    std::vector<unsigned char> data; // samples of the pixels, side by side, row by row
};

template <typename Sample>
std::vector<unsigned char> asBytes(const std::vector<Sample>& samples)
{
    std::vector<unsigned char> bytes(samples.size() * sizeof(Sample));
    std::memcpy(bytes.data(), samples.data(), bytes.size());
    return bytes;
}

inline void setTestFields(TIFF* tiff, const TestPage& page)
{
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, page.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, page.height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, page.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, page.format);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, page.samples);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, page.photometric);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, page.planar);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, page.compression);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, page.orientation);
    if (page.predictor != PREDICTOR_NONE) {
        TIFFSetField(tiff, TIFFTAG_PREDICTOR, page.predictor);
    }
    if (page.description != nullptr) {
        TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, page.description);
    }
    if (page.tile > 0) {
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, page.tile);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, page.tile);
    } else {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, page.rowsPerStrip);
    }
}

// The block of w x h pixels at (x, y) of one plane (or of all samples), padded with zeros.
inline std::vector<unsigned char> testBlock(const TestPage& page, std::uint32_t x, std::uint32_t y, std::uint32_t w,
                                            std::uint32_t h, int plane)
{
    const auto sampleBytes = static_cast<std::size_t>(page.bits / 8);
    const bool apart = page.planar == PLANARCONFIG_SEPARATE;
    const auto samples = static_cast<std::size_t>(page.samples);
    const std::size_t taken = apart ? 1 : samples;
    std::vector<unsigned char> block(std::size_t{w} * h * taken * sampleBytes);
    for (std::uint32_t j = 0; j < h && y + j < page.height; ++j) {
        for (std::uint32_t i = 0; i < w && x + i < page.width; ++i) {
            const std::size_t from =
                ((std::size_t{y + j} * page.width + x + i) * samples + static_cast<std::size_t>(apart ? plane : 0)) *
                sampleBytes;
            std::memcpy(block.data() + (std::size_t{j} * w + i) * taken * sampleBytes, page.data.data() + from,
                        taken * sampleBytes);
        }
    }
    return block;
}

// Writes pages in a mode of TIFFOpen: "wl", "wb" (byte order), "w8" (BigTIFF).
inline void writeTestTiff(const QString& path, const std::vector<TestPage>& pages, const char* mode = "w")
{
    TIFF* tiff = TIFFOpen(QFile::encodeName(path).constData(), mode);
    ASSERT_NE(nullptr, tiff);
    for (const TestPage& page : pages) {
        setTestFields(tiff, page);
        const int planes = page.planar == PLANARCONFIG_SEPARATE ? page.samples : 1;
        const std::uint32_t w = page.tile > 0 ? page.tile : page.width;
        const std::uint32_t h = page.tile > 0 ? page.tile : page.rowsPerStrip;
        for (int plane = 0; plane < planes; ++plane) {
            for (std::uint32_t y = 0; y < page.height; y += h) {
                for (std::uint32_t x = 0; x < page.width; x += w) {
                    const std::uint32_t rows = page.tile > 0 ? h : std::min(h, page.height - y);
                    std::vector<unsigned char> block = testBlock(page, x, y, w, rows, plane);
                    const auto size = static_cast<tmsize_t>(block.size());
                    const auto sample = static_cast<std::uint16_t>(plane);
                    if (page.tile > 0) {
                        ASSERT_EQ(size, TIFFWriteEncodedTile(tiff, TIFFComputeTile(tiff, x, y, 0, sample), block.data(),
                                                             size));
                    } else {
                        ASSERT_EQ(size,
                                  TIFFWriteEncodedStrip(tiff, TIFFComputeStrip(tiff, y, sample), block.data(), size));
                    }
                }
            }
        }
        ASSERT_EQ(1, TIFFWriteDirectory(tiff));
    }
    TIFFClose(tiff);
}

inline QByteArray fileBytes(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    return file.readAll();
}

inline void writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(bytes.size(), file.write(bytes));
}
