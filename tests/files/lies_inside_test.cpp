// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/liesInside.h"

#include <gtest/gtest.h>

TEST(LiesInsideTest, NamesStayInTheFolder)
{
    for (const char* name : {"", "a.tif", "below/a.tif", "below/../a.tif", "..a", "/data/set/a.tif", "/data/set/"}) {
        EXPECT_TRUE(orv::liesInside("/data/set", name)) << name;
        EXPECT_TRUE(orv::liesInside("/data/set/", name)) << name;
    }
    EXPECT_TRUE(orv::liesInside("/", "a"));
}

TEST(LiesInsideTest, NamesThatClimbOutDoNot)
{
    for (const char* name : {"..", "../a.tif", "below/../../a.tif", "../setting", "/data", "/data/settings/a.tif",
                             "/data/set/../a.tif", "/etc/passwd"}) {
        EXPECT_FALSE(orv::liesInside("/data/set", name)) << name;
        EXPECT_FALSE(orv::liesInside("/data/set/", name)) << name;
    }
}
