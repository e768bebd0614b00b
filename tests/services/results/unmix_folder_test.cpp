// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/UnmixFolder.h"

#include "services/support/CliFixture.h"

namespace {

class UnmixFolderTest : public CliFixture
{
protected:
    QString summary(const QByteArray& json) const
    {
        write(QStringLiteral("res/summary.json"), json);
        return path("res");
    }
};

TEST_F(UnmixFolderTest, TellsWhatTheSummaryTells)
{
    const UnmixFolder folder(summary(R"({"unit": "Radiance", "binning": 4, "decayCorrected": {"isotope": "F-18"},
        "components": [{"name": "Dye A", "map": "01_Dye_A.tif"}, {"name": "Dye B", "map": "02_Dye_B.tif"}],
        "files": ["01_Dye_A.tif", "01_Dye_A.png", "02_Dye_B.tif", "summary.json"]})"));
    EXPECT_EQ(folder.path(), path("res") + '/');
    EXPECT_EQ(folder.label(), "res");
    EXPECT_EQ(folder.unit(), "Radiance");
    EXPECT_EQ(folder.binning(), 4.0);
    EXPECT_TRUE(folder.isDecayCorrected());
    ASSERT_EQ(folder.components().size(), 2);
    EXPECT_EQ(folder.components()[1].name, "Dye B");
    EXPECT_EQ(folder.components()[1].map, "02_Dye_B.tif");
    EXPECT_EQ(folder.mapFiles(), (QStringList{"01_Dye_A.tif", "02_Dye_B.tif"}));
}

TEST_F(UnmixFolderTest, WhatIsNoMapOfAComponentIsNoneOfTheMaps)
{
    const UnmixFolder folder(summary(R"({"errorMaps": ["01_Dye_error.tif"],
        "files": ["01_Dye.tif", "01_Dye_error.tif", "maps.ome.tif", "residual.tif"]})"));
    EXPECT_EQ(folder.mapFiles(), QStringList("01_Dye.tif"));
}

TEST_F(UnmixFolderTest, NamesThatLeadElsewhereAreCutToTheFolder)
{
    const UnmixFolder folder(
        summary(R"({"components": [{"name": "x", "map": "../../other/map.tif"}], "files": ["/etc/other.tif"]})"));
    EXPECT_EQ(folder.components()[0].map, "map.tif");
    EXPECT_EQ(folder.mapFiles(), QStringList("other.tif"));
}

TEST_F(UnmixFolderTest, AFolderWithoutASummaryIsToldAsTheUserGaveIt)
{
    EXPECT_EQ(failureOf([this] { UnmixFolder(path("none"), QStringLiteral("./none")); }),
              "./none: this is no folder with results of \"spum unmix\"");
    EXPECT_EQ(failureOf([this] { UnmixFolder(path("none")); }),
              path("none") + ": this is no folder with results of \"spum unmix\"");
}

TEST_F(UnmixFolderTest, AMapThatIsNotThereIsNamed)
{
    const UnmixFolder folder(summary("{}"));
    EXPECT_EQ(folder.binning(), 0.0);
    EXPECT_EQ(failureOf([&] { UnmixFolder::readMap(folder.path() + "01_x.tif"); }),
              path("res/01_x.tif") + ": the map is not there");
    EXPECT_TRUE(folder.readMask(4, 4).isNull());
}

} // namespace
