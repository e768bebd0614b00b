// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/CliProgress.h"

#include <gtest/gtest.h>

TEST(CliProgressTest, SecondsAreRoundedUpAndNeverNone)
{
    EXPECT_EQ(CliProgress::timeText(0.0), "1 s");
    EXPECT_EQ(CliProgress::timeText(-5.0), "1 s");
    EXPECT_EQ(CliProgress::timeText(11.2), "12 s");
    EXPECT_EQ(CliProgress::timeText(59.0), "59 s");
}

TEST(CliProgressTest, FromAMinuteOnThereAreMinutes)
{
    EXPECT_EQ(CliProgress::timeText(59.5), "1 min 00 s");
    EXPECT_EQ(CliProgress::timeText(185.0), "3 min 05 s");
    EXPECT_EQ(CliProgress::timeText(3600.0), "60 min 00 s");
}

TEST(CliProgressTest, WithAFractionTheRestIsTold)
{
    EXPECT_EQ(CliProgress::lineText("Fitting", 0.25, 10.0), "Fitting  25 %, 30 s left");
    EXPECT_EQ(CliProgress::lineText("Fitting", 0.999, 10.0), "Fitting  99 %, 1 s left");
    EXPECT_EQ(CliProgress::lineText("Fitting", 1.5, 10.0), "Fitting  100 %, 1 s left");
}

TEST(CliProgressTest, WithoutAFractionTheTimePassedIsTold)
{
    EXPECT_EQ(CliProgress::lineText("Fitting", -1.0, 3.0), "Fitting  3 s");
    EXPECT_EQ(CliProgress::lineText("Fitting", 0.0, 3.0), "Fitting  3 s");
}
