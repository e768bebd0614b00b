// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/Importer.h"

#include "host/CORVSequenceDataset.h"
#include "services/importer/ImageKeys.h"
#include "services/importer/ImporterFixture.h"

#include <QRegExp>
#include <QSet>

#include <tiffio.h>

#include <cmath>
#include <cstdint>
#include <vector>

namespace {

const QByteArray threeRows = "file,excitation,emission\na.tif,488,510\nb.tif,488,530\nc.tif,514,530\n";

class ImporterTest : public ImporterFixture
{
protected:
    // A folder "stack" of three images of 4 x 3 pixels with their table.
    void makeStack(const QByteArray& table = threeRows)
    {
        writeRamp("stack/a.tif", 100);
        writeRamp("stack/b.tif", 200);
        writeRamp("stack/c.tif", 300);
        write("stack/images.csv", table);
        m_options.source = path("stack");
        m_options.table = path("stack/images.csv");
        m_options.output = path("out");
    }

    bool import()
    {
        m_error.clear();
        return importStack(m_options, ImportProgress(), &m_report, &m_error);
    }
    // The reason of a failure, which must have left nothing behind.
    QString refusal()
    {
        EXPECT_FALSE(import());
        EXPECT_FALSE(QFileInfo::exists(m_options.output));
        for (const QString& name : QDir(path("")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)) {
            EXPECT_FALSE(name.startsWith('.')) << qPrintable(name);
        }
        return m_error;
    }
    QString refusalOf(const QByteArray& table)
    {
        makeStack(table);
        QString reason = refusal();
        EXPECT_TRUE(reason.startsWith(m_options.table)) << qPrintable(reason);
        return reason.remove(0, m_options.table.size());
    }

    void open(CORVSequenceDataset& sequence)
    {
        QString error;
        QStringList warnings;
        ASSERT_EQ(sequence.open(m_options.output, &error, &warnings), ESTATUS_SUCCESS) << qPrintable(error);
        EXPECT_TRUE(warnings.isEmpty()) << qPrintable(warnings.join('\n'));
    }
    static QString value(CORVDataset* dataset, const char* section, const char* key)
    {
        QString text;
        const CPLSection* found = dataset->clickInfo[section];
        return found != nullptr && found->getValue(key, &text) == 0 ? text : QString("absent");
    }

    ImportOptions m_options;
    ImportReport m_report;
    QString m_error;
};

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

TEST_F(ImporterTest, ImagesThatTakeTooMuchMemoryAreRefusedByTheirHeaders)
{
    makeStack("file,emission\na.tif,510\n");
    writeZeros(path("stack/a.tif"), 32768, 16384);
    EXPECT_LT(QFileInfo(path("stack/a.tif")).size(), 1 << 20);
    EXPECT_EQ(refusal(), m_options.source + ": images of 32768 x 16384 pixels take 3 GiB of memory, where 2 are "
                                            "allowed; --max-memory allows more");
}

TEST_F(ImporterTest, TheLimitOfMemoryCountsAllThatStandsSideBySide)
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

TEST_F(ImporterTest, MakesASequenceOfAFolder)
{
    makeStack();
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(m_report.sequenceId, "out");
    EXPECT_EQ(m_report.images, 3);
    EXPECT_EQ(m_report.width, 4);
    EXPECT_EQ(m_report.height, 3);
    EXPECT_EQ(m_report.side, 4);
    EXPECT_TRUE(m_report.fluorescence);
    EXPECT_FALSE(m_report.temporal);
    EXPECT_EQ(m_report.photographOrigin, "mean image");
    EXPECT_TRUE(m_report.warnings.isEmpty());
    EXPECT_FALSE(m_report.aborted);

    CORVSequenceDataset sequence;
    open(sequence);
    EXPECT_TRUE(sequence.isFluorescence);
    EXPECT_FALSE(sequence.isTransillumination);
    EXPECT_FALSE(sequence.isKyvoSequence());
    const QList<CORVDataset*> datasets = sequence.getDatasets();
    ASSERT_EQ(datasets.size(), 3);
    const QStringList excitations{"488nm", "488nm", "514nm"};
    const QStringList emissions{"510nm", "530nm", "530nm"};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(datasets[i]->getExcitationFilter(), excitations[i]);
        EXPECT_EQ(datasets[i]->getEmissionFilter(), emissions[i]);
        EXPECT_EQ(datasets[i]->getClickNumber(), m_report.clickNumbers[i]);
        EXPECT_TRUE(datasets[i]->hasLuminescentImage);
        EXPECT_EQ(datasets[i]->getBinningForImage(IMAGETYPE_MAIN_DATA), 1.0F);
        CILImage* image = datasets[i]->getCoreImage(IMAGETYPE_LUMINESCENT);
        ASSERT_NE(image, nullptr);
        ASSERT_EQ(image->m_lWidth, 4);
        ASSERT_EQ(image->m_lHeight, 4);
        EXPECT_EQ(image->dataType(), ORVTYPE_USHORT);
        EXPECT_EQ(image->value(6), 100.0 * (i + 1) + 12);
        EXPECT_EQ(image->value(12), 0);
    }
}

TEST_F(ImporterTest, TheSequenceIsAnalysedInCounts)
{
    makeStack();
    ASSERT_TRUE(import()) << qPrintable(m_error);
    CORVSequenceDataset sequence;
    open(sequence);
    CORVDataset* dataset = sequence.getDatasets().first();
    CILImage image;
    EXPECT_EQ(dataset->getCalibratedLuminImage(DISPLAYUNIT_RADIANT_EFFICIENCY, &image, "test"),
              ESTATUS_UNIT_UNAVAILABLE);
    EXPECT_EQ(dataset->getCalibratedLuminImage(DISPLAYUNIT_RADIANCE, &image, "test"), ESTATUS_UNIT_UNAVAILABLE);
    ASSERT_EQ(dataset->getCalibratedLuminImage(DISPLAYUNIT_COUNTS, &image, "test"), ESTATUS_SUCCESS);
    EXPECT_EQ(image.value(6), 112);
}

TEST_F(ImporterTest, KeepsExtentAndSource)
{
    makeStack();
    ASSERT_TRUE(import()) << qPrintable(m_error);
    CORVSequenceDataset sequence;
    open(sequence);
    EXPECT_EQ(value(sequence.getDatasets()[1], "luminescent image", "Image Extent"), "4 x 3");
    EXPECT_EQ(value(sequence.getDatasets()[1], "luminescent image", "Source Image"), "b.tif");
    EXPECT_EQ(value(sequence.getDatasets()[1], "luminescent image", "Exposure Time Sec"), "absent");
}

TEST_F(ImporterTest, ClickNumbersAreShortAndDifferBetweenSequences)
{
    makeStack();
    ASSERT_TRUE(import()) << qPrintable(m_error);
    const QStringList first = m_report.clickNumbers;
    m_options.output = path("other");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    const QStringList all = first + m_report.clickNumbers;
    EXPECT_EQ(QSet<QString>(all.begin(), all.end()).size(), 6);
    for (const QString& number : all) {
        EXPECT_TRUE(number.startsWith("IM000")) << qPrintable(number);
        EXPECT_LE(number.size(), 13);
        EXPECT_FALSE(number.contains(QRegExp("[^A-Z0-9-]")));
    }
}

TEST_F(ImporterTest, TheMeanImageServesAsPhotograph)
{
    makeStack();
    ASSERT_TRUE(import()) << qPrintable(m_error);
    CORVSequenceDataset sequence;
    open(sequence);
    QString origin;
    ASSERT_EQ(sequence.sequenceInfo()["Sequence"]->getValue("Photograph Origin", &origin), 0);
    EXPECT_EQ(origin, "mean image");
    CILImage* photo = sequence.getDatasets()[0]->getCoreImage(IMAGETYPE_PHOTOGRAPH);
    ASSERT_NE(photo, nullptr);
    EXPECT_EQ(photo->m_lWidth, 4);
    EXPECT_EQ(photo->m_lHeight, 4);
    EXPECT_EQ(photo->dataType(), ORVTYPE_BYTE);
    EXPECT_EQ(photo->value(0), 0);
    EXPECT_EQ(photo->value(11), 255); // the brightest pixel of the extent
    EXPECT_EQ(photo->value(15), 0);   // padding
    EXPECT_NE(sequence.getEquivalentImageFromSequence(sequence.getDatasets()[2], IMAGETYPE_PHOTOGRAPH), nullptr);
}

TEST_F(ImporterTest, AGivenPhotographIsFittedAndPadded)
{
    makeStack();
    m_options.photo =
        writeTiffFile("my photo.tif", makeImage(ORVTYPE_BYTE, 8, 6, [](long, long y) { return y < 2 ? 40.0 : 250.0; }));
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(m_report.photographOrigin, "my photo.tif");
    CORVSequenceDataset sequence;
    open(sequence);
    QString origin;
    EXPECT_NE(sequence.sequenceInfo()["Sequence"]->getValue("Photograph Origin", &origin), 0);
    CILImage* photo = sequence.getDatasets()[0]->getCoreImage(IMAGETYPE_PHOTOGRAPH);
    ASSERT_NE(photo, nullptr);
    ASSERT_EQ(photo->m_lWidth, 4);
    ASSERT_EQ(photo->m_lHeight, 4);
    EXPECT_EQ(photo->value(0), 40);
    EXPECT_EQ(photo->value(8), 250);
    EXPECT_EQ(photo->value(12), 0);
}

TEST_F(ImporterTest, EmissionsAloneMakeALuminescentSequence)
{
    makeStack("file,emission\na.tif,510\nb.tif,530\nc.tif,550\n");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_FALSE(m_report.fluorescence);
    CORVSequenceDataset sequence;
    open(sequence);
    EXPECT_FALSE(sequence.isFluorescence);
    EXPECT_EQ(sequence.getDatasets()[0]->getExcitationFilter(), "Block");
    EXPECT_EQ(sequence.getDatasets()[0]->getEmissionFilter(), "510nm");
}

TEST_F(ImporterTest, ExcitationsAloneMakeAFluorescentSequence)
{
    makeStack("file,excitation\na.tif,488\nb.tif,514\n");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_TRUE(m_report.fluorescence);
    CORVSequenceDataset sequence;
    open(sequence);
    EXPECT_EQ(sequence.getDatasets()[1]->getExcitationFilter(), "514nm");
    EXPECT_EQ(sequence.getDatasets()[1]->getEmissionFilter(), "Open");
}

TEST_F(ImporterTest, TimesMakeATemporalSequence)
{
    makeStack("file,time,interval\na.tif,0,\nb.tif,10.5,2\nc.tif,11.25,Int2\n");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_TRUE(m_report.temporal);
    EXPECT_FALSE(m_report.fluorescence);
    CORVSequenceDataset sequence;
    open(sequence);
    EXPECT_TRUE(sequence.isKyvoSequence());
    EXPECT_FALSE(sequence.isFluorescence);
    const QList<CORVDataset*> datasets = sequence.getDatasets();
    EXPECT_EQ(value(datasets[0], "ClickNumber", "KyVo Time(s)"), "0");
    EXPECT_EQ(value(datasets[0], "ClickNumber", "KyVo Interval"), "1");
    EXPECT_EQ(value(datasets[1], "ClickNumber", "KyVo Time(s)"), "10.5");
    EXPECT_EQ(value(datasets[2], "ClickNumber", "KyVo Time(s)"), "11.25");
    EXPECT_EQ(value(datasets[2], "ClickNumber", "KyVo Interval"), "2");
}

TEST_F(ImporterTest, WavelengthsAreRoundedToWholeNanometres)
{
    makeStack("file,excitation,emission\na.tif,487.5,509.6\nb.tif,99.5,999.4\n");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    CORVSequenceDataset sequence;
    open(sequence);
    EXPECT_EQ(sequence.getDatasets()[0]->getExcitationFilter(), "488nm");
    EXPECT_EQ(sequence.getDatasets()[0]->getEmissionFilter(), "510nm");
    EXPECT_EQ(sequence.getDatasets()[1]->getExcitationFilter(), "100nm");
    EXPECT_EQ(sequence.getDatasets()[1]->getEmissionFilter(), "999nm");
}

TEST_F(ImporterTest, RefusesKeysByImageName)
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

TEST_F(ImporterTest, RefusesTimesByImageName)
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

TEST_F(ImporterTest, RefusesTheFirstImageOfAnotherSize)
{
    makeStack();
    writeRamp("stack/b.tif", 200, 5, 3);
    writeRamp("stack/c.tif", 200, 6, 6);
    EXPECT_EQ(refusal(), m_options.table + ":3: b.tif has 5 x 3 pixels where a.tif has 4 x 3");
}

TEST_F(ImporterTest, RefusesPixelsThatAreNotFinite)
{
    makeStack();
    writeTiffFile("stack/b.tif",
                  makeImage(ORVTYPE_FLOAT, 4, 3, [](long x, long y) { return x == 3 && y == 1 ? std::nan("") : 1.0; }));
    EXPECT_EQ(refusal(), m_options.table + ":3: b.tif: the pixel in column 3, row 1 is not finite or too large");
    writeTiffFile("stack/b.tif",
                  makeImage(ORVTYPE_FLOAT, 4, 3, [](long x, long y) { return x == 0 && y == 2 ? -INFINITY : 1.0; }));
    EXPECT_EQ(refusal(), m_options.table + ":3: b.tif: the pixel in column 0, row 2 is not finite or too large");
}

TEST_F(ImporterTest, RefusesImagesThatAreNotThere)
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

TEST_F(ImporterTest, RefusesSourcesThatAreNotThere)
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

TEST_F(ImporterTest, RefusesAFileThatIsNoImage)
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

TEST_F(ImporterTest, RefusesAPhotographThatIsNone)
{
    makeStack();
    m_options.photo = write("photo.jpg", "no picture");
    EXPECT_TRUE(refusal().startsWith(path("photo.jpg") + ": "));
}

TEST_F(ImporterTest, ReadsThePagesOfAFile)
{
    m_options.source = writePages("stack.tif", 3);
    m_options.table = write("images.csv", "page,excitation,emission\n3,488,510\n1,488,530\n");
    m_options.output = path("out");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    CORVSequenceDataset sequence;
    open(sequence);
    ASSERT_EQ(sequence.getDatasets().size(), 2);
    EXPECT_EQ(sequence.getDatasets()[0]->getCoreImage(IMAGETYPE_LUMINESCENT)->value(1), 301);
    EXPECT_EQ(sequence.getDatasets()[1]->getCoreImage(IMAGETYPE_LUMINESCENT)->value(1), 101);
    EXPECT_EQ(value(sequence.getDatasets()[0], "luminescent image", "Source Image"), "stack.tif page 3");
}

TEST_F(ImporterTest, RefusesPagesThatAreNotThere)
{
    m_options.source = writePages("stack.tif", 3);
    m_options.output = path("out");
    m_options.table = write("images.csv", "page,emission\n1,510\n4,530\n");
    EXPECT_TRUE(refusal().startsWith(m_options.table + ":3: " + m_options.source + ": "));
    m_options.table = write("images.csv", "file,page,emission\nother.tif,1,510\n");
    EXPECT_EQ(refusal(), m_options.table + ":2: the row names the file other.tif, but the stack is stack.tif");
}

TEST_F(ImporterTest, ReadsTheBandsOfACube)
{
    QByteArray cube;
    for (int band = 0; band < 3; ++band) {
        for (int i = 0; i < 8; ++i) {
            cube.append(static_cast<char>(10 * band + i));
        }
    }
    write("cube.img", cube);
    m_options.source = write("cube.hdr", "ENVI\nsamples = 2\nlines = 4\nbands = 3\ndata type = 1\ninterleave = bsq\n"
                                         "wavelength = {510, 530, 550}\n");
    m_options.output = path("out");
    // The emission of band 3 comes from the header.
    m_options.table = write("images.csv", "band,excitation,emission\n3,488,\n2,488,533\n");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(m_report.side, 4);
    CORVSequenceDataset sequence;
    open(sequence);
    CORVDataset* first = sequence.getDatasets()[0];
    EXPECT_EQ(first->getEmissionFilter(), "550nm");
    EXPECT_EQ(sequence.getDatasets()[1]->getEmissionFilter(), "533nm");
    EXPECT_EQ(first->getCoreImage(IMAGETYPE_LUMINESCENT)->value(0), 20);
    EXPECT_EQ(first->getCoreImage(IMAGETYPE_LUMINESCENT)->value(5), 23);
    EXPECT_EQ(first->getCoreImage(IMAGETYPE_LUMINESCENT)->value(2), 0);
    EXPECT_EQ(value(first, "luminescent image", "Image Extent"), "2 x 4");

    m_options.output = path("refused");
    m_options.table = write("images.csv", "band,emission\n4,510\n");
    EXPECT_EQ(refusal(), m_options.table + ":2: " + path("cube.img") + ": there is no band 4 (the cube has 3)");
    m_options.table = write("images.csv", "page,emission\n1,510\n");
    EXPECT_EQ(refusal(), m_options.table + ":2: " + path("cube.hdr") + ": an ENVI cube has bands, not pages");
    m_options.table = write("images.csv", "emission\n510\n530\n");
    EXPECT_EQ(refusal(), m_options.table + ":3: cube.hdr band 1 is the image of line 2 again");
}

TEST_F(ImporterTest, OneImageIsEnoughForASequence)
{
    makeStack("file,emission\na.tif,510\n");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(m_report.images, 1);
    writeRamp("stack/dot.tif", 7, 1, 1);
    m_options.table = write("stack/images.csv", "file,emission\ndot.tif,510\n");
    m_options.output = path("dot");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(m_report.side, 1);
}

TEST_F(ImporterTest, AnOutputThatExistsIsRefusedUnlessForced)
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

TEST_F(ImporterTest, RefusesAnOutputThatCannotBeMade)
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

TEST_F(ImporterTest, AFailureKeepsTheSequenceThatItShouldReplace)
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

TEST_F(ImporterTest, ProgressTellsEachStepAndCanAbort)
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

TEST_F(ImporterTest, TakesTheStoredValuesOfImagesWithAColourMap)
{
    makeStack();
    for (const char* name : {"stack/a.tif", "stack/b.tif"}) {
        TIFF* tiff = TIFFOpen(QFile::encodeName(path(name)).constData(), "w");
        ASSERT_NE(tiff, nullptr);
        // Blue where nothing was measured, red where the camera was saturated, grey in between.
        std::vector<uint16_t> red(256);
        for (std::size_t i = 0; i < red.size(); ++i) {
            red[i] = static_cast<uint16_t>(i * 257);
        }
        std::vector<uint16_t> green = red;
        std::vector<uint16_t> blue = red;
        blue[0] = 65535;
        green[255] = blue[255] = 0;
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 4);
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 3);
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_PALETTE);
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 3);
        TIFFSetField(tiff, TIFFTAG_COLORMAP, red.data(), green.data(), blue.data());
        unsigned char pixels[12] = {0, 255, 7, 8};
        ASSERT_EQ(TIFFWriteEncodedStrip(tiff, 0, pixels, sizeof(pixels)), 12);
        TIFFClose(tiff);
    }
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(m_report.warnings,
              QStringList{"a.tif and 1 more have a colour map: the stored values are taken, not the colours"});
    CORVSequenceDataset sequence;
    open(sequence);
    const CILImage* image = sequence.getDatasets()[0]->getCoreImage(IMAGETYPE_LUMINESCENT);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->dataType(), ORVTYPE_BYTE);
    EXPECT_EQ(image->value(0), 0);
    EXPECT_EQ(image->value(1), 255);
    EXPECT_EQ(image->value(2), 7);
    EXPECT_EQ(image->value(3), 8);
}

TEST_F(ImporterTest, ReadsTheSamplesOfAPixelAsBands)
{
    makeStack("file,band,emission\nrgb.tif,3,510\nrgb.tif,1,530\n");
    TIFF* tiff = TIFFOpen(QFile::encodeName(path("stack/rgb.tif")).constData(), "w");
    ASSERT_NE(tiff, nullptr);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 2);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 1);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    unsigned char pixels[6] = {1, 2, 3, 4, 5, 6};
    ASSERT_EQ(TIFFWriteEncodedStrip(tiff, 0, pixels, sizeof(pixels)), 6);
    TIFFClose(tiff);
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_TRUE(m_report.warnings.isEmpty());
    CORVSequenceDataset sequence;
    open(sequence);
    EXPECT_EQ(sequence.getDatasets()[0]->getCoreImage(IMAGETYPE_LUMINESCENT)->value(0), 3);
    EXPECT_EQ(sequence.getDatasets()[1]->getCoreImage(IMAGETYPE_LUMINESCENT)->value(1), 4);
    m_options.table = write("stack/images.csv", "file,emission\nrgb.tif,510\n");
    m_options.output = path("grey");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(m_report.warnings, QStringList{"rgb.tif has colours: their grey values are taken"});
}

TEST_F(ImporterTest, TellsOfColumnsPassedOver)
{
    makeStack("file,emission,stain\na.tif,510,x\n");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(m_report.warnings, QStringList{"the column \"stain\" is passed over"});
}

TEST_F(ImporterTest, TimesMayStandBesideWavelengthsThatAreTheSameInAll)
{
    makeStack();
    m_options.table = write("images.csv", "file,excitation,emission,time\na.tif,640,700,0\nb.tif,640,700,5\n");
    import();
    CORVSequenceDataset sequence;
    ASSERT_EQ(sequence.open(m_options.output), ESTATUS_SUCCESS);
    EXPECT_TRUE(sequence.isKyvoSequence());
    EXPECT_TRUE(sequence.isFluorescence);
    EXPECT_EQ(sequence.getDatasets()[1]->getExcitationFilter(), "640nm");
    EXPECT_EQ(value(sequence.getDatasets()[1], "ClickNumber", "KyVo Time(s)"), "5");
}

TEST_F(ImporterTest, ATableTellsSpotsAndWhatElseIsKnown)
{
    makeStack();
    m_options.table =
        write("images.csv", "file,excitation,emission,spot_x,spot_y,exposure,pixel_size,start,isotope,unit\n"
                            "a.tif,640,700,-0.50,1,2.5 s,12.5,2024-03-05T09:30:00.250,F-18,efficiency\n"
                            "b.tif,640,700,0.50,1,,,2024-03-05T10:30:00+01:00,,Efficiency\n");
    import();
    CORVSequenceDataset sequence;
    ASSERT_EQ(sequence.open(m_options.output), ESTATUS_SUCCESS);
    EXPECT_TRUE(sequence.isTransillumination);
    CORVDataset* first = sequence.getDatasets()[0];
    CORVDataset* second = sequence.getDatasets()[1];
    EXPECT_EQ(first->getFLXspot(), "-0.50");
    EXPECT_EQ(first->getFLYspot(), "1");
    EXPECT_EQ(value(first, "luminescent image", "Exposure Time Sec"), "2.5");
    EXPECT_EQ(value(first, "Camera System Info", "Pixel Size cm"), "0.00125");
    EXPECT_EQ(value(first, "luminescent image", "Acquisition Time"), "09:30:00.250");
    EXPECT_EQ(value(first, "luminescent image", "Isotope"), "F-18");
    EXPECT_EQ(value(second, "luminescent image", "Acquisition Time"), "09:30:00.000");
    EXPECT_EQ(value(second, "luminescent image", "Exposure Time Sec"), "absent");
    CILImage image;
    EXPECT_EQ(first->getCalibratedLuminImage(DISPLAYUNIT_EFFICIENCY, &image, "test"), ESTATUS_SUCCESS);
    EXPECT_EQ(first->unitUnavailableReason(DISPLAYUNIT_COUNTS), "the data are stored as efficiency");
}

TEST_F(ImporterTest, RefusesSpotsAndUnitsThatDoNotFit)
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
