// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/ImageSupport.h"
#include "platform/orvimage/TiffIo.h"
#include "platform/orvimage/TiffSupport.h"

#include <QDir>
#include <QTemporaryDir>

#include <sys/stat.h>

#include <cmath>
#include <limits>
#include <string>
#include <thread>

namespace {

class TiffReadTest : public testing::Test
{
protected:
    QString path(const QString& name = "image.tif") const { return m_folder.filePath(name); }

    CILImage read(const QString& file, int page = 0, const TiffReadOptions& options = {})
    {
        CILImage image;
        QString error;
        EXPECT_TRUE(readTiff(file, page, options, image, &error)) << qPrintable(error);
        return image;
    }

    // Expects that the file is refused, with an error that names it; gives the reason.
    std::string refusal(const QString& file, int page = 0, const TiffReadOptions& options = {})
    {
        CILImage image = makeImage(ORVTYPE_BYTE, 1, 1, {3});
        QString error;
        EXPECT_FALSE(readTiff(file, page, options, image, &error));
        EXPECT_TRUE(image.isEmpty());
        EXPECT_TRUE(error.startsWith(file + ": ")) << qPrintable(error);
        EXPECT_FALSE(error.contains('\n'));
        return error.mid(file.size() + 2).toStdString();
    }

    QTemporaryDir m_folder;
};

template <typename Sample>
TestPage greyPage(std::uint32_t w, std::uint32_t h, int format, const std::vector<Sample>& samples)
{
    TestPage page;
    page.width = w;
    page.height = h;
    page.bits = static_cast<int>(8 * sizeof(Sample));
    page.format = format;
    page.data = asBytes(samples);
    return page;
}

} // namespace

TEST_F(TiffReadTest, SamplesBecomeThePixelTypeThatHoldsThem)
{
    struct Case
    {
        TestPage page;
        ORVDataTypes type;
        std::vector<double> values;
    };
    const float infinity = std::numeric_limits<float>::infinity();
    const std::vector<Case> cases{
        {greyPage<std::uint8_t>(2, 1, SAMPLEFORMAT_UINT, {0, 255}), ORVTYPE_BYTE, {0, 255}},
        {greyPage<std::uint16_t>(2, 1, SAMPLEFORMAT_UINT, {1, 65535}), ORVTYPE_USHORT, {1, 65535}},
        {greyPage<std::uint32_t>(2, 1, SAMPLEFORMAT_UINT, {1, 4294967295U}), ORVTYPE_DOUBLE, {1, 4294967295.0}},
        {greyPage<std::int8_t>(2, 1, SAMPLEFORMAT_INT, {-128, 127}), ORVTYPE_INT, {-128, 127}},
        {greyPage<std::int16_t>(2, 1, SAMPLEFORMAT_INT, {-32768, 7}), ORVTYPE_INT, {-32768, 7}},
        {greyPage<std::int32_t>(2, 1, SAMPLEFORMAT_INT, {-2147483647, 9}), ORVTYPE_INT, {-2147483647, 9}},
        {greyPage<float>(2, 1, SAMPLEFORMAT_IEEEFP, {-1.5F, infinity}), ORVTYPE_FLOAT, {-1.5, kInfinity}},
        {greyPage<double>(2, 1, SAMPLEFORMAT_IEEEFP, {1e-300, 0.1}), ORVTYPE_DOUBLE, {1e-300, 0.1}},
        {greyPage<std::uint16_t>(2, 1, SAMPLEFORMAT_VOID, {3, 4}), ORVTYPE_USHORT, {3, 4}},
    };
    for (const Case& c : cases) {
        for (const char* mode : {"wl", "wb", "w8l", "w8b"}) {
            writeTestTiff(path(), {c.page}, mode);
            const CILImage image = read(path());
            EXPECT_EQ(c.type, image.dataType());
            EXPECT_EQ(c.values, valuesOf(image)) << mode;
            TiffInfo info;
            QString error;
            ASSERT_TRUE(readTiffHeader(path(), 0, &info, &error)) << qPrintable(error);
            EXPECT_EQ(c.type, info.type);
            EXPECT_EQ(c.page.bits, info.bitsPerSample);
            EXPECT_FALSE(info.isColour);
        }
    }
}

TEST_F(TiffReadTest, StripsTilesCompressionsAndPredictors)
{
    std::vector<std::uint16_t> samples;
    std::vector<double> expected;
    for (int i = 0; i < 37 * 21; ++i) {
        samples.push_back(static_cast<std::uint16_t>(i * 997));
        expected.push_back(samples.back());
    }
    for (const int compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_PACKBITS}) {
        for (const std::uint32_t tile : {0U, 16U, 64U}) {
            for (const char* mode : {"wl", "wb"}) {
                TestPage page = greyPage(37, 21, SAMPLEFORMAT_UINT, samples);
                page.compression = compression;
                page.tile = tile;
                page.rowsPerStrip = 4; // 21 rows: the last strip is short
                if (compression == COMPRESSION_LZW || compression == COMPRESSION_ADOBE_DEFLATE) {
                    page.predictor = PREDICTOR_HORIZONTAL;
                }
                writeTestTiff(path(), {page}, mode);
                EXPECT_EQ(expected, valuesOf(read(path()))) << compression << ' ' << tile << ' ' << mode;
            }
        }
    }
}

TEST_F(TiffReadTest, NaNsStay)
{
    writeTestTiff(path(), {greyPage<float>(2, 1, SAMPLEFORMAT_IEEEFP, {std::nanf(""), 2.0F})});
    const CILImage image = read(path());
    EXPECT_TRUE(std::isnan(image.value(0)));
    EXPECT_EQ(2.0, image.Max());
}

TEST_F(TiffReadTest, PagesAreReadByNumber)
{
    std::vector<TestPage> pages;
    for (std::uint8_t i = 0; i < 5; ++i) {
        pages.push_back(greyPage<std::uint8_t>(static_cast<std::uint32_t>(i) + 1U, 1, SAMPLEFORMAT_UINT,
                                               std::vector<std::uint8_t>(i + 1U, i)));
    }
    writeTestTiff(path(), pages);
    QString error;
    EXPECT_EQ(5, tiffPageCount(path(), &error));
    for (int i = 0; i < 5; ++i) {
        const CILImage image = read(path(), i);
        EXPECT_EQ(i + 1, image.m_lWidth);
        EXPECT_EQ(i, image.value(0));
    }
    EXPECT_EQ("there is no page 5, only 5", refusal(path(), 5));
    EXPECT_EQ("there is no page -1, only 5", refusal(path(), -1));
}

TEST_F(TiffReadTest, WhereWhiteIsZeroUnsignedSamplesAreTurnedOver)
{
    TestPage page = greyPage<std::uint8_t>(2, 1, SAMPLEFORMAT_UINT, {0, 200});
    page.photometric = PHOTOMETRIC_MINISWHITE;
    writeTestTiff(path(), {page});
    EXPECT_EQ((std::vector<double>{255, 55}), valuesOf(read(path())));
}

TEST_F(TiffReadTest, PagesAreCombinedIntoOneImage)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const std::uint32_t tile : {0U, 16U}) {
        TestPage first = greyPage<float>(2, 2, SAMPLEFORMAT_IEEEFP, {1, 5, nan, 2});
        TestPage second = greyPage<float>(2, 2, SAMPLEFORMAT_IEEEFP, {3, 4, 1, nan});
        // The same pixels from below.
        TestPage turned = greyPage<float>(2, 2, SAMPLEFORMAT_IEEEFP, {7, 7, 0, 9});
        first.tile = second.tile = turned.tile = tile;
        turned.orientation = ORIENTATION_BOTLEFT;
        writeTestTiff(path(), {first, second, turned});
        TiffReadOptions options;
        CILImage larger = read(path());
        options.combine = TiffReadOptions::Combine::Larger;
        CILImage sum = makeImage(ORVTYPE_DOUBLE, 2, 2, {0, 0, 0, 0});
        QString error;
        for (const int page : {1, 2}) {
            ASSERT_TRUE(readTiff(path(), page, options, larger, &error)) << qPrintable(error);
        }
        EXPECT_EQ(3.0, larger.value(0));
        EXPECT_EQ(9.0, larger.value(1));
        EXPECT_TRUE(std::isnan(larger.value(2)) && std::isnan(larger.value(3)));
        options.combine = TiffReadOptions::Combine::Sum;
        for (const int page : {0, 1, 2}) {
            ASSERT_TRUE(readTiff(path(), page, options, sum, &error)) << qPrintable(error);
        }
        EXPECT_EQ(4.0, sum.value(0));
        EXPECT_EQ(18.0, sum.value(1));
        EXPECT_TRUE(std::isnan(sum.value(2)) && std::isnan(sum.value(3)));
        // Into a byte: another type, another extent.
        EXPECT_EQ("the page has another extent or other pixels than those before", refusal(path(), 0, options));
        options.combine = TiffReadOptions::Combine::Larger;
        EXPECT_EQ("the page has another extent or other pixels than those before", refusal(path(), 0, options));
    }
    TestPage colours = greyPage<std::uint8_t>(1, 1, SAMPLEFORMAT_UINT, {1, 2, 3});
    colours.samples = 3;
    colours.photometric = PHOTOMETRIC_RGB;
    writeTestTiff(path(), {colours});
    TiffReadOptions options;
    options.combine = TiffReadOptions::Combine::Larger;
    EXPECT_EQ("pages in colours or of less than 8 bits cannot be combined", refusal(path(), 0, options));
    options.band = 1;
    CILImage green = makeImage(ORVTYPE_BYTE, 1, 1, {1});
    EXPECT_TRUE(readTiff(path(), 0, options, green, nullptr));
    EXPECT_EQ(2.0, green.value(0));
}

TEST_F(TiffReadTest, ColoursBecomeLumaInTheirType)
{
    for (const int planar : {PLANARCONFIG_CONTIG, PLANARCONFIG_SEPARATE}) {
        for (const std::uint32_t tile : {0U, 16U}) {
            TestPage page = greyPage<std::uint8_t>(2, 1, SAMPLEFORMAT_UINT, {255, 0, 0, 10, 20, 30});
            page.samples = 3;
            page.photometric = PHOTOMETRIC_RGB;
            page.planar = planar;
            page.tile = tile;
            writeTestTiff(path(), {page});
            EXPECT_EQ((std::vector<double>{76, 18}), valuesOf(read(path()))); // 76.245, 2.99 + 11.74 + 3.42 = 18.15
            TiffReadOptions options;
            options.keepColours = true;
            const CILImage image = read(path(), 0, options);
            ASSERT_TRUE(image.isRGB());
            EXPECT_EQ(qRgb(255, 0, 0), image.toQImage().pixel(0, 0));
            EXPECT_EQ(qRgb(10, 20, 30), image.toQImage().pixel(1, 0));
            options.keepColours = false;
            options.band = 2;
            EXPECT_EQ((std::vector<double>{0, 30}), valuesOf(read(path(), 0, options)));
            options.band = 3;
            EXPECT_EQ("there is no sample 3, only 3", refusal(path(), 0, options));
        }
    }
}

TEST_F(TiffReadTest, ColoursOfSixteenBitsAndWithAlpha)
{
    TestPage page = greyPage<std::uint16_t>(1, 1, SAMPLEFORMAT_UINT, {65535, 0, 65535, 1000});
    page.samples = 4;
    page.photometric = PHOTOMETRIC_RGB;
    writeTestTiff(path(), {page});
    const CILImage image = read(path());
    EXPECT_EQ(ORVTYPE_USHORT, image.dataType());
    EXPECT_EQ(27066.0, image.value(0)); // 0.413 * 65535 = 27065.955
    TiffReadOptions options;
    options.keepColours = true;
    EXPECT_EQ(qRgb(255, 0, 255), read(path(), 0, options).toQImage().pixel(0, 0));
    TiffInfo info;
    ASSERT_TRUE(readTiffHeader(path(), 0, &info, nullptr));
    EXPECT_TRUE(info.isColour);
    EXPECT_EQ(4, info.samplesPerPixel);
}

TEST_F(TiffReadTest, BitsBecomeBytes)
{
    TestPage page;
    page.width = 16;
    page.height = 2;
    page.bits = 1;
    TIFF* tiff = TIFFOpen(QFile::encodeName(path()).constData(), "w");
    ASSERT_NE(nullptr, tiff);
    setTestFields(tiff, page);
    unsigned char bits[] = {0x80, 0x01, 0xff, 0xff};
    ASSERT_EQ(4, TIFFWriteEncodedStrip(tiff, 0, bits, 4));
    TIFFClose(tiff);
    const CILImage image = read(path());
    EXPECT_EQ(ORVTYPE_BYTE, image.dataType());
    EXPECT_EQ(255.0, image.value(0));
    EXPECT_EQ(0.0, image.value(1));
    EXPECT_EQ(255.0, image.value(15));
    EXPECT_EQ(18 * 255.0, sumOf(image));
}

TEST_F(TiffReadTest, OrientationTurnsRowsAndColumns)
{
    TestPage page = greyPage<std::uint8_t>(2, 2, SAMPLEFORMAT_UINT, {1, 2, 3, 4});
    const auto values = [&](int orientation) {
        page.orientation = orientation;
        writeTestTiff(path(), {page});
        return valuesOf(read(path()));
    };
    EXPECT_EQ((std::vector<double>{2, 1, 4, 3}), values(ORIENTATION_TOPRIGHT));
    EXPECT_EQ((std::vector<double>{4, 3, 2, 1}), values(ORIENTATION_BOTRIGHT));
    EXPECT_EQ((std::vector<double>{3, 4, 1, 2}), values(ORIENTATION_BOTLEFT));
    page.orientation = ORIENTATION_LEFTBOT;
    writeTestTiff(path(), {page});
    EXPECT_NE(std::string::npos, refusal(path()).find("on its side"));
}

TEST_F(TiffReadTest, HeaderTextsAreGiven)
{
    TestPage page = greyPage<std::uint8_t>(3, 2, SAMPLEFORMAT_UINT, std::vector<std::uint8_t>(6));
    page.description = "exposure: 2 s, \xc2\xb5W";
    writeTestTiff(path(), {page});
    TiffInfo info;
    QString error;
    ASSERT_TRUE(readTiffHeader(path(), 0, &info, &error));
    EXPECT_EQ(3, info.width);
    EXPECT_EQ(2, info.height);
    EXPECT_EQ(QString::fromUtf8("exposure: 2 s, µW"), info.description);
    EXPECT_TRUE(info.software.isEmpty());
}

TEST_F(TiffReadTest, HalfFloatsAndIntegersOf64BitsKeepTheirValues)
{
    // 1, -2 and 0.5 as half floats.
    writeTestTiff(path(), {greyPage<std::uint16_t>(3, 1, SAMPLEFORMAT_IEEEFP, {0x3c00, 0xc000, 0x3800})});
    CILImage image;
    QString error;
    ASSERT_TRUE(readTiff(path(), 0, image, &error)) << qPrintable(error);
    EXPECT_EQ(ORVTYPE_FLOAT, image.dataType());
    EXPECT_EQ(1.0, image.value(0));
    EXPECT_EQ(-2.0, image.value(1));
    EXPECT_EQ(0.5, image.value(2));
    writeTestTiff(path(), {greyPage<std::int64_t>(2, 1, SAMPLEFORMAT_INT, {-3, std::int64_t{1} << 40})});
    ASSERT_TRUE(readTiff(path(), 0, image, &error)) << qPrintable(error);
    EXPECT_EQ(ORVTYPE_DOUBLE, image.dataType());
    EXPECT_EQ(-3.0, image.value(0));
    EXPECT_EQ(1099511627776.0, image.value(1));
    writeTestTiff(path(), {greyPage<std::uint64_t>(1, 1, SAMPLEFORMAT_UINT, {7})});
    ASSERT_TRUE(readTiff(path(), 0, image, &error)) << qPrintable(error);
    EXPECT_EQ(7.0, image.value(0));
}

TEST_F(TiffReadTest, UnsupportedSamplesAreNamed)
{
    TestPage tiny = greyPage<std::uint8_t>(1, 1, SAMPLEFORMAT_IEEEFP, {0});
    writeTestTiff(path(), {tiny});
    EXPECT_EQ("8 bit samples of format 3 are not supported", refusal(path()));
    TestPage complex = greyPage<double>(1, 1, SAMPLEFORMAT_COMPLEXIEEEFP, {0});
    writeTestTiff(path(), {complex});
    EXPECT_EQ("64 bit samples of format 6 are not supported", refusal(path()));
    TiffInfo info;
    ASSERT_TRUE(readTiffHeader(path(), 0, &info, nullptr)) << "the header can still be asked";
    EXPECT_EQ(ORVTYPE_NONE, info.type);
}

TEST_F(TiffReadTest, WhatIsNoTiffIsSaid)
{
    EXPECT_EQ("No such file or directory", refusal(path("none.tif")));
    EXPECT_EQ("is a folder, not a TIFF file", refusal(m_folder.path()));
    EXPECT_EQ("No such file or directory", refusal(path("none/a.tif")));
    writeBytes(path(), {});
    EXPECT_EQ("the file is empty", refusal(path()));
    writeBytes(path(), "II");
    EXPECT_NE(std::string::npos, refusal(path()).find("not a readable TIFF file"));
    writeBytes(path(), "This is a text, not an image, whatever its name says.");
    EXPECT_NE(std::string::npos, refusal(path()).find("not a readable TIFF file"));
    QString error;
    EXPECT_EQ(0, tiffPageCount(path(), &error));
    EXPECT_TRUE(error.startsWith(path() + ": "));
    TiffInfo info;
    EXPECT_FALSE(readTiffHeader(path(), 0, &info, &error));
    ASSERT_EQ(0, mkfifo(QFile::encodeName(path("pipe")).constData(), 0600));
    EXPECT_EQ("is not a regular file", refusal(path("pipe")));
}

TEST_F(TiffReadTest, APathWithSpacesAndAccents)
{
    const QString file = path(QString::fromUtf8("eine Maus, früh.tif"));
    writeTestTiff(file, {greyPage<std::uint8_t>(1, 1, SAMPLEFORMAT_UINT, {9})});
    EXPECT_EQ(9.0, read(file).value(0));
}

TEST_F(TiffReadTest, ATruncatedFileIsAnErrorAtAnyLength)
{
    std::vector<std::uint16_t> samples(64 * 48);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<std::uint16_t>(i * i);
    }
    for (const int compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE}) {
        for (const std::uint32_t tile : {0U, 16U}) {
            TestPage page = greyPage(64, 48, SAMPLEFORMAT_UINT, samples);
            page.compression = compression;
            page.tile = tile;
            writeTestTiff(path("whole.tif"), {page});
            const QByteArray whole = fileBytes(path("whole.tif"));
            for (int tenth = 0; tenth < 10; ++tenth) {
                writeBytes(path(), whole.left(whole.size() * tenth / 10));
                refusal(path());
            }
        }
    }
}

TEST_F(TiffReadTest, PixelsCutOffBehindAWholeHeaderAreAnError)
{
    // Here the directory stands in front of the pixels, as streaming writers put it.
    QByteArray file("II*\0\x08\0\0\0", 8);
    const auto put = [&](std::uint16_t tag, std::uint16_t type, std::uint32_t value) {
        const std::uint32_t count = 1;
        file.append(reinterpret_cast<const char*>(&tag), 2).append(reinterpret_cast<const char*>(&type), 2);
        file.append(reinterpret_cast<const char*>(&count), 4).append(reinterpret_cast<const char*>(&value), 4);
    };
    file.append("\x09\0", 2);
    put(TIFFTAG_IMAGEWIDTH, 4, 100);
    put(TIFFTAG_IMAGELENGTH, 4, 100);
    put(TIFFTAG_BITSPERSAMPLE, 3, 8);
    put(TIFFTAG_COMPRESSION, 3, COMPRESSION_NONE);
    put(TIFFTAG_PHOTOMETRIC, 3, PHOTOMETRIC_MINISBLACK);
    put(TIFFTAG_STRIPOFFSETS, 4, 8 + 2 + 9 * 12 + 4);
    put(TIFFTAG_SAMPLESPERPIXEL, 3, 1);
    put(TIFFTAG_ROWSPERSTRIP, 4, 100);
    put(TIFFTAG_STRIPBYTECOUNTS, 4, 10000);
    file.append(QByteArray(4, '\0'));
    const QByteArray pixels(10000, '\x07');
    writeBytes(path(), file + pixels);
    EXPECT_EQ(70000.0, sumOf(read(path())));
    for (int tenth = 0; tenth < 10; ++tenth) {
        writeBytes(path(), file + pixels.left(pixels.size() * tenth / 10));
        refusal(path());
    }
}

TEST_F(TiffReadTest, AHugeSizeInASmallFileIsRefused)
{
    const std::uint32_t huge[] = {60000, 1U << 20, 0x7fffffffU, 0xffffffffU};
    for (const std::uint32_t side : huge) {
        for (const int compression : {COMPRESSION_NONE, COMPRESSION_ADOBE_DEFLATE}) {
            for (const std::uint32_t tile : {0U, 256U}) {
                TestPage page = greyPage<std::uint16_t>(1, 1, SAMPLEFORMAT_UINT, {1});
                page.compression = compression;
                page.tile = tile;
                writeTestTiff(path(), {page}, "wl");
                QByteArray bytes = fileBytes(path());
                // Sizes in the directory: entry = tag, type, count, value.
                for (const std::uint16_t tag :
                     {std::uint16_t{TIFFTAG_IMAGEWIDTH}, std::uint16_t{TIFFTAG_IMAGELENGTH}}) {
                    const int at = bytes.indexOf(QByteArray(reinterpret_cast<const char*>(&tag), 2) + '\x03');
                    const int longAt = bytes.indexOf(QByteArray(reinterpret_cast<const char*>(&tag), 2) + '\x04');
                    const int entry = at >= 0 ? at : longAt;
                    ASSERT_GE(entry, 0);
                    bytes[entry + 2] = 4;
                    std::memcpy(bytes.data() + entry + 8, &side, 4);
                }
                writeBytes(path(), bytes);
                EXPECT_FALSE(refusal(path()).empty()) << side;
            }
        }
    }
}

TEST_F(TiffReadTest, ThreadsKeepTheirErrorsApart)
{
    writeTestTiff(path("good.tif"), {greyPage<std::uint8_t>(1, 1, SAMPLEFORMAT_UINT, {5})});
    writeBytes(path("bad.tif"), "II*\0nonsense and more nonsense");
    std::vector<std::thread> threads;
    std::vector<int> wrong(4, 0);
    for (std::size_t t = 0; t < wrong.size(); ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 200; ++i) {
                CILImage image;
                QString error;
                const bool good = i % 2 == 0;
                const QString file = path(good ? "good.tif" : "bad.tif");
                if (readTiff(file, 0, image, &error) != good || error.startsWith(file) == good) {
                    ++wrong[t];
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ((std::vector<int>{0, 0, 0, 0}), wrong);
}

TEST_F(TiffReadTest, NothingIsPrinted)
{
    writeBytes(path(), "II*\0nonsense and more nonsense");
    testing::internal::CaptureStderr();
    refusal(path());
    EXPECT_EQ("", testing::internal::GetCapturedStderr());
}

TEST_F(TiffReadTest, TheImageKeepsItsBinning)
{
    writeTestTiff(path(), {greyPage<std::uint8_t>(1, 1, SAMPLEFORMAT_UINT, {5})});
    CILImage image;
    image.m_fBinning = 8.0F;
    ASSERT_TRUE(readTiff(path(), 0, image, nullptr));
    EXPECT_EQ(8.0F, image.m_fBinning);
}
