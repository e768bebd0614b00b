// SPDX-License-Identifier: GPL-3.0-or-later
// Stacks of pages, bands and samples, and images with a colour map.
#include "services/importer/StackFixture.h"

#include <QImage>

#include <tiffio.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace {

using ImporterSourcesTest = StackFixture;

} // namespace

TEST_F(ImporterSourcesTest, ReadsThePagesOfAFile)
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

TEST_F(ImporterSourcesTest, RefusesPagesThatAreNotThere)
{
    m_options.source = writePages("stack.tif", 3);
    m_options.output = path("out");
    m_options.table = write("images.csv", "page,emission\n1,510\n4,530\n");
    EXPECT_TRUE(refusal().startsWith(m_options.table + ":3: " + m_options.source + ": "));
    m_options.table = write("images.csv", "file,page,emission\nother.tif,1,510\n");
    EXPECT_EQ(refusal(), m_options.table + ":2: the row names the file other.tif, but the stack is stack.tif");
}

namespace {

// Pages of these, as a file of the fixture's folder.
void writeStackOf(const QString& strPath, const QVector<CILImage>& pages)
{
    TiffStackWriter writer;
    QString error;
    ASSERT_TRUE(writer.begin(strPath, 0, &error)) << qPrintable(error);
    for (const CILImage& page : pages) {
        ASSERT_TRUE(writer.add(page, TiffWriteOptions(), &error)) << qPrintable(error);
    }
    ASSERT_TRUE(writer.finish(&error)) << qPrintable(error);
}

} // namespace

TEST_F(ImporterSourcesTest, OfSeveralPagesTheLargestOrTheMeanValuesAreTaken)
{
    // Higher than a strip; each page is the largest somewhere.
    constexpr long side = 70;
    const auto valueOf = [](int page, long x, long y) {
        return 1000.0 * static_cast<double>((x + y + page) % 3) + page;
    };
    QVector<CILImage> pages;
    for (int page = 0; page < 4; ++page) {
        pages.append(makeImage(ORVTYPE_USHORT, side, side, [=](long x, long y) { return valueOf(page, x, y); }));
    }
    writeStackOf(path("deep.tif"), pages);
    m_options.source = path("deep.tif");
    m_options.table = write("t.csv", "page,projection,emission\n1..3,max,500\n2 4,mean,520\n3,mean,540\n3,,560\n");
    m_options.output = path("out");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(m_report.names, (QStringList{"deep.tif max of the pages 1, 2, 3", "deep.tif mean of the pages 2, 4",
                                           "deep.tif mean of the pages 3", "deep.tif page 3"}));
    CORVSequenceDataset sequence;
    open(sequence);
    EXPECT_EQ(value(sequence.getDatasets()[0], "luminescent image", "Projection"), "max of the pages 1, 2, 3");
    EXPECT_EQ(value(sequence.getDatasets()[3], "luminescent image", "Projection"), "absent");
    for (int i = 0; i < 4; ++i) {
        const CILImage* image = sequence.getDatasets()[i]->getCoreImage(IMAGETYPE_LUMINESCENT);
        ASSERT_NE(image, nullptr);
        for (long y = 0; y < side; ++y) {
            for (long x = 0; x < side; ++x) {
                const double mean = (valueOf(1, x, y) + valueOf(3, x, y)) / 2.0;
                const double expected = i == 0   ? std::max({valueOf(0, x, y), valueOf(1, x, y), valueOf(2, x, y)})
                                        : i == 1 ? mean
                                                 : valueOf(2, x, y);
                ASSERT_EQ(image->value(static_cast<std::size_t>(y * side + x)), expected) << i << ' ' << x << ' ' << y;
            }
        }
    }
}

TEST_F(ImporterSourcesTest, APixelThatOnePageHasNoValueOfHasNoneInAProjection)
{
    const double none = std::numeric_limits<double>::quiet_NaN();
    const auto page = [=](int nAt, double dValue) {
        return makeImage(ORVTYPE_FLOAT, 2, 2, [=](long x, long y) { return 2 * y + x == nAt ? none : dValue; });
    };
    writeStackOf(path("deep.tif"), {page(0, 5.0), page(3, 1.0), page(9, 7.0)});
    for (const char* kind : {"max", "mean"}) {
        m_options.source = path("deep.tif");
        m_options.table =
            write("t.csv", QByteArray("page,projection,emission\n1 2 3,") + kind + ",500\n3 1 2," + kind + ",520\n");
        m_options.output = path("out");
        m_options.skipInvalid = false;
        EXPECT_TRUE(refusal().contains("is not finite")) << qPrintable(m_error);
        m_options.skipInvalid = true;
        m_options.force = true;
        ASSERT_TRUE(import()) << qPrintable(m_error);
        EXPECT_EQ(m_report.invalid, 2) << kind;
        ASSERT_TRUE(QDir(path("out")).removeRecursively());
    }
}

TEST_F(ImporterSourcesTest, PagesThatDoNotGoTogetherAreNotProjected)
{
    const auto image = [](ORVDataTypes type, long w) { return makeImage(type, w, 2, [](long, long) { return 1.0; }); };
    const auto refused = [this](const QVector<CILImage>& pages, const QByteArray& row = "1 2,max,500") {
        writeStackOf(path("deep.tif"), pages);
        m_options.source = path("deep.tif");
        m_options.table = write("t.csv", "page,projection,emission\n" + row + "\n");
        m_options.output = path("out");
        return refusal();
    };
    EXPECT_TRUE(refused({image(ORVTYPE_BYTE, 2), image(ORVTYPE_BYTE, 3)})
                    .endsWith("page 2 has another size or other pixels than page 1"))
        << qPrintable(m_error);
    EXPECT_TRUE(refused({image(ORVTYPE_BYTE, 2), image(ORVTYPE_USHORT, 2)})
                    .endsWith("page 2 has another size or other pixels than page 1"))
        << qPrintable(m_error);
    refused({image(ORVTYPE_BYTE, 2), image(ORVTYPE_BYTE, 2)}, "1 3,mean,500");
    EXPECT_TRUE(refused({image(ORVTYPE_BYTE, 2), image(ORVTYPE_BYTE, 2)}, "1 2,max,500\n1 2,max,520")
                    .endsWith("is the image of line 2 again"))
        << qPrintable(m_error);
}

TEST_F(ImporterSourcesTest, ReadsTheBandsOfACube)
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

TEST_F(ImporterSourcesTest, TakesTheStoredValuesOfImagesWithAColourMap)
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

TEST_F(ImporterSourcesTest, ReadsTheSamplesOfAPixelAsBands)
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

namespace {

QImage dyed(int red, int green, int blue)
{
    QImage picture(16, 16, QImage::Format_RGB32);
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) {
            const int v = 10 * x + 5 * y;
            picture.setPixel(x, y, qRgb(v * red / 4, v * green / 4, v * blue / 4));
        }
    }
    return picture;
}

} // namespace

TEST_F(ImporterSourcesTest, PicturesAreImagesWithTheirOwnDepth)
{
    QDir().mkpath(path("stack"));
    QImage grey(5, 4, QImage::Format_Grayscale8);
    QImage deep(5, 4, QImage::Format_Grayscale16);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 5; ++x) {
            grey.scanLine(y)[x] = static_cast<unsigned char>(10 * y + x);
            reinterpret_cast<unsigned short*>(deep.scanLine(y))[x] = static_cast<unsigned short>(3000 * y + x);
        }
    }
    ASSERT_TRUE(grey.save(path("stack/em700.png")));
    ASSERT_TRUE(deep.save(path("stack/em720.PNG"), "PNG"));
    m_options.source = path("stack");
    m_options.tableText = "file,emission\nem700.png,700\nem720.PNG,720\n";
    m_options.output = path("out");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_TRUE(m_report.warnings.isEmpty()) << qPrintable(m_report.warnings.join('|'));
    CORVSequenceDataset sequence;
    open(sequence);
    CILImage* image = sequence.getDatasets()[1]->getCoreImage(IMAGETYPE_LUMINESCENT);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->dataType(), ORVTYPE_USHORT);
    EXPECT_EQ(image->value(3 * 5 + 4), 9004.0);
    EXPECT_EQ(sequence.getDatasets()[0]->getCoreImage(IMAGETYPE_LUMINESCENT)->value(2 * 5 + 3), 23.0);
}

TEST_F(ImporterSourcesTest, OfImagesDyedInOneHueItsChannelIsTaken)
{
    QDir().mkpath(path("stack"));
    ASSERT_TRUE(dyed(0, 0, 4).save(path("stack/dapi.png")));
    ASSERT_TRUE(dyed(4, 2, 0).save(path("stack/orange.jpg"), "JPEG", 95));
    ASSERT_TRUE(dyed(4, 4, 4).save(path("stack/grey.png")));
    QImage many(16, 16, QImage::Format_RGB32);
    many.fill(qRgb(200, 30, 90));
    many.setPixel(0, 0, qRgb(10, 200, 30));
    ASSERT_TRUE(many.save(path("stack/many.png")));
    m_options.source = path("stack");
    m_options.tableText = "file,channel\ndapi.png,a\norange.jpg,b\ngrey.png,c\nmany.png,d\n";
    m_options.output = path("out");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(m_report.warnings, (QStringList{"many.png has colours: their grey values are taken",
                                              "dapi.png has one hue: its blue values are taken",
                                              "orange.jpg has one hue: its red values are taken"}));
    CORVSequenceDataset sequence;
    open(sequence);
    const auto value = [&](int image) {
        return sequence.getDatasets()[image]->getCoreImage(IMAGETYPE_LUMINESCENT)->value(15 * 16 + 15);
    };
    EXPECT_EQ(value(0), 225.0);
    EXPECT_NEAR(value(1), 225.0, 4.0); // as JPEG has it
    EXPECT_EQ(value(2), 225.0);
    EXPECT_EQ(value(3), std::round(0.299 * 200 + 0.587 * 30 + 0.114 * 90));
}

TEST_F(ImporterSourcesTest, APictureThatIsCutShortIsRefused)
{
    QDir().mkpath(path("stack"));
    ASSERT_TRUE(dyed(4, 4, 4).save(path("whole.jpg")));
    QFile file(path("whole.jpg"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    write("stack/a.jpg", file.readAll().chopped(8));
    m_options.source = path("stack");
    m_options.tableText = "file,channel\na.jpg,a\n";
    m_options.output = path("out");
    EXPECT_EQ(refusal(), path("stack/a.jpg") + ": the picture is broken or cut short");
    m_options.tableText = "file,band,channel\na.jpg,4,a\n";
    EXPECT_EQ(refusal(), "inferred table:2: " + path("stack/a.jpg") + ": there is no band 4 (a pixel has 3)");
}
