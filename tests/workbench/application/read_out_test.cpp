// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/ReadOut.h"

#include "host/CILImage.h"
#include "host/CORVDataset.h"

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

TEST(ReadOutTest, WithoutANumberThereIsNone)
{
    ReadOut found;
    EXPECT_EQ(found.text(c), "x 0, y 0");
    found.value = std::nan("");
    found.quantity = "counts";
    EXPECT_EQ(found.text(c), "x 0, y 0: no value");
}

TEST(PixelSideTest, IsThatOfTheCameraTimesTheBinning)
{
    CORVDataset dataset;
    CILImage image;
    image.InitWithType(ORVTYPE_FLOAT, 2, 2);
    image.m_fBinning = 4.0F;
    dataset.setCoreImage(IMAGETYPE_MAIN_DATA, image);
    EXPECT_FALSE(pixelSideMm(dataset, IMAGETYPE_MAIN_DATA).has_value());
    CPLSection camera("Camera System Info");
    camera.setValue("Pixel Size cm", "0.0025");
    dataset.clickInfo.addSection(&camera);
    EXPECT_DOUBLE_EQ(pixelSideMm(dataset, IMAGETYPE_MAIN_DATA).value_or(0.0), 0.1);
    dataset.clickInfo["Camera System Info"]->setValue("Pixel Size cm", "-1");
    EXPECT_FALSE(pixelSideMm(dataset, IMAGETYPE_MAIN_DATA).has_value());
}

} // namespace
