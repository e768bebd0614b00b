// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/StackedColorBar.h"

#include "platform/orvimage/ImageSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

using orvimage::colorBarNumber;
using orvimage::colorBarStrip;
using orvimage::drawStackedColorBar;
using orvimage::StackedColorBarOptions;

namespace {

const QRgb white = qRgb(255, 255, 255);
const QRgb black = qRgb(0, 0, 0);

CILPalette paletteOf(const char* pName, bool bReversed = false, bool bLog = false)
{
    CILPalette palette;
    palette.setCLUTinfo(CILPalette::colorTableIndex(QString::fromLatin1(pName)), bReversed, bLog);
    return palette;
}

// The rectangle of the pixels that are not white.
QRect inkOf(const QImage& picture, const QRect& within)
{
    QRect ink;
    for (int y = within.top(); y <= within.bottom(); ++y) {
        for (int x = within.left(); x <= within.right(); ++x) {
            if (picture.pixel(x, y) != white) {
                ink |= QRect(x, y, 1, 1);
            }
        }
    }
    return ink;
}

// The bar's frame: the first line of black pixels from the left that is as long as the bar and its frame.
QRect frameOf(const QImage& picture, int length)
{
    for (int x = 0; x < picture.width(); ++x) {
        int run = 0;
        for (int y = 0; y < picture.height(); ++y) {
            run = picture.pixel(x, y) == black ? run + 1 : 0;
            if (run == length + 2) {
                return QRect(x, y - run + 1, 1, run);
            }
        }
    }
    return {};
}

StackedColorBarOptions radiantEfficiency()
{
    StackedColorBarOptions options;
    options.lines = {{0.0, "Radiant Efficiency"},
                     {1.0, "   p/sec/cm/sr"},
                     {1.15, "  __________"},
                     {1.5, " (                    )"},
                     {2.0, "        mW"}};
    return options;
}

// Colours may differ by this: a table's entry is the nearest to a fraction, and the next one lies within a step of it.
constexpr int colorTolerance = 2;

void expectGolden(const QString& strName, const QImage& picture)
{
    const QString path = QStringLiteral(ORV_SOURCE_DIR "/tests/platform/orvimage/golden/") + strName;
    QImage golden(path);
    ASSERT_FALSE(golden.isNull()) << qPrintable(path);
    golden = golden.convertToFormat(QImage::Format_ARGB32);
    ASSERT_EQ(golden.size(), picture.size()) << qPrintable(strName);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb a = golden.pixel(x, y);
            const QRgb b = picture.pixel(x, y);
            const int difference = std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                                             std::abs(qBlue(a) - qBlue(b)), std::abs(qAlpha(a) - qAlpha(b))});
            ASSERT_LE(difference, colorTolerance) << qPrintable(strName) << " at " << x << ", " << y;
        }
    }
}

} // namespace

TEST(ColorBarStripTest, GreysRiseFromTheBottomToTheTop)
{
    const QImage strip = colorBarStrip(paletteOf("Grays"), 3, 256);
    ASSERT_EQ(strip.size(), QSize(3, 256));
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 3; ++x) {
            ASSERT_EQ(strip.pixel(x, y), qRgb(255 - y, 255 - y, 255 - y));
        }
    }
}

TEST(ColorBarStripTest, ReversedIsUpsideDown)
{
    EXPECT_EQ(colorBarStrip(paletteOf("Rainbow", true), 2, 256),
              colorBarStrip(paletteOf("Rainbow"), 2, 256).mirrored(false, true));
}

TEST(ColorBarStripTest, LogarithmBendsTheColoursAndNotTheScale)
{
    const QImage strip = colorBarStrip(paletteOf("Grays", false, true), 1, 101);
    EXPECT_EQ(qRed(strip.pixel(0, 100)), 0);
    EXPECT_EQ(qRed(strip.pixel(0, 0)), 255);
    EXPECT_EQ(qRed(strip.pixel(0, 50)), 189); // 255 * log10(5.5) = 188.8
    EXPECT_EQ(qRed(strip.pixel(0, 90)), 71);  // 255 * log10(1.9) = 71.1
}

TEST(ColorBarStripTest, OneRowAndNoSize)
{
    EXPECT_EQ(qRed(colorBarStrip(paletteOf("Grays"), 1, 1).pixel(0, 0)), 0);
    EXPECT_TRUE(colorBarStrip(paletteOf("Grays"), 0, 5).isNull());
    EXPECT_TRUE(colorBarStrip(paletteOf("Grays"), 5, -1).isNull());
}

TEST(ColorBarStripTest, GoldenBars)
{
    for (const char* pTable : {"Grays", "Rainbow", "Fire", "Lumen"}) {
        for (const bool bLog : {false, true}) {
            const QString name = QStringLiteral("bar_%1%2.png").arg(QString(pTable).toLower(), bLog ? "_log" : "");
            expectGolden(name, colorBarStrip(paletteOf(pTable, pTable == std::string("Rainbow"), bLog), 8, 64));
        }
    }
}

TEST(ColorBarNumberTest, FourDigitsAndAPowerOfTenWhereItIsShorter)
{
    EXPECT_EQ(colorBarNumber(0.0), "0");
    EXPECT_EQ(colorBarNumber(1.0), "1");
    EXPECT_EQ(colorBarNumber(-12.3456), "-12.35");
    EXPECT_EQ(colorBarNumber(0.00125), "0.00125");
    EXPECT_EQ(colorBarNumber(65535.0), "65535");
    EXPECT_EQ(colorBarNumber(9999.96), "10000");
    EXPECT_EQ(colorBarNumber(100000.0), QString::fromUtf8("1×10⁵"));
    EXPECT_EQ(colorBarNumber(1.25e7), QString::fromUtf8("1.25×10⁷"));
    EXPECT_EQ(colorBarNumber(-3.14159e-9), QString::fromUtf8("-3.142×10⁻⁹"));
    EXPECT_EQ(colorBarNumber(kNaN), "-");
    EXPECT_EQ(colorBarNumber(kInfinity), "-");
}

TEST(StackedColorBarTest, BarKeepsItsColoursInsideItsFrame)
{
    const CILPalette palette = paletteOf("Lumen", true, true);
    const int length = 200;
    const QImage picture = drawStackedColorBar(palette, 0.0, 1.0, length, {});
    const QRect frame = frameOf(picture, length);
    ASSERT_TRUE(frame.isValid());
    const QImage strip = colorBarStrip(palette, 1, length);
    for (int y = 0; y < length; ++y) {
        ASSERT_EQ(picture.pixel(frame.x() + 1, frame.y() + 1 + y), strip.pixel(0, y)) << y;
    }
}

TEST(StackedColorBarTest, TextsStandAboveAndBeneath)
{
    const int length = 120;
    const QImage picture = drawStackedColorBar(CILPalette(), 0.0, 7.5e6, length, {});
    const QRect frame = frameOf(picture, length);
    ASSERT_TRUE(frame.isValid());
    const QRect above = inkOf(picture, QRect(0, 0, picture.width(), frame.top()));
    const QRect beneath =
        inkOf(picture, QRect(0, frame.bottom() + 1, picture.width(), picture.height() - frame.bottom() - 1));
    EXPECT_GT(above.width(), beneath.width()) << "a long number over a short one; is a font installed?";
    EXPECT_GT(beneath.width(), 2);
    EXPECT_GT(above.top(), 0);
    EXPECT_LT(above.right(), picture.width() - 1);
    EXPECT_LT(beneath.bottom(), picture.height() - 1);
}

TEST(StackedColorBarTest, UnitLinesMakeRoomAndStayInside)
{
    const int length = 120;
    const QImage plain = drawStackedColorBar(CILPalette(), 0.0, 1.0, length, {});
    const QImage unit = drawStackedColorBar(CILPalette(), 0.0, 1.0, length, radiantEfficiency());
    EXPECT_GT(unit.height(), plain.height());
    EXPECT_GT(unit.width(), plain.width());
    const QRect ink = inkOf(unit, unit.rect());
    EXPECT_GT(ink.left(), 0);
    EXPECT_GT(ink.top(), 0);
    EXPECT_LT(ink.right(), unit.width() - 1);
    EXPECT_LT(ink.bottom(), unit.height() - 1);
}

TEST(StackedColorBarTest, LinesStandAtTheirFactorsOfTheFontHeight)
{
    const int length = 60;
    const auto inkUnderTheBar = [&](double dOffset, const char* pText) {
        StackedColorBarOptions options;
        options.fontPixels = 20;
        options.lines = {{dOffset, pText}};
        const QImage with = drawStackedColorBar(CILPalette(), 0.0, 0.0, length, options);
        const QRect frame = frameOf(with, length);
        // Under the number beneath the bar, which a blank separates from the line.
        int y = with.height() - 1;
        while (inkOf(with, QRect(0, y, with.width(), 1)).isNull()) {
            --y;
        }
        return y - frame.bottom();
    };
    const double first = inkUnderTheBar(1.0, "p");
    const double font = inkUnderTheBar(2.0, "p") - first;
    EXPECT_GT(font, 20.0);
    EXPECT_NEAR(inkUnderTheBar(1.5, "p") - first, 0.5 * font, 1.0);
    EXPECT_NEAR(inkUnderTheBar(1.15, "p") - first, 0.15 * font, 1.0);
    // The number's box, then half a font height to the first baseline.
    EXPECT_NEAR(inkUnderTheBar(0.0, "x"), (1.25 + 0.5) * font, 2.0);
}

TEST(StackedColorBarTest, ColoursOfTextAndBackground)
{
    StackedColorBarOptions options = radiantEfficiency();
    options.background = Qt::black;
    options.text = Qt::yellow;
    const QImage picture = drawStackedColorBar(CILPalette(), 0.0, 1.0, 50, options);
    EXPECT_EQ(picture.pixel(0, 0), black);
    EXPECT_EQ(picture.pixel(picture.width() - 1, picture.height() - 1), black);
    bool yellow = false;
    for (int y = 80; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            yellow |= picture.pixel(x, y) == qRgb(255, 255, 0);
        }
    }
    EXPECT_TRUE(yellow);
}

TEST(StackedColorBarTest, DegenerateInputsAreDrawnToo)
{
    EXPECT_FALSE(drawStackedColorBar(CILPalette(), kNaN, kInfinity, 100, {}).isNull());
    EXPECT_FALSE(drawStackedColorBar(CILPalette(), 3.0, 3.0, -5, {}).isNull());
    StackedColorBarOptions options;
    options.fontPixels = -1;
    options.lines = {{0.0, QString()}};
    EXPECT_FALSE(drawStackedColorBar(CILPalette(), 0.0, 1.0, 10, options).isNull());
}
