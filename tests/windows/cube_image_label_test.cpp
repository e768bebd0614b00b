// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/cubeImageLabel.h"

#include <gtest/gtest.h>

namespace {

TEST(CubeImageLabelTest, NamesTheFiltersOfAnImage)
{
    for (const int nType : {0, 1}) {
        EXPECT_EQ(cubeImageLabel({"535", "620"}, nType), "Emission:620, Excitation: 535");
    }
}

TEST(CubeImageLabelTest, NamesTimeAndIntervalOfATimePoint)
{
    EXPECT_EQ(cubeImageLabel({"Int10", "3725"}, 2), "Time(hh:mm:ss):01:02:05, Interval: Int10");
}

TEST(ClockTimeTest, TableOfSeconds)
{
    const struct
    {
        const char* seconds;
        const char* expected;
    } table[] = {{"0", "00:00:00"},     {"59", "00:00:59"},    {"60", "00:01:00"},    {"3599.9", "00:59:59"},
                 {"86399", "23:59:59"}, {"86400", "24:00:00"}, {"90000", "25:00:00"}, {"360000", "100:00:00"},
                 {" 7 ", "00:00:07"},   {"", "00:00:00"},      {"later", "00:00:00"}, {"-5", "00:00:00"},
                 {"nan", "00:00:00"},   {"1e400", "00:00:00"}, {"1e300", "00:00:00"}};
    for (const auto& row : table) {
        EXPECT_EQ(clockTime(row.seconds), row.expected) << row.seconds;
    }
}

TEST(CubeMaxScaleTest, GoesFromTheWholeRangeToATenthOfIt)
{
    EXPECT_DOUBLE_EQ(cubeMaxScale(1), 1.0);
    EXPECT_DOUBLE_EQ(cubeMaxScale(4), 0.7);
    EXPECT_DOUBLE_EQ(cubeMaxScale(10), 0.1);
}

} // namespace
