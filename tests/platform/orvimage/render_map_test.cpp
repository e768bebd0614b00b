// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/ImageSupport.h"
#include "platform/orvimage/RenderMap.h"
#include "platform/orvimage/SavePng.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using orvimage::RenderMapOptions;
using orvimage::renderMapOverPhotograph;
using orvimage::robustRange;

namespace {

RenderMapOptions bare()
{
    RenderMapOptions options;
    options.colorTable = 0;
    options.fade = false;
    options.hasRange = true;
    options.maximum = 1.0;
    return options;
}

// Where the picture begins inside its margins: as drawn without a title.
constexpr int kMargin = 13;

} // namespace

TEST(RobustRangeTest, BeginsAtZeroAndForgetsSingleHotPixels)
{
    CILImage map;
    map.InitWithType(ORVTYPE_DOUBLE, 100, 100);
    for (std::size_t i = 0; i < map.pixelCount(); ++i) {
        map.setValue(i, 2.0 + static_cast<double>(i) * 1e-4);
    }
    map.setValue(5, 1e6);
    map.setValue(6, kNaN);
    const orvimage::ValueRange range = robustRange(map);
    EXPECT_EQ(0.0, range.minimum);
    EXPECT_NEAR(3.0, range.maximum, 1e-3);
}

TEST(RobustRangeTest, AFewPixelsOfAProbeStillCount)
{
    CILImage map;
    map.InitWithType(ORVTYPE_FLOAT, 64, 64);
    for (const std::size_t i : {2000U, 2001U, 2064U, 2065U}) {
        map.setValue(i, 50.0);
    }
    EXPECT_EQ(50.0, robustRange(map).maximum);
}

TEST(RobustRangeTest, NegativeConstantEmptyAndOnePixel)
{
    EXPECT_EQ(-4.0, robustRange(makeImage(ORVTYPE_DOUBLE, 3, 1, {-4, 1, 2})).minimum);
    EXPECT_EQ(3.0, robustRange(makeImage(ORVTYPE_DOUBLE, 1, 1, {3})).maximum);
    EXPECT_EQ(0.0, robustRange(makeImage(ORVTYPE_DOUBLE, 1, 1, {kNaN})).maximum);
    EXPECT_EQ(0.0, robustRange(CILImage()).maximum);
}

TEST(RenderMapTest, SmallMapsAreEnlargedByWholePixels)
{
    CILImage map = makeImage(ORVTYPE_DOUBLE, 2, 1, {0, 1});
    RenderMapOptions options = bare();
    options.scale = 100;
    const QImage picture = renderMapOverPhotograph(map, nullptr, options);
    EXPECT_EQ(qRgb(0, 0, 0), picture.pixel(kMargin + 99, kMargin + 50));
    EXPECT_EQ(qRgb(255, 255, 255), picture.pixel(kMargin + 100, kMargin + 50));
    options.scale = 0;
    const QImage automatic = renderMapOverPhotograph(map, nullptr, options);
    EXPECT_GE(automatic.width(), 512);
    EXPECT_EQ(qRgb(0, 0, 0), automatic.pixel(kMargin + 255, kMargin + 10));
    EXPECT_EQ(qRgb(255, 255, 255), automatic.pixel(kMargin + 256, kMargin + 10));
}

TEST(RenderMapTest, OpacityAndNaNLetThePhotographThrough)
{
    const CILImage map = makeImage(ORVTYPE_FLOAT, 2, 1, {1, kNaN});
    CILImage photograph;
    QImage colours(2, 1, QImage::Format_ARGB32);
    colours.fill(qRgb(200, 100, 0));
    photograph.setRGBImage(colours);
    RenderMapOptions options = bare();
    options.scale = 300;
    options.opacity = 0.5;
    const QImage picture = renderMapOverPhotograph(map, &photograph, options);
    const QRgb blended = picture.pixel(kMargin + 100, kMargin + 100);
    EXPECT_NEAR(228, qRed(blended), 1); // half of 255 and half of 200
    EXPECT_NEAR(178, qGreen(blended), 1);
    EXPECT_NEAR(128, qBlue(blended), 1);
    EXPECT_EQ(qRgb(200, 100, 0), picture.pixel(kMargin + 400, kMargin + 100));
}

TEST(RenderMapTest, TheLowestValuesFade)
{
    const CILImage map = makeImage(ORVTYPE_DOUBLE, 2, 1, {0, 1});
    const CILImage photograph = makeImage(ORVTYPE_BYTE, 2, 1, {0, 255});
    RenderMapOptions options = bare();
    options.colorTable = CILPalette::colorTableIndex("Red");
    options.fade = true;
    options.scale = 300;
    const QImage picture = renderMapOverPhotograph(map, &photograph, options);
    EXPECT_EQ(qRgb(0, 0, 0), picture.pixel(kMargin + 5, kMargin + 100)) << "the dark part of the photograph";
    EXPECT_EQ(qRgb(255, 0, 0), picture.pixel(kMargin + 595, kMargin + 100)) << "the map's highest value";
}

TEST(RenderMapTest, ATitleTakesRoom)
{
    const CILImage map = makeImage(ORVTYPE_DOUBLE, 1, 1, {1});
    RenderMapOptions options;
    const QImage without = renderMapOverPhotograph(map, nullptr, options);
    options.title = "AlexaFluor 750";
    const QImage with = renderMapOverPhotograph(map, nullptr, options);
    EXPECT_GT(with.height(), without.height());
    EXPECT_EQ(with.width(), without.width());
}

TEST(RenderMapTest, AwkwardMaps)
{
    EXPECT_TRUE(renderMapOverPhotograph(CILImage(), nullptr, {}).isNull());
    for (const double value : {0.0, -3.0, kNaN, kInfinity, 1e-300, 1e300}) {
        const CILImage map = makeImage(ORVTYPE_DOUBLE, 3, 2, std::vector<double>(6, value));
        EXPECT_FALSE(renderMapOverPhotograph(map, &map, {}).isNull()) << value;
    }
}

TEST(SavePngTest, WritesAndReplaces)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QString::fromUtf8("a picture ä.png"));
    QString error;
    for (const QRgb color : {qRgb(1, 2, 3), qRgb(4, 5, 6)}) {
        QImage picture(3, 2, QImage::Format_RGB32);
        picture.fill(color);
        ASSERT_TRUE(orvimage::savePng(path, picture, &error)) << qPrintable(error);
        EXPECT_EQ(color, QImage(path).pixel(2, 1));
    }
    EXPECT_EQ(1, QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).size()) << "no temporary file is left";
}

TEST(SavePngTest, FailuresNameTheFile)
{
    QTemporaryDir folder;
    const QString inside = folder.filePath("none/picture.png");
    QString error;
    EXPECT_FALSE(orvimage::savePng(inside, QImage(1, 1, QImage::Format_RGB32), &error));
    EXPECT_TRUE(error.startsWith(inside + ": ")) << qPrintable(error);
    EXPECT_FALSE(orvimage::savePng(folder.path(), QImage(1, 1, QImage::Format_RGB32), &error));
    EXPECT_TRUE(error.startsWith(folder.path() + ": ")) << qPrintable(error);
    EXPECT_FALSE(orvimage::savePng(folder.filePath("p.png"), QImage(), &error));
    EXPECT_FALSE(QFile::exists(folder.filePath("p.png")));
}
