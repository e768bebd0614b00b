// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/regionTexts.h"

#include <gtest/gtest.h>

namespace {

tagROIInfo measured()
{
    tagROIInfo region;
    region.name = "left\tlung";
    region.width = 3;
    region.height = 2;
    region.statistics.unit = "Counts";
    region.statistics.pixels = 6;
    region.statistics.invalidPixels = 2;
    region.statistics.mean = 1234567.125;
    region.statistics.minimum = 0.5;
    region.statistics.maximum = 2e9;
    region.statistics.deviation = 0.0;
    region.statistics.sum = 7407402.75;
    return region;
}

TEST(RegionTextsTest, CellsFollowTheLocaleAndAreEmptyWhereNothingIsKnown)
{
    EXPECT_EQ(regionTexts::cells(measured(), QLocale(QLocale::German)),
              (QStringList{"left\tlung", "6", "2", "", "1,2346e+06", "0,5", "2e+09", "0", "7,4074e+06"}));
    EXPECT_EQ(regionTexts::cells(tagROIInfo(), QLocale::c()), (QStringList{"", "", "", "", "", "", "", "", ""}));
    EXPECT_EQ(regionTexts::titles().size(), 9);
    EXPECT_EQ(regionTexts::titles().at(regionTexts::kInvalidColumn), "Invalid");
}

TEST(RegionTextsTest, TheTableHasAllDigitsAndALineForEachRegion)
{
    EXPECT_EQ(regionTexts::table({measured()}),
              "Region\tPixels\tInvalid\tArea (cm²)\tMean\tMinimum\tMaximum\tDeviation\tSum\tUnit\tShape\n"
              "left lung\t6\t2\t\t1234567.125\t0.5\t2e+09\t0\t7407402.75\tCounts\trect:0,0,3,2\n");
}

TEST(RegionTextsTest, ANewRegionGetsTheFirstNumberThatIsFree)
{
    tagROIInfo first;
    first.name = "ROI 1";
    tagROIInfo third;
    third.name = "ROI 3";
    EXPECT_EQ(regionTexts::freeName({}), "ROI 1");
    EXPECT_EQ(regionTexts::freeName({third, first}), "ROI 2");
}

} // namespace
