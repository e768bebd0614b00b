// SPDX-License-Identifier: GPL-3.0-or-later
// What an import does with dark images, backgrounds and sizes, and that the sequence tells it.
#include "services/importer/PreparedImage.h"
#include "services/importer/StackFixture.h"

#include <cmath>

namespace {

class ImagePreparationTest : public StackFixture
{
protected:
    void background(const char* text)
    {
        QString reason;
        ASSERT_TRUE(m_options.background.parse(text, &reason)) << qPrintable(reason);
    }
    // The stored pixel of image i.
    double pixel(int i, std::size_t at)
    {
        CORVSequenceDataset sequence;
        open(sequence);
        CILImage* image = sequence.getDatasets()[i]->getCoreImage(IMAGETYPE_LUMINESCENT);
        return image != nullptr && at < image->pixelCount() ? image->value(at) : std::nan("");
    }
    PreparedImage told(int i)
    {
        CORVSequenceDataset sequence;
        open(sequence);
        return PreparedImage::of(sequence.getDatasets()[i]->clickInfo);
    }
};

} // namespace

TEST_F(ImagePreparationTest, EachImageLosesItsOwnBackgroundAndTheSequenceTellsHowMuch)
{
    makeStack(); // ramps of 100, 200 and 300 and more
    background("percentile:50");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(m_report.background, "percentile:50");
    ASSERT_EQ(m_report.prepared.size(), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(m_report.prepared[i].background, 100.0 * (i + 1) + 11.5);
        EXPECT_EQ(m_report.prepared[i].negatives, 6);
        EXPECT_EQ(told(i).background, 100.0 * (i + 1) + 11.5);
        EXPECT_EQ(told(i).rule, "percentile:50");
        EXPECT_EQ(told(i).negatives, 6);
    }
    EXPECT_EQ(pixel(2, 0), -11.5) << "below 0 it stays";
    CORVSequenceDataset sequence;
    open(sequence);
    EXPECT_TRUE(sequence.getDatasets()[0]->isLuminBackgroundSubtracted());
}

TEST_F(ImagePreparationTest, ARegionIsTakenInEachImage)
{
    makeStack();
    background("rect:0,0,2,1");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(m_report.prepared[1].background, 200.5);
    EXPECT_EQ(pixel(1, 1), 0.5);
    m_options.output = path("beyond");
    background("rect:0,0,9,9");
    EXPECT_EQ(refusal(), m_options.table + ":2: a.tif: the region of the background, rect:0,0,9,9, reaches beyond the "
                                           "image of 4 x 3 pixels");
}

TEST_F(ImagePreparationTest, DarkImagesComeBeforeTheBackground)
{
    makeStack();
    writeRamp("dark/a.tif", 1);
    writeRamp("dark/b.tif", 2);
    writeRamp("dark/c.tif", 3);
    m_options.dark = path("dark");
    background("percentile:0");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(m_report.darkMatching, "by name");
    EXPECT_EQ(m_report.prepared[1].background, 198.0);
    EXPECT_EQ(m_report.prepared[1].negatives, 0);
    EXPECT_EQ(told(2).dark, "c.tif");
    EXPECT_EQ(told(2).background, 297.0);
    EXPECT_EQ(pixel(2, 5), 0.0);
}

TEST_F(ImagePreparationTest, TooBrightADarkImageLeavesWhatIsBelowZero)
{
    makeStack();
    m_options.dark = writeRamp("dark.tif", 200);
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(pixel(0, 0), -100.0);
    EXPECT_EQ(m_report.prepared[0].negatives, 12);
    EXPECT_EQ(m_report.prepared[1].negatives, 0);
    EXPECT_FALSE(m_report.prepared[0].background);
}

TEST_F(ImagePreparationTest, PixelsWithoutAValueTakeNoPart)
{
    makeStack();
    writeTiffFile("stack/b.tif",
                  makeImage(ORVTYPE_FLOAT, 4, 3, [](long x, long y) { return x + y == 0 ? std::nan("") : 50.0; }));
    m_options.skipInvalid = true;
    background("percentile:0");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(m_report.invalid, 1);
    EXPECT_EQ(m_report.prepared[0].background, 100.0) << "the pixel has a value in this image";
    EXPECT_EQ(m_report.prepared[1].background, 50.0);
    EXPECT_EQ(m_report.prepared[1].negatives, 0);
    EXPECT_EQ(pixel(1, 0), 0.0);
    m_options.dark = writeRamp("dark.tif", 10);
    m_options.background = BackgroundRule();
    m_options.output = path("dark out");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(pixel(1, 0), 0.0) << "nothing is subtracted from what is not there";
    EXPECT_EQ(m_report.prepared[1].negatives, 0);
}

TEST_F(ImagePreparationTest, SizesThatDifferAreBroughtToOne)
{
    makeStack();
    writeRamp("stack/b.tif", 200, 8, 6);
    m_options.sizes = SizeRule::Crop;
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(m_report.width, 4);
    EXPECT_EQ(m_report.height, 3);
    EXPECT_EQ(m_report.sizes, "cut to the smallest at the right and the bottom");
    EXPECT_EQ(pixel(1, 4), 210.0);

    m_options.sizes = SizeRule::Bin;
    m_options.output = path("binned");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(m_report.prepared[1].binned, 2);
    EXPECT_EQ(pixel(1, 0), 200.0 + 201.0 + 210.0 + 211.0);
    EXPECT_EQ(pixel(0, 0), 100.0);

    m_options.sizes = SizeRule::Pad;
    m_options.output = path("padded");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(m_report.width, 8);
    EXPECT_EQ(m_report.height, 6);
    EXPECT_EQ(m_report.invalid, 8 * 6 - 4 * 3);
    EXPECT_EQ(m_report.warnings, QStringList("36 of 48 pixels have no value in some image and are left out"));
    EXPECT_EQ(pixel(1, 4), 0.0) << "no value in the others";
}

TEST_F(ImagePreparationTest, ABinnedImageHasLargerPixelsAndADarkImageOfItsOwnSize)
{
    makeStack("file,emission,pixel_size\na.tif,510,20\nb.tif,530,10\n");
    writeRamp("stack/b.tif", 200, 8, 6);
    m_options.sizes = SizeRule::Bin;
    writeRamp("dark/a.tif", 100);
    writeRamp("dark/b.tif", 200, 8, 6);
    m_options.dark = path("dark");
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(pixel(1, 0), 0.0);
    CORVSequenceDataset sequence;
    open(sequence);
    EXPECT_EQ(value(sequence.getDatasets()[0], "Camera System Info", "Pixel Size cm"), "0.002");
    EXPECT_EQ(value(sequence.getDatasets()[1], "Camera System Info", "Pixel Size cm"), "0.002");
    m_options.dark = writeRamp("one.tif", 1);
    m_options.output = path("one");
    EXPECT_EQ(refusal(), path("one.tif") + ": the dark image has 4 x 3 pixels where b.tif has 8 x 6");
    m_options.dark.clear();
    m_options.flat = writeRamp("flat.tif", 1);
    EXPECT_EQ(refusal(), path("flat.tif") + ": the flat field has 4 x 3 pixels where b.tif has 8 x 6");
}

TEST_F(ImagePreparationTest, AnImageInColoursIsBroughtToTheSizeToo)
{
    makeStack("file,emission\na.tif,510\nd.png,530\n");
    QImage picture(8, 6, QImage::Format_RGB32);
    picture.fill(qRgb(0, 40, 0)); // one pure hue
    ASSERT_TRUE(picture.save(path("stack/d.png")));
    m_options.sizes = SizeRule::Bin;
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_EQ(pixel(1, 3), 160.0);
}

TEST_F(ImagePreparationTest, WithoutAnyNothingIsTold)
{
    makeStack();
    ASSERT_TRUE(import()) << qPrintable(m_error);
    EXPECT_FALSE(told(0).isSubtracted());
    EXPECT_TRUE(told(0).json().isEmpty());
    EXPECT_TRUE(m_report.background.isEmpty());
    EXPECT_TRUE(m_report.sizes.isEmpty());
    CORVSequenceDataset sequence;
    open(sequence);
    EXPECT_EQ(value(sequence.getDatasets()[0], "luminescent image", "Negative Pixels"), "absent");
}
