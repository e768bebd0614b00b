// SPDX-License-Identifier: GPL-3.0-or-later
// What an import refuses, with which words, and that nothing is left of it; how it is stopped.
#include "services/importer/StackFixture.h"

#include <tiffio.h>

#include <cmath>
#include <cstdint>

namespace {

using ImporterRefusalsTest = StackFixture;

// A byte image of zeros in a file of half a megabyte.
void writeZeros(const QString& path, std::uint32_t width, std::uint32_t height)
{
    constexpr std::uint32_t rows = 256;
    const QByteArray packed = qCompress(QByteArray(static_cast<int>(width * rows), '\0')).mid(4); // behind the length
    TIFF* tiff = TIFFOpen(QFile::encodeName(path).constData(), "w");
    ASSERT_NE(tiff, nullptr);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, rows);
    for (std::uint32_t strip = 0; strip < height / rows; ++strip) {
        QByteArray bytes = packed;
        ASSERT_EQ(TIFFWriteRawStrip(tiff, strip, bytes.data(), bytes.size()), bytes.size());
    }
    TIFFClose(tiff);
}

} // namespace

TEST_F(ImporterRefusalsTest, ImagesThatTakeTooMuchMemoryAreRefusedByTheirHeaders)
{
    makeStack("file,emission\na.tif,510\n");
    writeZeros(path("stack/a.tif"), 32768, 16384);
    EXPECT_LT(QFileInfo(path("stack/a.tif")).size(), 1 << 20);
    EXPECT_EQ(refusal(), m_options.source + ": images of 32768 x 16384 pixels take 3 GiB of memory, where 2 are "
                                            "allowed; --max-memory allows more");
}

TEST_F(ImporterRefusalsTest, TheLimitOfMemoryCountsAllThatStandsSideBySide)
{
    makeStack();
    // 4 x 3 pixels of 2 bytes as they lie in the file and as they are read, a square of 4 x 4, a photograph of bytes.
    m_options.maxMemory = 12 * 4 + 16 * 2 + 16;
    EXPECT_TRUE(import()) << qPrintable(m_error);
    QDir(m_options.output).removeRecursively();
    --m_options.maxMemory;
    EXPECT_TRUE(refusal().contains("take 8.94e-08 GiB of memory")) << qPrintable(m_error);

    m_options.dark = path("stack/c.tif"); // corrected pixels are doubles at most, as is the dark image
    m_options.maxMemory = 12 * 4 + 12 * 8 + 12 * 8 + 16 * 8 + 16;
    EXPECT_TRUE(import()) << qPrintable(m_error);
    QDir(m_options.output).removeRecursively();
    m_options.photo = writeRamp("photo.tif", 1);
    EXPECT_TRUE(refusal().contains("; --max-memory allows more")) << qPrintable(m_error);
}

TEST_F(ImporterRefusalsTest, RefusesKeysByImageName)
{
    const auto spectral = [this](const char* rows) {
        return refusalOf(QByteArray("file,excitation,emission\n") + rows);
    };
    EXPECT_EQ(spectral("a.tif,488,510\nb.tif,488,999.5\n"),
              ":3: b.tif: the emission 999.5 nm is not within 100 to 999 nm");
    EXPECT_EQ(spectral("a.tif,99.4,510\n"), ":2: a.tif: the excitation 99.4 nm is not within 100 to 999 nm");
    EXPECT_EQ(spectral("a.tif,-488,510\n"), ":2: a.tif: the excitation -488 nm is not within 100 to 999 nm");
    EXPECT_EQ(spectral("a.tif,488,510\nb.tif,,530\n"), ":3: b.tif: the excitation is missing, which other rows have");
    EXPECT_EQ(spectral("a.tif,488,510\nb.tif,488,\n"), ":3: b.tif: the emission is missing, which other rows have");
    EXPECT_EQ(spectral("a.tif,,\n"), ":2: a.tif: neither excitation nor emission is given");
    EXPECT_EQ(spectral("a.tif,488,510\nb.tif,488,530\nc.tif,488.3,509.7\n"),
              ":4: c.tif shares excitation 488nm and emission 510nm with a.tif (line 2)");
    EXPECT_EQ(refusalOf("file,emission,interval\na.tif,510,1\n"), ":2: a.tif: an interval is given without a time");
}

TEST_F(ImporterRefusalsTest, RefusesTimesByImageName)
{
    const auto temporal = [this](const char* rows) { return refusalOf(QByteArray("file,time,emission\n") + rows); };
    EXPECT_EQ(temporal("a.tif,1.2,\nb.tif,1.9,\n"), ":3: b.tif shares second 1 with a.tif (line 2)");
    EXPECT_EQ(temporal("a.tif,1.2,\nb.tif,,\n"), ":3: b.tif: the time is missing, which other rows have");
    EXPECT_EQ(
        temporal("a.tif,1.2,510\nb.tif,3,530\n"),
        ":3: b.tif: the wavelengths are not those of the first row, and a sequence is either spectral or temporal");
    EXPECT_EQ(temporal("a.tif,16777216,\n"), ":2: a.tif: the time 16777216 s is not within 16777216 s");
    // Before and after zero are one second, as both are cut to 0.
    EXPECT_EQ(temporal("a.tif,-0.5,\nb.tif,0.5,\n"), ":3: b.tif shares second 0 with a.tif (line 2)");
    // In single precision, in which times are read, this is 60.
    EXPECT_EQ(temporal("a.tif,59.9999999,\nb.tif,60,\n"), ":3: b.tif shares second 60 with a.tif (line 2)");
}

TEST_F(ImporterRefusalsTest, RefusesTheFirstImageOfAnotherSizeAndNamesWhatHelps)
{
    makeStack();
    writeRamp("stack/b.tif", 200, 5, 3);
    writeRamp("stack/c.tif", 200, 6, 6);
    EXPECT_EQ(refusal(), m_options.table + ":3: b.tif has 5 x 3 pixels where a.tif has 4 x 3; --sizes crop, bin or pad "
                                           "brings them to one size");
}

TEST_F(ImporterRefusalsTest, RefusesPixelsThatAreNotFinite)
{
    makeStack();
    writeTiffFile("stack/b.tif",
                  makeImage(ORVTYPE_FLOAT, 4, 3, [](long x, long y) { return x == 3 && y == 1 ? std::nan("") : 1.0; }));
    EXPECT_EQ(refusal(), m_options.table + ":3: b.tif: the pixel in column 3, row 1 is not finite or too large; "
                                           "--skip-invalid leaves such pixels out");
    writeTiffFile("stack/b.tif",
                  makeImage(ORVTYPE_FLOAT, 4, 3, [](long x, long y) { return x == 0 && y == 2 ? -INFINITY : 1.0; }));
    EXPECT_EQ(refusal(), m_options.table + ":3: b.tif: the pixel in column 0, row 2 is not finite or too large; "
                                           "--skip-invalid leaves such pixels out");
}

TEST_F(ImporterRefusalsTest, RefusesImagesOfWhichNoPixelHasAValueInAll)
{
    makeStack("file,emission\na.tif,510\nb.tif,530\n");
    const auto half = [this](const char* name, bool bLeft) {
        writeTiffFile(
            name, makeImage(ORVTYPE_FLOAT, 4, 3, [=](long x, long) { return (x < 2) == bLeft ? std::nan("") : 1.0; }));
    };
    half("stack/a.tif", true);
    half("stack/b.tif", false);
    m_options.skipInvalid = true;
    EXPECT_EQ(refusal(), m_options.source + ": no pixel has a value in all images");
}

TEST_F(ImporterRefusalsTest, RefusesImagesThatAreNotThere)
{
    EXPECT_EQ(refusalOf("file,emission\na.tif,510\nd.tif,530\n"),
              ":3: " + path("stack/d.tif") + ": there is no such file");
    EXPECT_EQ(refusalOf("emission\n510\n"), ":2: the row names no file, and " + path("stack") + " is a folder");
    EXPECT_EQ(refusalOf("file,page,emission\na.tif,1,510\na.tif,,530\n"), ":3: a.tif is the image of line 2 again");
    EXPECT_EQ(refusalOf("file,emission\na.tif,510\n../stack/a.tif,530\n"),
              ":3: ../stack/a.tif is the image of line 2 again");
    EXPECT_TRUE(refusalOf("file,page,emission\na.tif,2,510\n").startsWith(":2: " + path("stack/a.tif") + ": "));
    EXPECT_EQ(refusalOf("file,band,emission\na.tif,2,510\n"),
              ":2: " + path("stack/a.tif") + ": there is no band 2 (a pixel has 1)");
}

TEST_F(ImporterRefusalsTest, RefusesSourcesThatAreNotThere)
{
    makeStack();
    m_options.source = path("nothing");
    EXPECT_EQ(refusal(), path("nothing") + ": there is no such file or folder");
    m_options.source = path("stack");
    m_options.table = path("no.csv");
    EXPECT_TRUE(refusal().startsWith(path("no.csv") + ": "));
    m_options.table = path("stack");
    EXPECT_TRUE(refusal().startsWith(path("stack") + ": "));
}

TEST_F(ImporterRefusalsTest, RefusesAFileThatIsNoImage)
{
    makeStack();
    write("stack/b.tif", "this is text");
    EXPECT_TRUE(refusal().startsWith(m_options.table + ":3: " + path("stack/b.tif") + ": "));
    QFile whole(writeRamp("stack/b.tif", 200, 40, 30));
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    const QByteArray bytes = whole.readAll();
    writeRamp("stack/a.tif", 100, 40, 30);
    writeRamp("stack/c.tif", 300, 40, 30);
    for (int tenth = 0; tenth < 10; ++tenth) {
        write("stack/b.tif", bytes.left(bytes.size() * tenth / 10));
        EXPECT_TRUE(refusal().contains("b.tif")) << tenth;
    }
    write("stack/b.tif", bytes);
    EXPECT_TRUE(import()) << qPrintable(m_error);
}

TEST_F(ImporterRefusalsTest, RefusesAPhotographThatIsNone)
{
    makeStack();
    m_options.photo = write("photo.jpg", "no picture");
    EXPECT_TRUE(refusal().startsWith(path("photo.jpg") + ": "));
}

TEST_F(ImporterRefusalsTest, AnOutputThatExistsIsRefusedUnlessForced)
{
    makeStack();
    ASSERT_TRUE(import()) << qPrintable(m_error);
    int steps = 0;
    EXPECT_FALSE(importStack(
        m_options, [&steps](int, int, const QString&) { return ++steps > 0; }, &m_report, &m_error));
    EXPECT_TRUE(m_error.startsWith(path("out"))) << qPrintable(m_error);
    EXPECT_EQ(steps, 0); // at once, before any image is read
    m_options.force = true;
    EXPECT_TRUE(import()) << qPrintable(m_error);
    // A folder that is no sequence is never replaced.
    m_options.output = path("stack");
    EXPECT_FALSE(import());
    EXPECT_TRUE(QFileInfo::exists(path("stack/a.tif")));
}

TEST_F(ImporterRefusalsTest, RefusesAnOutputThatCannotBeMade)
{
    makeStack();
    write("file", "in the way");
    m_options.output = path("file/out");
    EXPECT_FALSE(import());
    EXPECT_FALSE(m_error.isEmpty());
    m_options.output = path("no folder/out");
    EXPECT_FALSE(import());
    EXPECT_FALSE(QFileInfo::exists(path("no folder")));
    m_options.output = path("file");
    EXPECT_FALSE(import());
    EXPECT_TRUE(QFileInfo(path("file")).isFile());
}

TEST_F(ImporterRefusalsTest, AFailureKeepsTheSequenceThatItShouldReplace)
{
    makeStack();
    ASSERT_TRUE(import()) << qPrintable(m_error);
    write("stack/c.tif", "broken");
    m_options.force = true;
    EXPECT_FALSE(import());
    CORVSequenceDataset sequence;
    open(sequence);
    EXPECT_EQ(sequence.getDatasets().size(), 3);
}

TEST_F(ImporterRefusalsTest, ProgressTellsEachStepAndCanAbort)
{
    makeStack();
    QStringList told;
    ASSERT_TRUE(importStack(
        m_options,
        [&told](int done, int steps, const QString& what) {
            told.append(QString("%1/%2 %3").arg(done).arg(steps).arg(what));
            return true;
        },
        nullptr, nullptr));
    EXPECT_EQ(told, (QStringList{"0/6 Reading a.tif", "1/6 Reading b.tif", "2/6 Reading c.tif", "3/6 Writing a.tif",
                                 "4/6 Writing b.tif", "5/6 Writing c.tif"}));
    for (int last = 0; last < 6; ++last) {
        m_options.output = path("aborted");
        EXPECT_FALSE(importStack(
            m_options, [last](int done, int, const QString&) { return done < last; }, &m_report, &m_error));
        EXPECT_TRUE(m_report.aborted);
        EXPECT_EQ(m_error, "the import was aborted");
        EXPECT_FALSE(QFileInfo::exists(path("aborted")));
    }
}

TEST_F(ImporterRefusalsTest, RefusesSpotsAndUnitsThatDoNotFit)
{
    EXPECT_EQ(refusalOf("file,emission,spot_x,spot_y\na.tif,700,1,1\n"),
              ":2: a.tif: a scan spot is given without an excitation");
    EXPECT_EQ(refusalOf("file,excitation,spot_x,spot_y\na.tif,640,1,1\nb.tif,640,1,\n"),
              ":3: b.tif: the scan spot is missing, which other rows have");
    EXPECT_EQ(refusalOf("file,excitation,spot_x,spot_y\na.tif,640,1,1\nb.tif,640,1,1\n"),
              ":3: b.tif shares excitation 640nm and emission Open at the spot 1, 1 with a.tif (line 2)");
    EXPECT_EQ(refusalOf("file,emission,unit\na.tif,700,Radiance\nb.tif,720,\n"), ":3: the unit is not that of line 2");
    EXPECT_EQ(refusalOf("file,emission,unit\na.tif,700,Radiant Efficiency\n"),
              ":2: the unit Radiant Efficiency is one of fluorescence, and there is no excitation");
    EXPECT_EQ(refusalOf("file,emission,unit\na.tif,700,lux\n"),
              ":2: the unit \"lux\" is not Counts, Radiance, Radiant Efficiency or Efficiency");
    EXPECT_EQ(refusalOf("file,emission,start\na.tif,700,yesterday\n"),
              ":2: the start \"yesterday\" is not an instant such as 2024-03-05T09:30:00");
    EXPECT_EQ(refusalOf("file,emission,exposure\na.tif,700,0\n"), ":2: the exposure \"0\" is not above 0");
    EXPECT_EQ(refusalOf("file,excitation,spot_x,spot_y\na.tif,640,left,1\n"),
              ":2: the spot_x \"left\" is not a number");
}
