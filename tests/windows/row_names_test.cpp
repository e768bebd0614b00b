// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/rowNames.h"

#include <gtest/gtest.h>

namespace {

TEST(RowNamesTest, UnnamedRowsCountFromOne)
{
    EXPECT_EQ(nextRowName({}), "UMX1");
    EXPECT_EQ(nextRowName({"UMX1"}), "UMX2");
    EXPECT_EQ(nextRowName({"TissueAF", "ICG"}), "UMX1");
    EXPECT_EQ(nextRowName({"TissueAF", "UMX1", "ICG"}), "UMX2");
}

TEST(RowNamesTest, ANameMayComeTwiceAfterARemoval)
{
    EXPECT_EQ(nextRowName({"TissueAF", "UMX2"}), "UMX2");
}

TEST(RowNamesTest, ANameOfItsOwnDoesNotStartWithThePrefixInThisSpelling)
{
    EXPECT_EQ(namedRowCount({"UMX1", "UMXed", "umx1", "my UMX", ""}), 3);
}

TEST(RowNamesTest, AnAnalysisStartsWithTissueAndTrimmedProbes)
{
    EXPECT_EQ(startingRows({}, false), QStringList{"TissueAF"});
    EXPECT_EQ(startingRows({" ICG ", "Cy5.5"}, false), (QStringList{"TissueAF", "ICG", "Cy5.5"}));
    EXPECT_EQ(startingRows({"RAD-F18", "rad-F18"}, true), (QStringList{"TissueAF", "F18", "rad-F18"}));
    EXPECT_EQ(startingRows({"RAD-F18"}, false), (QStringList{"TissueAF", "RAD-F18"}));
}

TEST(RowNamesTest, TheTissueIsTheBackgroundInAnyCase)
{
    EXPECT_TRUE(isBackgroundName("TissueAF"));
    EXPECT_TRUE(isBackgroundName("tissueaf"));
    EXPECT_FALSE(isBackgroundName("TissueAF 2"));
    EXPECT_FALSE(isBackgroundName(""));
}

} // namespace
