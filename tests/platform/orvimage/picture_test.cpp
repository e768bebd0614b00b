// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVOverlayImage.h"
#include "platform/orvimage/ImageSupport.h"

#include <utility>

namespace {

constexpr unsigned kRgb = 0x1907;
constexpr unsigned kRgba = 0x1908;

QImage plain(int w, int h, QRgb color)
{
    QImage picture(w, h, QImage::Format_ARGB32);
    picture.fill(color);
    return picture;
}

CILImage coloured(int w, int h, QRgb color)
{
    CILImage image;
    image.setRGBImage(plain(w, h, color));
    return image;
}

} // namespace

TEST(PictureTest, GreysSpreadOverTheImagesOwnRange)
{
    for (const ORVDataTypes type : kAllPixelTypes) {
        const QImage picture = makeImage(type, 3, 1, {10, 12, 20}).toQImage();
        ASSERT_EQ(QSize(3, 1), picture.size());
        EXPECT_EQ(QImage::Format_ARGB32, picture.format());
        EXPECT_EQ(qRgb(0, 0, 0), picture.pixel(0, 0));
        EXPECT_EQ(qRgb(51, 51, 51), picture.pixel(1, 0));
        EXPECT_EQ(qRgb(255, 255, 255), picture.pixel(2, 0));
    }
}

TEST(PictureTest, RowsRunFromTheTop)
{
    const QImage picture = makeImage(ORVTYPE_BYTE, 1, 2, {0, 9}).toQImage();
    EXPECT_EQ(0, qRed(picture.pixel(0, 0)));
    EXPECT_EQ(255, qRed(picture.pixel(0, 1)));
}

TEST(PictureTest, FormatsDecideOnColourAndAlpha)
{
    CILImage image = makeImage(ORVTYPE_FLOAT, 2, 1, {kNaN, 1});
    image.setColorTable(CILPalette::colorTableIndex("Red"));
    image.getPalette()->SetImageMinMax(0, 2);
    image.getPalette()->setAlphaMode(1, 1.0);
    image.setGLFormat(kRgba);
    EXPECT_EQ(0, qAlpha(image.toQImage().pixel(0, 0)));
    EXPECT_EQ(qRgba(128, 0, 0, 128), image.toQImage().pixel(1, 0));
    image.setGLFormat(kRgb);
    EXPECT_EQ(kRgb, image.getGLFormat());
    EXPECT_EQ(qRgb(0, 0, 0), image.toQImage().pixel(0, 0));
    EXPECT_EQ(qRgb(128, 0, 0), image.toQImage().pixel(1, 0));
    image.setGLFormat(0x1909);
    EXPECT_EQ(qRgb(38, 38, 38), image.toQImage().pixel(1, 0)); // 0.299 * 128
}

TEST(PictureTest, ConstantEmptyAndAllNaNImagesHaveAPicture)
{
    EXPECT_TRUE(CILImage().toQImage().isNull());
    EXPECT_EQ(qRgb(0, 0, 0), makeImage(ORVTYPE_INT, 1, 1, {77}).toQImage().pixel(0, 0));
    CILImage none = makeImage(ORVTYPE_DOUBLE, 1, 1, {kNaN});
    none.setGLFormat(kRgba);
    EXPECT_EQ(0, qAlpha(none.toQImage().pixel(0, 0)));
}

TEST(PictureTest, CustomTableRunsFromBlackAndDropsTheRange)
{
    CILImage image = makeImage(ORVTYPE_DOUBLE, 2, 1, {0, 4});
    image.getPalette()->SetImageMinMax(100, 200);
    image.setCustomColorTable(256, 1.0, 0.5, 0.0);
    image.setGLFormat(kRgba);
    EXPECT_EQ(qRgba(0, 0, 0, 255), image.toQImage().pixel(0, 0));
    EXPECT_EQ(qRgba(255, 128, 0, 255), image.toQImage().pixel(1, 0));
    image.setCustomColorTable(1, 0, 0, 1);
    EXPECT_EQ(qRgba(255, 128, 0, 255), image.toQImage().pixel(1, 0)) << "one step is no table";
}

TEST(PictureTest, BrightnessLiftsTheBrightestChannelToTheLevel)
{
    CILImage image = coloured(1, 1, qRgb(100, 50, 20));
    image.AdjustRGBBrightness(200);
    EXPECT_EQ(qRgb(200, 100, 40), image.toQImage().pixel(0, 0));
    EXPECT_EQ(62.0, image.value(0)) << "the pixels stay: 0.299 * 100 + 0.587 * 50 + 0.114 * 20 = 61.53";
    image.AdjustRGBBrightness(0);
    EXPECT_EQ(qRgb(100, 50, 20), image.toQImage().pixel(0, 0));
    CILImage black = coloured(1, 1, qRgb(0, 0, 0));
    black.AdjustRGBBrightness(255);
    EXPECT_EQ(qRgb(0, 0, 0), black.toQImage().pixel(0, 0));
}

TEST(PictureTest, AColourPictureGivesItsGreyValues)
{
    CILImage image = coloured(2, 1, qRgb(255, 0, 0));
    EXPECT_TRUE(image.isRGB());
    EXPECT_EQ(ORVTYPE_BYTE, image.dataType());
    EXPECT_EQ((std::vector<double>{76, 76}), valuesOf(image));
    EXPECT_EQ(76.0, image.Max());
    ASSERT_EQ(EIL_SUCCESS, image.ChangeType(ORVTYPE_DOUBLE));
    EXPECT_EQ(qRgb(255, 0, 0), image.toQImage().pixel(0, 0)) << "a change of type keeps the colours";
    image.setConstData(3);
    EXPECT_FALSE(image.isRGB());
    image.setRGBImage(QImage());
    EXPECT_TRUE(image.isEmpty());
}

TEST(PictureTest, ChangedPixelsDropTheColours)
{
    CILImage image = coloured(2, 2, qRgb(0, 0, 255));
    CILImage out;
    ASSERT_EQ(EIL_SUCCESS, image.changeBinning(2, out));
    EXPECT_FALSE(out.isRGB());
    CILImage other = image;
    EXPECT_TRUE(other.isRGB());
    other.upSample(3, 3, IL_RESAMPLE_LINEAR);
    EXPECT_FALSE(other.isRGB());
    other = image;
    other.InitWithType(ORVTYPE_BYTE, 2, 2);
    EXPECT_FALSE(other.isRGB());
    other = image;
    const CILImage taken = std::move(other);
    EXPECT_FALSE(other.isRGB()); // NOLINT: what is left is told in the header
    EXPECT_TRUE(taken.isRGB());
}

TEST(OverlayTest, BlendsByOpacity)
{
    const CILImage photograph = coloured(2, 2, qRgb(100, 100, 100));
    const CILImage map = coloured(2, 2, qRgb(200, 0, 50));
    CORVOverlayImage overlay;
    overlay.setBackground(&photograph, IMAGETYPE_PHOTOGRAPH);
    overlay.setForeground(&map, IMAGETYPE_LUMINESCENT);
    ASSERT_EQ(EIL_SUCCESS, overlay.blend(0.25F, 1));
    EXPECT_EQ(qRgb(125, 75, 88), overlay.toQImage().pixel(1, 1)); // 0.25 * 200 + 0.75 * 100 and so on, 87.5 up
    EXPECT_EQ(ORVTYPE_BYTE, overlay.dataType());
    EXPECT_TRUE(overlay.isRGB());
    ASSERT_EQ(EIL_SUCCESS, overlay.blend(7.0F, 1));
    EXPECT_EQ(qRgb(200, 0, 50), overlay.toQImage().pixel(0, 0));
    ASSERT_EQ(EIL_SUCCESS, overlay.blend(-1.0F, 0));
    EXPECT_EQ(qRgb(100, 100, 100), overlay.toQImage().pixel(0, 0));
}

TEST(OverlayTest, TheForegroundsAlphaCounts)
{
    const CILImage photograph = coloured(2, 1, qRgb(80, 80, 80));
    CILImage mask = makeImage(ORVTYPE_BYTE, 2, 1, {0, 1});
    mask.setColorTable(1);
    mask.setGLFormat(kRgba);
    mask.getPalette()->setAlphaMode(1, 1.0);
    mask.getPalette()->SetImageMinMax(0.001, 1.0);
    CORVOverlayImage overlay;
    overlay.setBackground(&photograph, IMAGETYPE_PHOTOGRAPH);
    overlay.setForeground(&mask, IMAGETYPE_LUMINESCENT);
    ASSERT_EQ(EIL_SUCCESS, overlay.blend(0.5F, 1));
    EXPECT_EQ(qRgb(80, 80, 80), overlay.toQImage().pixel(0, 0)) << "outside the mask the photograph stays";
    const QRgb top = mask.getPalette()->colorAt(1.0);
    const QRgb inside = overlay.toQImage().pixel(1, 0);
    EXPECT_NEAR(0.5 * (qRed(top) + 80), qRed(inside), 0.51);
    EXPECT_NEAR(0.5 * (qGreen(top) + 80), qGreen(inside), 0.51);
    EXPECT_NEAR(0.5 * (qBlue(top) + 80), qBlue(inside), 0.51);
}

TEST(OverlayTest, BelowTheLimitOfItsPaletteAForegroundIsClear)
{
    const CILImage photograph = coloured(4, 1, qRgb(80, 80, 80));
    CILImage map = makeImage(ORVTYPE_DOUBLE, 4, 1, {0.0, 0.999, 1.0, 3.0});
    map.setGLFormat(kRgba);
    map.getPalette()->SetImageMinMax(1.0, 3.0);
    CORVOverlayImage overlay;
    overlay.setBackground(&photograph, IMAGETYPE_PHOTOGRAPH);
    overlay.setForeground(&map, IMAGETYPE_LUMINESCENT);
    ASSERT_EQ(EIL_SUCCESS, overlay.blend(1.0F, 1));
    EXPECT_EQ(qRgb(80, 80, 80), overlay.toQImage().pixel(0, 0));
    EXPECT_EQ(qRgb(80, 80, 80), overlay.toQImage().pixel(1, 0));
    EXPECT_EQ(map.getPalette()->colorAt(0.0), overlay.toQImage().pixel(2, 0)) << "the limit itself is shown";
    EXPECT_EQ(map.getPalette()->colorAt(1.0), overlay.toQImage().pixel(3, 0));
    overlay.setBackground(nullptr, IMAGETYPE_PHOTOGRAPH);
    ASSERT_EQ(EIL_SUCCESS, overlay.blend(1.0F, 1));
    EXPECT_EQ(map.getPalette()->colorAt(0.0), overlay.toQImage().pixel(0, 0)) << "alone it is whole";
    overlay.setBackground(&photograph, IMAGETYPE_PHOTOGRAPH);
    // Opaque in three colours, and over its own range.
    map.setGLFormat(kRgb);
    overlay.setForeground(&map, IMAGETYPE_LUMINESCENT);
    ASSERT_EQ(EIL_SUCCESS, overlay.blend(1.0F, 1));
    EXPECT_EQ(map.getPalette()->colorAt(0.0), overlay.toQImage().pixel(0, 0));
    map.setGLFormat(kRgba);
    map.getPalette()->clearImageMinMax();
    overlay.setForeground(&map, IMAGETYPE_LUMINESCENT);
    ASSERT_EQ(EIL_SUCCESS, overlay.blend(1.0F, 1));
    EXPECT_EQ(map.getPalette()->colorAt(0.0), overlay.toQImage().pixel(0, 0));
}

TEST(OverlayTest, LayersAddUpAsARunningMean)
{
    const CILImage photograph = coloured(1, 1, qRgb(10, 20, 30));
    CORVOverlayImage composite;
    composite.setPhotograph(&photograph, IMAGETYPE_PHOTOGRAPH);
    const QRgb layers[] = {qRgb(240, 0, 0), qRgb(0, 240, 0), qRgb(0, 0, 240)};
    int n = 0;
    for (const QRgb color : layers) {
        const CILImage layer = coloured(1, 1, color);
        composite.setLuminescent(&layer, IMAGETYPE_LUMINESCENT);
        ++n;
        ASSERT_EQ(EIL_SUCCESS, composite.blend(1.0F / static_cast<float>(n), 1));
        composite.setPhotograph(&composite, IMAGETYPE_PHOTOGRAPH);
    }
    EXPECT_EQ(qRgb(80, 80, 80), composite.toQImage().pixel(0, 0));
}

TEST(OverlayTest, TheForegroundComesToTheBackgroundsSize)
{
    const CILImage photograph = coloured(4, 2, qRgb(0, 0, 0));
    CILImage map = makeImage(ORVTYPE_DOUBLE, 2, 1, {0, 1});
    map.setGLFormat(kRgb);
    CORVOverlayImage overlay;
    overlay.setPhotograph(&photograph, IMAGETYPE_PHOTOGRAPH);
    overlay.setLuminescent(&map, IMAGETYPE_LUMINESCENT);
    ASSERT_EQ(EIL_SUCCESS, overlay.blend(1.0F, 0));
    EXPECT_EQ(4, overlay.m_lWidth);
    EXPECT_EQ(2, overlay.m_lHeight);
    EXPECT_EQ((std::vector<double>{0, 0, 255, 255, 0, 0, 255, 255}), valuesOf(overlay)) << "nearest neighbour";
    ASSERT_EQ(EIL_SUCCESS, overlay.blend(1.0F, 1));
    EXPECT_GT(overlay.value(1), 0.0) << "smooth";
    EXPECT_LT(overlay.value(1), 255.0);
}

TEST(OverlayTest, OneLayerAloneAndNone)
{
    CORVOverlayImage overlay;
    EXPECT_NE(EIL_SUCCESS, overlay.blend(0.5F, 1));
    EXPECT_TRUE(overlay.isEmpty());
    const CILImage map = coloured(1, 1, qRgb(10, 20, 30));
    overlay.setForeground(&map, IMAGETYPE_LUMINESCENT);
    ASSERT_EQ(EIL_SUCCESS, overlay.blend(0.5F, 1));
    EXPECT_EQ(qRgba(10, 20, 30, 128), overlay.toQImage().pixel(0, 0)) << "over nothing";
    overlay.setForeground(nullptr, IMAGETYPE_LUMINESCENT);
    EXPECT_NE(EIL_SUCCESS, overlay.blend(0.5F, 1));
    EXPECT_EQ(qRgba(10, 20, 30, 128), overlay.toQImage().pixel(0, 0)) << "the picture stays as it was";
    overlay.setBackground(&map, IMAGETYPE_PHOTOGRAPH);
    ASSERT_EQ(EIL_SUCCESS, overlay.blend(0.5F, 1));
    EXPECT_EQ(qRgb(10, 20, 30), overlay.toQImage().pixel(0, 0));
}

TEST(OverlayTest, LayersAreCopies)
{
    CORVOverlayImage overlay;
    {
        CILImage photograph = coloured(1, 1, qRgb(1, 2, 3));
        overlay.setPhotograph(&photograph, IMAGETYPE_PHOTOGRAPH);
        photograph.setConstData(200);
    }
    ASSERT_EQ(EIL_SUCCESS, overlay.blend(1.0F, 1));
    const CORVOverlayImage copy = overlay;
    EXPECT_EQ(qRgb(1, 2, 3), copy.toQImage().pixel(0, 0));
}

TEST(OverlayTest, PixelsOfABlendAreMadeWhenSomebodyAsks)
{
    const CILImage photograph = makeImage(ORVTYPE_BYTE, 2, 1, {0, 200});
    const CILImage map = coloured(2, 1, qRgb(255, 255, 255));
    CORVOverlayImage overlay;
    overlay.setBackground(&photograph, IMAGETYPE_PHOTOGRAPH);
    overlay.setForeground(&map, IMAGETYPE_LUMINESCENT);
    const auto blend = [&] { ASSERT_EQ(EIL_SUCCESS, overlay.blend(0.5F, 1)); };
    blend();
    EXPECT_EQ(nullptr, overlay.m_pData) << "nobody asked";
    EXPECT_FALSE(overlay.toQImage().isNull());
    EXPECT_EQ(nullptr, overlay.m_pData) << "a picture needs none";
    EXPECT_EQ(128.0, overlay.Min());
    EXPECT_EQ(255.0, overlay.getMax());
    EXPECT_EQ((std::vector<double>{128, 255}), valuesOf(overlay));
    const void* const pixels = overlay.m_pData;
    EXPECT_NE(nullptr, pixels);
    EXPECT_EQ(pixels, overlay.bytes()) << "they stay";
    blend();
    EXPECT_EQ(128, overlay.bytes()[0]);
    blend();
    overlay.RefreshImageStats();
    EXPECT_EQ(128.0, overlay.m_dMin);
    EXPECT_EQ(255.0, overlay.m_dMax);
    blend();
    ASSERT_EQ(EIL_SUCCESS, overlay.ChangeType(ORVTYPE_DOUBLE));
    EXPECT_EQ((std::vector<double>{128, 255}), valuesOf(overlay));
    EXPECT_EQ(qRgb(128, 128, 128), overlay.toQImage().pixel(0, 0)) << "a change of type keeps the colours";
    blend();
    overlay.dropRGBImage();
    EXPECT_FALSE(overlay.isRGB());
    EXPECT_EQ((std::vector<double>{128, 255}), valuesOf(overlay)) << "the grey values stay";
}

TEST(OverlayTest, CopiesOfABlendThatNobodySawAreWhole)
{
    const CILImage photograph = coloured(2, 1, qRgb(100, 0, 0));
    CORVOverlayImage overlay;
    overlay.setBackground(&photograph, IMAGETYPE_PHOTOGRAPH);
    ASSERT_EQ(EIL_SUCCESS, overlay.blend(1.0F, 1));
    const CILImage image = overlay;
    EXPECT_TRUE(image.isRGB());
    EXPECT_EQ(qRgb(100, 0, 0), image.toQImage().pixel(1, 0));
    EXPECT_EQ(30.0, image.Max());
    ASSERT_EQ(EIL_SUCCESS, overlay.blend(1.0F, 1));
    const CILImageBase base = overlay;
    EXPECT_EQ(30.0, base.value(1));
    EXPECT_EQ(30.0, base.m_dMin);
    ASSERT_EQ(EIL_SUCCESS, overlay.blend(1.0F, 1));
    const CILImage taken = std::move(overlay);
    EXPECT_EQ(30.0, taken.value(0));
    EXPECT_TRUE(overlay.isEmpty()); // NOLINT: what is left is part of the contract
    EXPECT_FALSE(overlay.isRGB());
}

TEST(OverlayTest, ALayerIsWhatItsImageWas)
{
    CILImage photograph = makeImage(ORVTYPE_BYTE, 1, 1, {40});
    photograph.getPalette()->SetImageMinMax(0, 255);
    CILImage map = makeImage(ORVTYPE_DOUBLE, 1, 1, {2});
    map.setGLFormat(kRgba);
    map.getPalette()->SetImageMinMax(1, 3);
    CORVOverlayImage overlay;
    overlay.setBackground(&photograph, IMAGETYPE_PHOTOGRAPH);
    overlay.setForeground(&map, IMAGETYPE_LUMINESCENT);
    ASSERT_EQ(EIL_SUCCESS, overlay.blend(0.5F, 1));
    const QRgb before = overlay.toQImage().pixel(0, 0);
    EXPECT_EQ(qRgb(84, 84, 84), before);
    photograph.setConstData(250);
    map.setConstData(0);
    map.getPalette()->SetImageMinMax(5, 6);
    EXPECT_EQ(before, overlay.toQImage().pixel(0, 0));
    EXPECT_EQ(84.0, overlay.value(0));
}
