// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/program/ProgramFixture.h"

namespace {

class OwnOutputsProgramTest : public ProgramFixture
{
};

} // namespace

TEST_F(OwnOutputsProgramTest, TheMaskOfAResultServesAsAMask)
{
    simulate();
    succeed({"unmix", "seq", "--library", truth(), "--mask", "ellipse:10,10,40,30", "--out", "first"});
    succeed({"unmix", "seq", "--library", truth(), "--mask", "first/mask.png", "--out", "second"});
    EXPECT_EQ(contentOf(path("second/mask.png")), contentOf(path("first/mask.png")));
    EXPECT_EQ(contentOf(path("second/01_TissueAF.tif")), contentOf(path("first/01_TissueAF.tif")));
    EXPECT_EQ(succeed({"redo", "second", "--json"}).json()["same"], true);
    // Of a finer analysis, too.
    succeed({"unmix", "seq", "--library", truth(), "--mask", "first/mask.png", "--binning", "8", "--out", "coarse"});
}

TEST_F(OwnOutputsProgramTest, TheLibraryOfAResultServesAsALibrary)
{
    simulate();
    EXPECT_EQ(spum({"unmix", "seq", "--ncomponents", "3", "--out", "auto"}).status, 0);
    EXPECT_EQ(spum({"unmix", "seq", "--library", "auto/library.csv", "--out", "known"}).status, 0);
    EXPECT_EQ(spum({"unmix", "seq", "--library", "auto/spectra.csv", "--out", "precise"}).status, 0);
    EXPECT_TRUE(QFileInfo::exists(path("known/03_UMX3.tif")));
    EXPECT_TRUE(QFileInfo::exists(path("precise/03_UMX3.tif")));
}
