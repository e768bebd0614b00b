// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/ReadOut.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

const QLocale c = QLocale::c();

struct ReadOutCase
{
    const char* name;
    ReadOut found;
    QLocale locale;
    const char* text;
};

class ReadOutTexts : public ::testing::TestWithParam<ReadOutCase>
{
};

TEST_P(ReadOutTexts, TellWhatLiesBelowThePointer)
{
    EXPECT_EQ(GetParam().found.text(GetParam().locale), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Cases, ReadOutTexts,
                         ::testing::Values(ReadOutCase{"PixelAndValueWithItsUnit",
                                                       {"", {512, 300}, std::nullopt, 1234567.0, "p/s/cm²/sr"},
                                                       c,
                                                       "x 512, y 300: 1.235e+06 p/s/cm²/sr"},
                                           ReadOutCase{"MillimetresWhenThePixelIsKnown",
                                                       {"", {0, 99}, 0.1, 7.0, "counts"},
                                                       c,
                                                       "x 0, y 99 (0.05 mm, 9.95 mm): 7 counts"},
                                           ReadOutCase{"NumbersOfTheLocaleWithoutGroupsOfThousands",
                                                       {"", {12345, 0}, 1.0, 0.25, ""},
                                                       QLocale(QLocale::German),
                                                       "x 12345, y 0 (12345,50 mm, 0,50 mm): 0,25"},
                                           ReadOutCase{
                                               "WhichImageAndThatItIsAMean",
                                               {"emission 700 nm", {0, 0}, std::nullopt, 2.0, "efficiency", 4},
                                               c,
                                               "emission 700 nm   x 0, y 0: 2 efficiency (mean of 4 x 4 pixels)"}),
                         [](const auto& test) { return std::string(test.param.name); });

// Names come from users and files, and a status bar is as wide as what it shows.
TEST(ReadOutTest, ALongNameLosesItsMiddle)
{
    ReadOut found;
    found.image = QString(150, 'a') + QString(150, 'b');
    EXPECT_EQ(found.text(c), QString(20, 'a') + QChar(0x2026) + QString(20, 'b') + "   x 0, y 0");
    found.image = QString(41, 'c');
    EXPECT_EQ(found.text(c), QString(41, 'c') + "   x 0, y 0");
    found.image = "two\nlines";
    EXPECT_EQ(found.text(c), "two lines   x 0, y 0");
}

TEST(ReadOutTest, WithoutANumberThereIsNone)
{
    ReadOut found;
    EXPECT_EQ(found.text(c), "x 0, y 0");
    found.value = std::nan("");
    found.quantity = "counts";
    EXPECT_EQ(found.text(c), "x 0, y 0: no value");
}

} // namespace
