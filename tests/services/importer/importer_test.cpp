// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/Importer.h"

#include "services/importer/StackFixture.h"

#include <QRegExp>
#include <QSet>

namespace {

using ImporterTest = StackFixture;

} // namespace

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
