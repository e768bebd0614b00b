// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/ReadOut.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

const QLocale c = QLocale::c();

TEST(ReadOutTest, TellsPixelAndValueWithItsUnit)
{
    ReadOut found;
    found.pixel = {512, 300};
    found.value = 1234567.0;
    found.quantity = "p/s/cm²/sr";
    EXPECT_EQ(found.text(c), "x 512, y 300: 1.235e+06 p/s/cm²/sr");
}

TEST(ReadOutTest, TellsMillimetresWhenThePixelIsKnown)
{
    ReadOut found;
    found.pixel = {0, 99};
    found.pixelMm = 0.1;
    found.value = 7.0;
    found.quantity = "counts";
    EXPECT_EQ(found.text(c), "x 0, y 99 (0.05 mm, 9.95 mm): 7 counts");
}

TEST(ReadOutTest, FollowsTheLocaleWithoutGroupsOfThousands)
{
    ReadOut found;
    found.pixel = {12345, 0};
    found.pixelMm = 1.0;
    found.value = 0.25;
    EXPECT_EQ(found.text(QLocale(QLocale::German)), "x 12345, y 0 (12345,50 mm, 0,50 mm): 0,25");
}

TEST(ReadOutTest, TellsWhichImageAndThatItIsAMean)
{
    ReadOut found;
    found.image = "emission 700 nm";
    found.value = 2.0;
    found.quantity = "efficiency";
    found.averaged = 4;
    EXPECT_EQ(found.text(c), "emission 700 nm   x 0, y 0: 2 efficiency (mean of 4 x 4 pixels)");
}

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
