// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/pixelSide.h"

#include "host/CILImage.h"
#include "host/CORVDataset.h"

#include <gtest/gtest.h>

namespace {

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
