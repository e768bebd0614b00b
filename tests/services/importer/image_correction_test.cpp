// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/ImageCorrection.h"

#include "host/CORVSequenceDataset.h"
#include "services/importer/Importer.h"
#include "services/importer/ImporterFixture.h"

#include <limits>

namespace {

class ImageCorrectionTest : public ImporterFixture
{
protected:
    static CILImage constant(ORVDataTypes type, double value)
    {
        return makeImage(type, 4, 3, [=](long, long) { return value; });
    }
    // A flat field of mean 2: 1 in the left half, 3 in the right one.
    QString writeFlat()
    {
        return writeTiffFile("flat.tif",
                             makeImage(ORVTYPE_USHORT, 4, 3, [](long x, long) { return x < 2 ? 1.0 : 3.0; }));
    }
    QString flatRefusal(const CILImage& flat)
    {
        ImageCorrection correction;
        QString error;
        EXPECT_FALSE(correction.loadFlat(writeTiffFile("bad flat.tif", flat), 4, 3, &error));
        EXPECT_FALSE(correction.hasFlat());
        EXPECT_TRUE(error.startsWith(path("bad flat.tif") + ": ")) << qPrintable(error);
        return error.mid(path("bad flat.tif: ").size());
    }
    ImportOptions optionsOf(const QByteArray& table)
    {
        writeRamp("in/a.tif", 100);
        writeRamp("in/b.tif", 200);
        ImportOptions options;
        options.source = path("in");
        options.tableText = table;
        options.output = path("out");
        return options;
    }

    QString m_error;
};

const QByteArray twoRows = "file,emission,origin\na.tif,700,name\nb.tif,720,name\n";

} // namespace

TEST_F(ImageCorrectionTest, DarkIsSubtractedAndNegativesStay)
{
    ImageCorrection correction;
    correction.setDark(std::vector<double>(12, 300.0));
    CILImage image = constant(ORVTYPE_BYTE, 100);
    ASSERT_TRUE(correction.apply(image));
    EXPECT_EQ(image.dataType(), ORVTYPE_FLOAT);
    EXPECT_EQ(image.floats()[11], -200.0F);
}

TEST_F(ImageCorrectionTest, TheFlatIsBroughtToAMeanOfOne)
{
    ImageCorrection correction;
    ASSERT_TRUE(correction.loadFlat(writeFlat(), 4, 3, &m_error)) << qPrintable(m_error);
    CILImage image = constant(ORVTYPE_USHORT, 60000);
    ASSERT_TRUE(correction.apply(image));
    ASSERT_EQ(image.dataType(), ORVTYPE_FLOAT);
    EXPECT_EQ(image.floats()[0], 120000.0F);
    EXPECT_EQ(image.floats()[3], 40000.0F);
}

TEST_F(ImageCorrectionTest, DarkComesBeforeFlat)
{
    ImageCorrection correction;
    ASSERT_TRUE(correction.loadFlat(writeFlat(), 4, 3, &m_error));
    correction.setDark(std::vector<double>(12, 10.0));
    CILImage image = constant(ORVTYPE_INT, 40);
    ASSERT_TRUE(correction.apply(image));
    ASSERT_EQ(image.dataType(), ORVTYPE_DOUBLE);
    EXPECT_EQ(image.doubles()[0], 60.0);
    EXPECT_EQ(image.doubles()[3], 20.0);
}

TEST_F(ImageCorrectionTest, WithoutEitherTheImageStays)
{
    CILImage image = constant(ORVTYPE_USHORT, 7);
    EXPECT_TRUE(ImageCorrection().apply(image));
    EXPECT_EQ(image.dataType(), ORVTYPE_USHORT);
}

TEST_F(ImageCorrectionTest, AFlatThatIsNotAboveZeroIsRefusedByPixel)
{
    const auto spot = [](double value) {
        return makeImage(ORVTYPE_FLOAT, 4, 3, [=](long x, long y) { return x == 2 && y == 1 ? value : 5.0; });
    };
    EXPECT_EQ(flatRefusal(spot(0)), "the flat field is not above 0 in column 2, row 1");
    EXPECT_EQ(flatRefusal(spot(-1)), "the flat field is not above 0 in column 2, row 1");
    EXPECT_EQ(flatRefusal(spot(std::numeric_limits<double>::quiet_NaN())),
              "the pixel in column 2, row 1 is not finite or too large");
    EXPECT_EQ(flatRefusal(makeImage(ORVTYPE_FLOAT, 3, 4, [](long, long) { return 1.0; })),
              "the flat field has 3 x 4 pixels where the images have 4 x 3");
}

TEST_F(ImageCorrectionTest, OneReadableImageIsNeeded)
{
    ImageCorrection correction;
    EXPECT_FALSE(correction.loadFlat(writePages("pages.tif", 2), 4, 3, &m_error));
    EXPECT_EQ(m_error, path("pages.tif") + ": the flat field has 2 pages; one image is needed");
    EXPECT_FALSE(correction.loadFlat(path("absent.tif"), 4, 3, &m_error));
    EXPECT_TRUE(m_error.startsWith(path("absent.tif"))) << qPrintable(m_error);
    EXPECT_FALSE(correction.hasFlat());
}

TEST_F(ImageCorrectionTest, AnImportRecordsWhatWasDone)
{
    ImportOptions options = optionsOf(twoRows);
    options.dark = writeTiffFile("dark.tif", constant(ORVTYPE_USHORT, 150));
    options.flat = writeFlat();
    options.exposures = {0.5, 2};
    options.pixelSize = 100;
    ImportReport report;
    ASSERT_TRUE(importStack(options, ImportProgress(), &report, &m_error)) << qPrintable(m_error);
    EXPECT_TRUE(report.dark);
    EXPECT_TRUE(report.flat);
    CORVSequenceDataset sequence;
    ASSERT_EQ(sequence.open(path("out")), ESTATUS_SUCCESS);
    CORVDataset* second = sequence.getDatasets()[1];
    EXPECT_TRUE(second->isLuminBackgroundSubtracted());
    EXPECT_TRUE(second->isLuminFlatFieldCorrected());
    double seconds = 0.0;
    ASSERT_TRUE(second->getExposureTime(&seconds));
    EXPECT_EQ(seconds, 2.0);
    QString size;
    ASSERT_NE(second->clickInfo["Camera System Info"], nullptr);
    EXPECT_EQ(second->clickInfo["Camera System Info"]->getValue("Pixel Size cm", &size), 0);
    EXPECT_EQ(size, "0.01");
    CILImage image;
    ASSERT_EQ(sequence.getDatasets()[0]->getCalibratedLuminImage(DISPLAYUNIT_COUNTS, &image, "test"), ESTATUS_SUCCESS);
    EXPECT_EQ(image.floats()[0], -100.0F);
    EXPECT_EQ(image.floats()[3], static_cast<float>((103.0 - 150.0) / 1.5));
    // With the two figures that no file tells, radiance can be had.
    EXPECT_FALSE(second->unitUnavailableReason(DISPLAYUNIT_RADIANCE).isEmpty());
    second->clickInfo["Camera System Info"]->setValue("Photons per Count", 2);
    second->clickInfo["Camera System Info"]->setValue("Lens Solid Angle sr", 3);
    second->clickInfo["luminescent image"]->setValue("f Number", 1);
    EXPECT_EQ(second->unitUnavailableReason(DISPLAYUNIT_RADIANCE), QString());
}

TEST_F(ImageCorrectionTest, WithoutCorrectionsNothingIsRecorded)
{
    ASSERT_TRUE(importStack(optionsOf(twoRows), ImportProgress(), nullptr, &m_error)) << qPrintable(m_error);
    CORVSequenceDataset sequence;
    ASSERT_EQ(sequence.open(path("out")), ESTATUS_SUCCESS);
    CORVDataset* first = sequence.getDatasets()[0];
    EXPECT_FALSE(first->isLuminBackgroundSubtracted());
    EXPECT_FALSE(first->isLuminFlatFieldCorrected());
    double seconds = 0.0;
    EXPECT_FALSE(first->getExposureTime(&seconds));
    EXPECT_EQ(first->clickInfo["Camera System Info"], nullptr);
}

TEST_F(ImageCorrectionTest, AnInferredTableGoesAlong)
{
    ASSERT_TRUE(importStack(optionsOf(twoRows), ImportProgress(), nullptr, &m_error)) << qPrintable(m_error);
    QFile kept(path("out/images.csv"));
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), twoRows);
}

TEST_F(ImageCorrectionTest, ExposuresAreOneOrOneAnImage)
{
    ImportOptions options = optionsOf(twoRows);
    options.exposures = {1, 2, 3};
    EXPECT_FALSE(importStack(options, ImportProgress(), nullptr, &m_error));
    EXPECT_EQ(m_error, path("in") + ": 3 exposures are given for 2 images");
    EXPECT_FALSE(QFileInfo::exists(path("out")));
    options.exposures = {0.25};
    ASSERT_TRUE(importStack(options, ImportProgress(), nullptr, &m_error)) << qPrintable(m_error);
}

TEST_F(ImageCorrectionTest, ACsvCubeIsAStack)
{
    ImportOptions options;
    options.source = write("cube.csv", "x,y,em700,em720\n0,0,1,2\n1,0,3,4\n");
    options.tableText = "file,band,emission\ncube.csv,1,700\ncube.csv,2,720\n";
    options.output = path("out");
    ASSERT_TRUE(importStack(options, ImportProgress(), nullptr, &m_error)) << qPrintable(m_error);
    CORVSequenceDataset sequence;
    ASSERT_EQ(sequence.open(path("out")), ESTATUS_SUCCESS);
    CILImage* image = sequence.getDatasets()[1]->getCoreImage(IMAGETYPE_LUMINESCENT);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->floats()[1], 4.0F);
    options.tableText = "file,band,emission\ncube.csv,1,700\ncube.csv,3,720\n";
    EXPECT_FALSE(importStack(options, ImportProgress(), nullptr, &m_error));
    EXPECT_EQ(m_error, "inferred table:3: " + path("cube.csv") + ": there is no band 3 (the cube has 2)");
}

TEST_F(ImageCorrectionTest, ACsvCubeIsReadWithProgressAndWhatIsWrongInItIsToldByItsOwnLine)
{
    QByteArray text = "x,y,em700\n";
    for (int i = 0; i < 3000; ++i) {
        text += QByteArray::number(i % 60) + ',' + QByteArray::number(i / 60) + ",1\n";
    }
    ImportOptions options;
    options.source = write("cube.csv", text);
    options.tableText = "file,band,emission\ncube.csv,1,700\n";
    options.output = path("out");
    ImportReport report;
    QStringList told;
    const auto stop = [&told](int, int, const QString& what) {
        told.append(what);
        return told.size() < 2;
    };
    EXPECT_FALSE(importStack(options, stop, &report, &m_error));
    EXPECT_EQ(told, (QStringList{"Reading cube.csv", "Reading cube.csv"}));
    EXPECT_TRUE(report.aborted);
    EXPECT_EQ(m_error, "the import was aborted");
    EXPECT_FALSE(QFileInfo::exists(path("out")));
    options.source = write("cube.csv", "x,y,em700\n0,0,one\n");
    EXPECT_FALSE(importStack(options, ImportProgress(), nullptr, &m_error));
    EXPECT_EQ(m_error, path("cube.csv") + ":2: \"one\" is not a number");
}
