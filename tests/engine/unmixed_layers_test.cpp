// SPDX-License-Identifier: GPL-3.0-or-later
// Finer points of the layers of a composite.
#include "engine/unmixedImages.h"

#include "support/Numbers.h"

#include <gtest/gtest.h>

namespace {

using testsupport::matrixOf;

CILImage grey(int nWidth, int nLevel)
{
    QImage picture(nWidth, 1, QImage::Format_ARGB32);
    picture.fill(qRgb(nLevel, nLevel, nLevel));
    CILImage image;
    image.setRGBImage(picture);
    return image;
}

TEST(UnmixedLayersTest, ALayerHas256Steps)
{
    constexpr int nSteps = 256;
    CILImage map;
    ASSERT_EQ(map.InitWithType(ORVTYPE_DOUBLE, nSteps, 1), EIL_SUCCESS);
    for (int i = 0; i < nSteps; ++i) {
        map.doubles()[i] = i;
    }
    map.RefreshImageStats();
    map.setGLFormat(0x1909);
    makeLayer(map, QColor(255, 0, 0), {0.0, 1.0, 1.0});
    EXPECT_EQ(map.getGLFormat(), 0x1908U) << "four colours, whatever it was shown in";
    const QImage picture = map.toQImage();
    for (int i = 0; i < nSteps; ++i) {
        EXPECT_EQ(picture.pixel(i, 0), qRgb(i, 0, 0)) << i;
    }
}

TEST(UnmixedLayersTest, AtFullOpacityThePhotographHas101PartsOf15InTenThousand)
{
    const CILImage photo = grey(2, 255);
    UnmixedSource source;
    source.concentrations = matrixOf({{0, 10}});
    source.width = 2;
    source.height = 1;
    source.components = {{"A", "white", ScaleRatio()}};
    source.display.overlayOpacity = 100;
    source.photo = &photo;
    source.photoPicture = &photo;
    const UnmixedSpot spot = unmixedSpot(source, 0);
    const QImage picture = spot.tiles.last().image->toQImage();
    EXPECT_EQ(picture.pixel(0, 0), qRgb(39, 39, 39)); // 38.63; 100 parts would be 38.25
    EXPECT_EQ(picture.pixel(1, 0), qRgb(255, 255, 255));
}

} // namespace
