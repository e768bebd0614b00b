// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/ImageSupport.h"

#include "host/CILHistogram.h"

#include <cmath>

TEST(ChangeTypeTest, KeepsValuesThatFitAnyType)
{
    const std::vector<double> values{0, 1, 17, 255};
    for (const ORVDataTypes from : kAllPixelTypes) {
        for (const ORVDataTypes to : kAllPixelTypes) {
            CILImage image = makeImage(from, 2, 2, values);
            image.m_fBinning = 4.0F;
            ASSERT_EQ(EIL_SUCCESS, image.ChangeType(to));
            EXPECT_EQ(to, image.dataType());
            EXPECT_EQ(values, valuesOf(image));
            EXPECT_EQ(4.0F, image.m_fBinning);
            EXPECT_EQ(255.0, image.getMax());
        }
    }
}

TEST(ChangeTypeTest, RoundsAndLimitsToAnIntegerType)
{
    CILImage image = makeImage(ORVTYPE_DOUBLE, 5, 1, {-1.0, 1.5, 256.0, kNaN, 254.5});
    ASSERT_EQ(EIL_SUCCESS, image.ChangeType(ORVTYPE_BYTE));
    EXPECT_EQ((std::vector<double>{0, 2, 255, 0, 255}), valuesOf(image));
}

TEST(ChangeTypeTest, RefusesEmptyImagesAndUnknownTypes)
{
    CILImage image;
    EXPECT_EQ(EIL_FAILURE, image.ChangeType(ORVTYPE_FLOAT));
    image = makeImage(ORVTYPE_BYTE, 1, 1, {3});
    EXPECT_EQ(EIL_INVALID_ARGUMENT, image.ChangeType(ORVTYPE_NONE));
    EXPECT_EQ(3.0, image.value(0));
}

TEST(ImageArithmeticTest, MultipliesAndDividesPixelByPixel)
{
    CILImage image = makeImage(ORVTYPE_DOUBLE, 2, 2, {1, 2, 3, 4});
    const CILImage other = makeImage(ORVTYPE_BYTE, 2, 2, {2, 4, 5, 8});
    image *= other;
    EXPECT_EQ((std::vector<double>{2, 8, 15, 32}), valuesOf(image));
    image /= other;
    EXPECT_EQ((std::vector<double>{1, 2, 3, 4}), valuesOf(image));
    image /= 0.5;
    EXPECT_EQ((std::vector<double>{2, 4, 6, 8}), valuesOf(image));
    image *= image;
    EXPECT_EQ((std::vector<double>{4, 16, 36, 64}), valuesOf(image));
    EXPECT_TRUE(image.lastOperationOk());
}

TEST(ImageArithmeticTest, KeepsItsOwnTypeAndItsLimits)
{
    CILImage image = makeImage(ORVTYPE_BYTE, 3, 1, {100, 3, 7});
    const CILImage other = makeImage(ORVTYPE_FLOAT, 3, 1, {3, 0.5, 0});
    image *= other;
    EXPECT_EQ(ORVTYPE_BYTE, image.dataType());
    EXPECT_EQ((std::vector<double>{255, 2, 0}), valuesOf(image));
    image /= 0.0; // 255 / 0 is limited, 0 / 0 is no number
    EXPECT_EQ((std::vector<double>{255, 255, 0}), valuesOf(image));
}

TEST(ImageArithmeticTest, DivisionByZeroStaysVisibleInFloats)
{
    CILImage image = makeImage(ORVTYPE_FLOAT, 2, 1, {1, 0});
    image /= makeImage(ORVTYPE_BYTE, 2, 1, {0, 0});
    EXPECT_EQ(kInfinity, image.value(0));
    EXPECT_TRUE(std::isnan(image.value(1)));
}

TEST(ImageArithmeticTest, AnotherSizeIsRefused)
{
    CILImage image = makeImage(ORVTYPE_BYTE, 2, 1, {1, 2});
    image *= makeImage(ORVTYPE_BYTE, 1, 2, {3, 3});
    EXPECT_FALSE(image.lastOperationOk());
    EXPECT_EQ((std::vector<double>{1, 2}), valuesOf(image));
    image /= CILImage();
    EXPECT_FALSE(image.lastOperationOk());
    image *= makeImage(ORVTYPE_BYTE, 2, 1, {3, 3});
    EXPECT_TRUE(image.lastOperationOk());
}

TEST(ImageArithmeticTest, ConstantFillsEveryType)
{
    for (const ORVDataTypes type : kAllPixelTypes) {
        CILImage image = makeImage(type, 2, 1, {1, 2});
        image.setConstData(200);
        EXPECT_EQ((std::vector<double>{200, 200}), valuesOf(image));
    }
    CILImage empty;
    empty.setConstData(3);
    EXPECT_TRUE(empty.isEmpty());
}

TEST(ImageStatisticsTest, CoverTheFinitePixels)
{
    CILImage image = makeImage(ORVTYPE_DOUBLE, 5, 1, {3, kNaN, -2, kInfinity, -kInfinity});
    EXPECT_EQ(-2.0, image.getMin());
    EXPECT_EQ(3.0, image.Max());
    image = makeImage(ORVTYPE_FLOAT, 1, 1, {kNaN});
    EXPECT_EQ(0.0, image.Min());
    EXPECT_EQ(0.0, image.Max());
    image.setConstData(5);
    EXPECT_EQ(0.0, image.Max()) << "statistics are those of the last refresh";
    image.RefreshImageStats();
    EXPECT_EQ(5.0, image.Min());
}

TEST(ImageThresholdTest, OnlyPixelsAboveTheLevelCount)
{
    for (const ORVDataTypes type : kAllPixelTypes) {
        CILImage image = makeImage(type, 3, 1, {9, 10, 11});
        image.m_fBinning = 2.0F;
        CILImage mask = makeImage(ORVTYPE_DOUBLE, 1, 1, {4});
        ASSERT_EQ(EIL_SUCCESS, image.Threshold(10.0F, mask));
        EXPECT_EQ(ORVTYPE_BYTE, mask.dataType());
        EXPECT_EQ((std::vector<double>{0, 0, 1}), valuesOf(mask));
        EXPECT_EQ(2.0F, mask.m_fBinning);
        EXPECT_EQ(1.0, mask.Max());
    }
}

TEST(ImageThresholdTest, NaNIsBelowAndTheImageMayBeItsOwnMask)
{
    CILImage image = makeImage(ORVTYPE_FLOAT, 3, 1, {kNaN, -5, kInfinity});
    ASSERT_EQ(EIL_SUCCESS, image.Threshold(-6.0F, image));
    EXPECT_EQ((std::vector<double>{0, 1, 1}), valuesOf(image));
    CILImage empty;
    EXPECT_EQ(EIL_FAILURE, empty.Threshold(0.0F, image));
    EXPECT_EQ(3, image.m_lWidth);
}

namespace {

const std::vector<double> kDot{0, 0, 0, 0, 0, //
                               0, 0, 0, 0, 0, //
                               0, 0, 9, 0, 0, //
                               0, 0, 0, 0, 0, //
                               0, 0, 0, 0, 0};
const std::vector<double> kBlock{0, 0, 0, 0, 0, //
                                 0, 9, 9, 9, 0, //
                                 0, 9, 9, 9, 0, //
                                 0, 9, 9, 9, 0, //
                                 0, 0, 0, 0, 0};

} // namespace

TEST(MorphologyTest, DilationGrowsAndErosionShrinksByTheKernel)
{
    for (const ORVDataTypes type : kAllPixelTypes) {
        CILImage image = makeImage(type, 5, 5, kDot);
        ASSERT_EQ(EIL_SUCCESS, image.Dilate(3, 1));
        EXPECT_EQ(type, image.dataType());
        EXPECT_EQ(kBlock, valuesOf(image));
        ASSERT_EQ(EIL_SUCCESS, image.Erode(3, 1));
        EXPECT_EQ(kDot, valuesOf(image));
    }
}

TEST(MorphologyTest, CountRepeatsAndAnEvenKernelCountsAsTheNext)
{
    CILImage twice = makeImage(ORVTYPE_BYTE, 5, 5, kDot);
    ASSERT_EQ(EIL_SUCCESS, twice.Dilate(3, 2));
    EXPECT_EQ(std::vector<double>(25, 9.0), valuesOf(twice));
    CILImage even = makeImage(ORVTYPE_BYTE, 5, 5, kDot);
    ASSERT_EQ(EIL_SUCCESS, even.Dilate(2, 1));
    EXPECT_EQ(kBlock, valuesOf(even));
    ASSERT_EQ(EIL_SUCCESS, even.Erode(1000000, 1000000));
    EXPECT_EQ(std::vector<double>(25, 0.0), valuesOf(even));
}

TEST(MorphologyTest, BeyondTheBorderNothingIsAddedOrTakenAway)
{
    CILImage full = makeImage(ORVTYPE_BYTE, 3, 2, std::vector<double>(6, 1.0));
    ASSERT_EQ(EIL_SUCCESS, full.Erode(3, 3));
    EXPECT_EQ(std::vector<double>(6, 1.0), valuesOf(full));
    CILImage negative = makeImage(ORVTYPE_INT, 2, 1, {-7, -8});
    ASSERT_EQ(EIL_SUCCESS, negative.Dilate(3, 1));
    EXPECT_EQ((std::vector<double>{-7, -7}), valuesOf(negative));
}

TEST(MorphologyTest, OnePixelStaysAndBadArgumentsAreRefused)
{
    CILImage one = makeImage(ORVTYPE_DOUBLE, 1, 1, {2.5});
    EXPECT_EQ(EIL_SUCCESS, one.Dilate(5, 4));
    EXPECT_EQ(EIL_SUCCESS, one.Erode(5, 0));
    EXPECT_EQ(2.5, one.value(0));
    EXPECT_EQ(EIL_INVALID_ARGUMENT, one.Dilate(0, 1));
    EXPECT_EQ(EIL_INVALID_ARGUMENT, one.Erode(3, -1));
    CILImage empty;
    EXPECT_EQ(EIL_FAILURE, empty.Dilate(3, 1));
}

TEST(MorphologyTest, NaNsCountAsAbsent)
{
    CILImage image = makeImage(ORVTYPE_FLOAT, 3, 1, {kNaN, 2, 5});
    ASSERT_EQ(EIL_SUCCESS, image.Erode(3, 1));
    EXPECT_EQ((std::vector<double>{2, 2, 2}), valuesOf(image));
    image = makeImage(ORVTYPE_DOUBLE, 4, 1, {kNaN, kNaN, kNaN, 5});
    ASSERT_EQ(EIL_SUCCESS, image.Dilate(3, 1));
    EXPECT_TRUE(std::isnan(image.value(0)));
    EXPECT_TRUE(std::isnan(image.value(1)));
    EXPECT_EQ(5.0, image.value(2));
}

TEST(HistogramTest, CountsInBinsOfEqualWidth)
{
    CILHistogram histogram;
    histogram.setMaxBins(4);
    histogram.setImageMin(0);
    histogram.setImageMax(8);
    makeImage(ORVTYPE_DOUBLE, 4, 2, {0, 1.9, 2, 7.9, 8, -5, 99, kNaN}).Histogram(histogram);
    EXPECT_EQ((std::vector<double>{3, 1, 0, 3}), histogram.bins());
}

TEST(HistogramTest, IntegratesInPlaceOrIntoAnother)
{
    CILHistogram histogram;
    histogram.setMaxBins(3);
    histogram.setImageMax(3);
    for (const double v : {0.5, 1.5, 1.6, 2.5}) {
        histogram.add(v);
    }
    CILHistogram sums;
    histogram.integrate(&sums);
    EXPECT_EQ((std::vector<double>{1, 2, 1}), histogram.bins());
    EXPECT_EQ((std::vector<double>{1, 3, 4}), sums.bins());
    histogram.integrate(nullptr);
    EXPECT_EQ((std::vector<double>{1, 3, 4}), histogram.bins());
}

TEST(HistogramTest, LevelIsTheFirstBinThatReachesTheCount)
{
    CILHistogram histogram;
    histogram.bins() = {1, 3, 3, 4};
    EXPECT_EQ(0, histogram.findLevel(0.5F));
    EXPECT_EQ(0, histogram.findLevel(1.0F));
    EXPECT_EQ(1, histogram.findLevel(2.0F));
    EXPECT_EQ(1, histogram.findLevel(3.0F));
    EXPECT_EQ(3, histogram.findLevel(3.5F));
    EXPECT_EQ(3, histogram.findLevel(100.0F));
    EXPECT_EQ(0, CILHistogram().findLevel(1.0F));
    const CIL1DData& row = histogram;
    EXPECT_EQ(1, row.findLevel(2.0F));
}

TEST(HistogramTest, TheNinetyNinePointNinePercentLevelOfARamp)
{
    CILImage ramp;
    ramp.InitWithType(ORVTYPE_BYTE, 256, 4);
    for (std::size_t i = 0; i < ramp.pixelCount(); ++i) {
        ramp.setValue(i, static_cast<double>(i % 256));
    }
    ramp.RefreshImageStats();
    CILHistogram histogram;
    histogram.setMaxBins(256);
    histogram.setImageMin(ramp.Min());
    histogram.setImageMax(ramp.Max());
    ramp.Histogram(histogram);
    histogram.integrate(nullptr);
    EXPECT_EQ(255, histogram.findLevel(static_cast<float>(256 * 0.999 * 4)));
    EXPECT_EQ(127, histogram.findLevel(512.0F));
}

TEST(HistogramTest, AnEmptyRangeAndAHugeOneWork)
{
    CILHistogram histogram;
    histogram.setMaxBins(2);
    histogram.setImageMin(5);
    histogram.setImageMax(5);
    histogram.add(5);
    histogram.add(6);
    EXPECT_EQ((std::vector<double>{1, 1}), histogram.bins());
    histogram.setImageMin(-1.7e308);
    histogram.setImageMax(1.7e308);
    histogram.reset();
    histogram.add(-1e308);
    histogram.add(1e308);
    EXPECT_EQ((std::vector<double>{1, 1}), histogram.bins());
    histogram.setMaxBins(0);
    histogram.reset();
    EXPECT_EQ(1U, histogram.bins().size());
}
