// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/componentCount.h"
#include "windows/maskPixels.h"

#include "windows/MaskPicture.h"

#include <limits>

namespace {

TEST(ComponentCountTest, BackgroundSignalsCount)
{
    EXPECT_EQ(componentCount(3, false, false), 3);
    EXPECT_EQ(componentCount(3, true, false), 4);
    EXPECT_EQ(componentCount(3, false, true), 4);
    EXPECT_EQ(componentCount(3, true, true), 5);
    EXPECT_EQ(componentCount(0, false, false), 0);
}

TEST(ComponentCountTest, FreshFluorescentSequenceWithOneRowIsComplete)
{
    EXPECT_TRUE(isComponentCountValid(componentCount(1, true, false), 12));
}

TEST(ComponentCountTest, TwoToTheImagesAtMostSix)
{
    for (int nImages = 0; nImages < 12; ++nImages) {
        for (int n = 0; n < 12; ++n) {
            EXPECT_EQ(isComponentCountValid(n, nImages), n >= 2 && n <= nImages && n <= 6) << n << " of " << nImages;
        }
    }
    EXPECT_EQ(componentLimit(1), 1);
    EXPECT_EQ(componentLimit(6), 6);
    EXPECT_EQ(componentLimit(7), 6);
}

TEST(ComponentCountTest, ValidCountsHaveNoWarning)
{
    EXPECT_TRUE(componentCountWarning(2, 2).isEmpty());
    EXPECT_TRUE(componentCountWarning(2, 9).isEmpty());
    EXPECT_TRUE(componentCountWarning(6, 9).isEmpty());
}

TEST(ComponentCountTest, WarningNamesTheLimit)
{
    EXPECT_EQ(componentCountWarning(1, 5), QString("Please select 2-5 components to unmix!"));
    EXPECT_EQ(componentCountWarning(6, 5), QString("Please select 2-5 components to unmix!"));
    EXPECT_EQ(componentCountWarning(1, 6), QString("Please select 2-6 components to unmix!"));
    EXPECT_EQ(componentCountWarning(7, 7), QString("Please select 2-6 components to unmix!"));
    EXPECT_EQ(componentCountWarning(0, 100), QString("Please select 2-6 components to unmix!"));
}

TEST(ComponentCountTest, TwoImagesHaveAWarningOfTheirOwn)
{
    EXPECT_EQ(componentCountWarning(1, 2), QString("Please select 2 components to unmix!"));
    EXPECT_EQ(componentCountWarning(3, 2), QString("Please select 2 components to unmix!"));
}

TEST(ComponentCountTest, OneImageCanNeverBeComplete)
{
    for (int n = 0; n < 10; ++n) {
        EXPECT_FALSE(isComponentCountValid(n, 1));
        EXPECT_EQ(componentCountWarning(n, 1), QString("Please select 2-1 components to unmix!"));
    }
}

TEST(ComponentCountTest, NoMoreThanSixCanBeAdded)
{
    EXPECT_FALSE(canAddComponent(6, 12));
    EXPECT_TRUE(canAddComponent(5, 12));
    EXPECT_FALSE(canAddComponent(3, 3));
    EXPECT_TRUE(canAddComponent(0, 1));
    EXPECT_FALSE(canAddComponent(1, 1));
    EXPECT_FALSE(canAddComponent(0, 0));
}

// ---- Pixels of the mask ----

class MaskPixelsTest : public ::testing::TestWithParam<ORVDataTypes>
{
};

TEST_P(MaskPixelsTest, NinePixelsAreTooFewAndTenAreEnough)
{
    CILImage mask = plainImage(GetParam(), 6, 5, 0.0);
    paint(mask, 1, 1, 3, 3, 1.0);
    EXPECT_EQ(countMaskPixels(mask), 9U);
    EXPECT_FALSE(isMaskValid(mask));
    setPixel(mask, 29, 200.0);
    EXPECT_EQ(countMaskPixels(mask), 10U);
    EXPECT_TRUE(isMaskValid(mask));
}

INSTANTIATE_TEST_SUITE_P(Types, MaskPixelsTest,
                         ::testing::Values(ORVTYPE_BYTE, ORVTYPE_USHORT, ORVTYPE_INT, ORVTYPE_FLOAT, ORVTYPE_DOUBLE));

TEST(MaskPixelsTest, OnlyWhatIsAboveZeroCounts)
{
    CILImage mask = plainImage(ORVTYPE_FLOAT, 4, 4, 1e-30);
    EXPECT_EQ(countMaskPixels(mask), 16U);
    paint(mask, 0, 0, 4, 1, -1.0);
    paint(mask, 0, 1, 4, 1, std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(countMaskPixels(mask), 8U);
}

TEST(MaskPixelsTest, EmptyMaskHasNone)
{
    EXPECT_EQ(countMaskPixels(CILImage()), 0U);
    EXPECT_FALSE(isMaskValid(CILImage()));
}

} // namespace
