// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/ImageSupport.h"
#include "platform/orvimage/MapPicture.h"
#include "platform/orvimage/SavePng.h"
#include "platform/orvimage/TextLines.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QPainter>
#include <QSvgGenerator>
#include <QTemporaryDir>

#include <algorithm>

using orvimage::MapPicture;
using orvimage::RenderMapOptions;
using orvimage::robustRange;
using orvimage::scaleBarLength;
using orvimage::scaleBarText;

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

QImage pictureOf(const CILImage& map, const CILImage* photograph, const RenderMapOptions& options)
{
    return MapPicture(map, photograph, options).toImage();
}

// Where the picture begins inside its margins, drawn without a title, at that length of its longer side.
int marginOf(int side)
{
    return std::max(13, side / 32);
}

int pixelsOf(const QImage& image, QRgb color, const QRect& part)
{
    int count = 0;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            count += image.pixel(x, y) == color ? 1 : 0;
        }
    }
    return count;
}

// Black, 512 pixels wide as a picture, with one value in it.
CILImage darkMap(double value)
{
    CILImage map;
    map.InitWithType(ORVTYPE_DOUBLE, 64, 64);
    map.setValue(100, value);
    return map;
}

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

TEST(MapPictureTest, SmallMapsAreEnlargedByWholePixels)
{
    CILImage map = makeImage(ORVTYPE_DOUBLE, 2, 1, {0, 1});
    RenderMapOptions options = bare();
    options.scale = 100;
    const QImage picture = pictureOf(map, nullptr, options);
    EXPECT_EQ(qRgb(0, 0, 0), picture.pixel(marginOf(200) + 99, marginOf(200) + 50));
    EXPECT_EQ(qRgb(255, 255, 255), picture.pixel(marginOf(200) + 100, marginOf(200) + 50));
    options.scale = 0;
    const QImage automatic = pictureOf(map, nullptr, options);
    EXPECT_GE(automatic.width(), 512);
    const int margin = marginOf(512);
    EXPECT_EQ(qRgb(0, 0, 0), automatic.pixel(margin + 255, margin + 10));
    EXPECT_EQ(qRgb(255, 255, 255), automatic.pixel(margin + 256, margin + 10));
}

TEST(MapPictureTest, OpacityAndNaNLetThePhotographThrough)
{
    const CILImage map = makeImage(ORVTYPE_FLOAT, 2, 1, {1, kNaN});
    CILImage photograph;
    QImage colours(2, 1, QImage::Format_ARGB32);
    colours.fill(qRgb(200, 100, 0));
    photograph.setRGBImage(colours);
    RenderMapOptions options = bare();
    options.scale = 300;
    options.opacity = 0.5;
    const QImage picture = pictureOf(map, &photograph, options);
    const QRgb blended = picture.pixel(marginOf(600) + 100, marginOf(600) + 100);
    EXPECT_NEAR(228, qRed(blended), 1); // half of 255 and half of 200
    EXPECT_NEAR(178, qGreen(blended), 1);
    EXPECT_NEAR(128, qBlue(blended), 1);
    EXPECT_EQ(qRgb(200, 100, 0), picture.pixel(marginOf(600) + 400, marginOf(600) + 100));
}

TEST(MapPictureTest, TheLowestValuesFade)
{
    const CILImage map = makeImage(ORVTYPE_DOUBLE, 2, 1, {0, 1});
    const CILImage photograph = makeImage(ORVTYPE_BYTE, 2, 1, {0, 255});
    RenderMapOptions options = bare();
    options.colorTable = CILPalette::colorTableIndex("Red");
    options.fade = true;
    options.scale = 300;
    const QImage picture = pictureOf(map, &photograph, options);
    EXPECT_EQ(qRgb(0, 0, 0), picture.pixel(marginOf(600) + 5, marginOf(600) + 100))
        << "the dark part of the photograph";
    EXPECT_EQ(qRgb(255, 0, 0), picture.pixel(marginOf(600) + 595, marginOf(600) + 100)) << "the map's highest value";
}

TEST(MapPictureTest, ATitleTakesRoom)
{
    const CILImage map = makeImage(ORVTYPE_DOUBLE, 1, 1, {1});
    RenderMapOptions options;
    const QImage without = pictureOf(map, nullptr, options);
    options.title = "AlexaFluor 750";
    const QImage with = pictureOf(map, nullptr, options);
    EXPECT_GT(with.height(), without.height());
    EXPECT_EQ(with.width(), without.width());
}

TEST(ScaleBarTest, LengthsAreRound)
{
    EXPECT_DOUBLE_EQ(5000.0, scaleBarLength(9999.0));
    EXPECT_DOUBLE_EQ(10000.0, scaleBarLength(10000.0));
    EXPECT_DOUBLE_EQ(20.0, scaleBarLength(49.0));
    EXPECT_DOUBLE_EQ(50.0, scaleBarLength(50.0));
    EXPECT_DOUBLE_EQ(0.1, scaleBarLength(0.15));
    for (const double none : {0.0, -1.0, kNaN, kInfinity}) {
        EXPECT_EQ(0.0, scaleBarLength(none)) << none;
    }
}

TEST(ScaleBarTest, TextsHaveTheUnitThatKeepsThemShort)
{
    EXPECT_EQ("200 nm", scaleBarText(0.2));
    EXPECT_EQ(QString::fromUtf8("1 \u00b5m"), scaleBarText(1.0));
    EXPECT_EQ(QString::fromUtf8("500 \u00b5m"), scaleBarText(500.0));
    EXPECT_EQ("1 mm", scaleBarText(1000.0));
    EXPECT_EQ("5 mm", scaleBarText(5000.0));
    EXPECT_EQ("2 cm", scaleBarText(20000.0));
}

TEST(MapPictureTest, AScaleBarStandsInTheCornerWhereTheSizeOfPixelsIsKnown)
{
    RenderMapOptions options = bare();
    const CILImage map = darkMap(0.0);
    const int margin = marginOf(512);
    const QRect corner(margin, margin + 256, 256, 256);
    const QImage without = pictureOf(map, nullptr, options);
    EXPECT_EQ(0, pixelsOf(without, qRgb(255, 255, 255), corner));
    options.pixelMicrometres = 100.0; // 6.4 mm across, 12.5 µm a pixel of the screen: 1 mm are 80
    const QImage with = pictureOf(map, nullptr, options);
    EXPECT_EQ(with.size(), without.size());
    int widest = 0;
    for (int y = corner.top(); y <= corner.bottom(); ++y) {
        widest = std::max(widest, pixelsOf(with, qRgb(255, 255, 255), QRect(corner.left(), y, corner.width(), 1)));
    }
    EXPECT_NEAR(80, widest, 3);
}

TEST(MapPictureTest, ANotKnownOrOddSizeOfPixelsGivesNoScaleBar)
{
    RenderMapOptions options = bare();
    const CILImage map = darkMap(0.0);
    const QImage without = pictureOf(map, nullptr, options);
    for (const double size : {-1.0, kNaN, kInfinity}) {
        options.pixelMicrometres = size;
        EXPECT_EQ(without, pictureOf(map, nullptr, options)) << size;
    }
}

TEST(MapPictureTest, ATipOnTheBarTellsOfValuesBeyondItsEnd)
{
    RenderMapOptions options = bare();
    options.colorTable = CILPalette::colorTableIndex("Red");
    const QImage inside = pictureOf(darkMap(1.0), nullptr, options);
    const QImage above = pictureOf(darkMap(1.01), nullptr, options);
    const QRect bar(marginOf(512) + 512 + 1, 0, 60, inside.height() - 1);
    const QRgb red = qRgb(255, 0, 0);
    EXPECT_GT(pixelsOf(above, red, bar), pixelsOf(inside, red, bar) + 30);
    const QImage below = pictureOf(darkMap(-0.01), nullptr, options);
    EXPECT_EQ(pixelsOf(below, red, bar), pixelsOf(inside, red, bar));
    EXPECT_NE(below.copy(bar), inside.copy(bar));
    EXPECT_EQ(pictureOf(darkMap(kNaN), nullptr, options).copy(bar), inside.copy(bar)) << "a NaN lies nowhere";
}

TEST(MapPictureTest, ANoteTakesALineBeneath)
{
    RenderMapOptions options = bare();
    const QImage without = pictureOf(darkMap(1.0), nullptr, options);
    options.note = "one scale for all spots";
    const QImage with = pictureOf(darkMap(1.0), nullptr, options);
    EXPECT_EQ(with.width(), without.width());
    EXPECT_GT(with.height(), without.height());
    const QRect line(0, marginOf(512) + 513, 300, with.height() - marginOf(512) - 514);
    EXPECT_LT(pixelsOf(with, qRgb(255, 255, 255), line), line.width() * line.height() - 100);
}

TEST(MapPictureTest, TextsAndTicksAreVectorsWhereTheFileHasThem)
{
    RenderMapOptions options = bare();
    options.title = "AlexaFluor 750";
    options.note = "one scale for all spots";
    const MapPicture picture(darkMap(1.0), nullptr, options);
    QByteArray svg;
    QBuffer buffer(&svg);
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setSize(picture.size());
    QPainter painter(&generator);
    picture.draw(painter);
    painter.end();
    for (const char* text : {"AlexaFluor 750", "one scale for all spots", "0.5"}) {
        EXPECT_TRUE(svg.contains(text)) << text;
    }
    EXPECT_TRUE(svg.contains("data:image/png")) << "the pixels";
}

TEST(MapPictureTest, ALongTitleTakesMoreLinesAndIsWhole)
{
    RenderMapOptions options = bare();
    options.title = "Autofluorescence";
    const int one = pictureOf(darkMap(1.0), nullptr, options).height();
    options.title = "Autofluorescence of the tissue below the fur and of all the regions together, spot 12";
    const int lines = orvimage::textLines(options.title, QFont("DejaVu Sans", 12), 200).size();
    EXPECT_GT(lines, 1);
    EXPECT_EQ(orvimage::textLines(options.title, QFont("DejaVu Sans", 12), 200).join(' '), options.title);
    EXPECT_GT(pictureOf(darkMap(1.0), nullptr, options).height(), one);
    EXPECT_EQ(orvimage::textLines(QString(90, 'W'), QFont("DejaVu Sans", 12), 200).join(QString()), QString(90, 'W'));
    EXPECT_TRUE(orvimage::textLines(" ", QFont("DejaVu Sans", 12), 200).isEmpty());
}

TEST(MapPictureTest, AwkwardMaps)
{
    EXPECT_TRUE(pictureOf(CILImage(), nullptr, {}).isNull());
    EXPECT_TRUE(MapPicture(CILImage(), nullptr, {}).isNull());
    for (const double value : {0.0, -3.0, kNaN, kInfinity, 1e-300, 1e300}) {
        const CILImage map = makeImage(ORVTYPE_DOUBLE, 3, 2, std::vector<double>(6, value));
        EXPECT_FALSE(pictureOf(map, &map, {}).isNull()) << value;
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
