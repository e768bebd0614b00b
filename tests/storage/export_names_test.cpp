// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/exportNames.h"

#include <QDir>

#include <gtest/gtest.h>

TEST(ExportNamesTest, ADatasetIsNamedByItsComponentAndWithSeveralSpotsByItsSpotToo)
{
    EXPECT_EQ(unmixedDatasetName(0, 0, 1), "Unmixed Result 1");
    EXPECT_EQ(unmixedDatasetName(11, 0, 1), "Unmixed Result 12");
    EXPECT_EQ(unmixedDatasetName(1, 0, 2), "Unmixed Result 2001");
    EXPECT_EQ(unmixedDatasetName(1, 1, 2), "Unmixed Result 2002");
    EXPECT_EQ(unmixedDatasetName(0, 41, 50), "Unmixed Result 1042");
}

TEST(ExportNamesTest, OfLongNumbersTheLastThreeDigitsCount)
{
    EXPECT_EQ(unmixedDatasetName(1233, 0, 1), "Unmixed Result 234");
    EXPECT_EQ(unmixedDatasetName(0, 1000, 2000), "Unmixed Result 1001");
}

TEST(ExportNamesTest, TheLabelIsTheIdWithoutItsLastThreeCharactersAndTheComponent)
{
    EXPECT_EQ(unmixedDatasetLabel("SEQ12345", 0), "SEQ12UMX1");
    EXPECT_EQ(unmixedDatasetLabel("SEQ12345", 11), "SEQ12UMX12");
    EXPECT_EQ(unmixedDatasetLabel("ab", 1), "UMX2");
    EXPECT_EQ(unmixedDatasetLabel("", 1), "UMX2");
}

TEST(ExportNamesTest, TheFolderBearsTheSequencesId)
{
    EXPECT_EQ(unmixedTargetFolder("SEQ 1"), QDir::tempPath() + "/SPUM_SEQ 1");
}

TEST(ExportNamesTest, AnIdCannotLeadOutOfTheTemporaryDirectory)
{
    EXPECT_EQ(unmixedTargetFolder("../../etc"), QDir::tempPath() + "/SPUM_.._.._etc");
}
