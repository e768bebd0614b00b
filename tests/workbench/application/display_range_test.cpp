// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/DisplayRange.h"

#include "host/CILImage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

CILImage ramp(long side)
{
    CILImage image;
    image.InitWithType(ORVTYPE_FLOAT, side, side);
    for (std::size_t i = 0; i < image.pixelCount(); ++i) {
        image.setValue(i, static_cast<double>(i));
    }
    return image;
}

TEST(DisplayRangeTest, AutomaticLeavesOutTheDarkestThousandthAndTheBrightestFifthOfIt)
{
    const CILImage image = ramp(100); // 0 to 9999
    const DisplayRange range = DisplayRange::automatic(image);
    EXPECT_NEAR(range.minimum, 10.0, 1.0);
    EXPECT_NEAR(range.maximum, 9997.0, 1.0);
    EXPECT_EQ(DisplayRange::whole(image), (DisplayRange{0.0, 9999.0}));
}

TEST(DisplayRangeTest, AHotPixelDoesNotDarkenTheRest)
{
    CILImage image = ramp(100);
    image.setValue(7, 1e12);
    EXPECT_LT(DisplayRange::automatic(image).maximum, 1e4);
    EXPECT_EQ(DisplayRange::whole(image).maximum, static_cast<double>(1e12F));
}

TEST(DisplayRangeTest, AFewPixelsInAnEmptyImageAreShownWhole)
{
    CILImage image;
    image.InitWithType(ORVTYPE_DOUBLE, 100, 100);
    image.setValue(5000, 3.0);
    EXPECT_EQ(DisplayRange::automatic(image), (DisplayRange{0.0, 3.0}));
}

TEST(DisplayRangeTest, ValuesThatAreNotFiniteDoNotCount)
{
    CILImage image = ramp(100);
    image.setValue(0, std::numeric_limits<double>::quiet_NaN());
    image.setValue(1, std::numeric_limits<double>::infinity());
    EXPECT_EQ(DisplayRange::whole(image), (DisplayRange{2.0, 9999.0}));
    EXPECT_LE(DisplayRange::automatic(image).maximum, 9999.0);
}

TEST(DisplayRangeTest, AnEmptyOrConstantImageHasAnEmptyRange)
{
    EXPECT_TRUE(DisplayRange::automatic(CILImage()).isEmpty());
    CILImage image;
    image.InitWithType(ORVTYPE_USHORT, 4, 4);
    image.setConstData(7.0);
    EXPECT_TRUE(DisplayRange::automatic(image).isEmpty());
    EXPECT_EQ(DisplayRange::automatic(image).minimum, 7.0);
}

TEST(DisplayRangeTest, AnEndThatPassesTheOtherTakesItAlong)
{
    const DisplayRange range{2.0, 5.0};
    EXPECT_EQ(range.withMinimum(3.0), (DisplayRange{3.0, 5.0}));
    EXPECT_EQ(range.withMinimum(9.0), (DisplayRange{9.0, 9.0}));
    EXPECT_EQ(range.withMaximum(1.0), (DisplayRange{1.0, 1.0}));
    EXPECT_EQ(range.united({-1.0, 3.0}), (DisplayRange{-1.0, 5.0}));
}

TEST(RangeScaleTest, EndsAreTheValuesThemselves)
{
    const RangeScale scale({-1e-9, 3e-9});
    EXPECT_EQ(scale.value(0), -1e-9);
    EXPECT_EQ(scale.value(RangeScale::kSteps), 3e-9);
    EXPECT_EQ(scale.step(1e-9), RangeScale::kSteps / 2);
    EXPECT_EQ(scale.step(-5.0), 0);
    EXPECT_EQ(scale.step(5.0), RangeScale::kSteps);
    EXPECT_EQ(scale.value(2 * RangeScale::kSteps), 3e-9);
}

TEST(RangeScaleTest, EveryStepComesBack)
{
    const RangeScale scale({-96406.2, 6.4e7});
    for (int step = 0; step <= RangeScale::kSteps; ++step) {
        EXPECT_EQ(scale.step(scale.value(step)), step);
    }
}

TEST(RangeScaleTest, ASingleValueAndTheWholeOfTheDoublesDivideByNothing)
{
    EXPECT_EQ(RangeScale({4.0, 4.0}).step(4.0), 0);
    EXPECT_EQ(RangeScale({4.0, 4.0}).value(500), 4.0);
    constexpr double most = std::numeric_limits<double>::max();
    EXPECT_EQ(RangeScale({-most, most}).step(0.0), RangeScale::kSteps / 2);
    EXPECT_TRUE(std::isfinite(RangeScale({-most, most}).value(300)));
    EXPECT_EQ(RangeScale({0.0, 1.0}).step(std::nan("")), 0);
}

} // namespace
