// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EngineEnums.h"
#include "services/basis/ModeNames.h"
#include "services/basis/UnitNames.h"

#include <gtest/gtest.h>

TEST(UnitNamesTest, EachUnitIsFoundByItsOptionAndByItsText)
{
    ASSERT_EQ(UnitNames::options().size(), 4);
    for (int unit = DISPLAYUNIT_COUNTS; unit <= DISPLAYUNIT_EFFICIENCY; ++unit) {
        EXPECT_EQ(UnitNames::fromText(UnitNames::options()[unit]), unit);
        EXPECT_EQ(UnitNames::fromText(UnitNames::text(unit)), unit);
        EXPECT_EQ(UnitNames::fromText(' ' + UnitNames::text(unit).toUpper() + ' '), unit);
        EXPECT_FALSE(UnitNames::quantity(unit).isEmpty());
    }
}

TEST(UnitNamesTest, TheNamesAreThoseOfTheCommandLine)
{
    EXPECT_EQ(UnitNames::options(), (QStringList{"counts", "radiance", "radiant-efficiency", "efficiency"}));
    EXPECT_EQ(UnitNames::text(DISPLAYUNIT_RADIANT_EFFICIENCY), "Radiant Efficiency");
    EXPECT_EQ(UnitNames::quantity(DISPLAYUNIT_COUNTS), "counts");
}

TEST(UnitNamesTest, AnythingElseIsNoUnit)
{
    for (const char* text : {"", "count", "radiant", "4", "*"}) {
        EXPECT_EQ(UnitNames::fromText(text), -1) << text;
    }
    EXPECT_EQ(UnitNames::quantity(7), "");
}

TEST(ModeNamesTest, EachModeIsFoundByItsNameWithoutRegardToCase)
{
    for (int mode = RUNMODE_LIBRARY; mode <= RUNMODE_MANUAL; ++mode) {
        EXPECT_EQ(ModeNames::fromText(ModeNames::option(mode)), mode);
        EXPECT_EQ(ModeNames::fromText(ModeNames::option(mode).toUpper() + ' '), mode);
    }
    EXPECT_EQ(ModeNames::option(RUNMODE_LIBRARY), "library");
    EXPECT_EQ(ModeNames::option(RUNMODE_MANUAL), "manual");
}

TEST(ModeNamesTest, AnythingElseIsNoMode)
{
    for (const char* text : {"", "lib", "pca", "0"}) {
        EXPECT_EQ(ModeNames::fromText(text), -1) << text;
    }
}
