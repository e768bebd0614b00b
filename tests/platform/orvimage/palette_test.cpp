// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CILPalette.h"
#include "platform/orvimage/ColorTables.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

namespace {

CILPalette paletteOf(const char* name)
{
    CILPalette palette;
    palette.setColorTable(CILPalette::colorTableIndex(name));
    return palette;
}

} // namespace

TEST(PaletteTest, TablesHaveNamesAndIndices)
{
    const QStringList names = CILPalette::colorTableNames();
    ASSERT_GE(names.size(), 5);
    EXPECT_EQ("Grays", names[0]);
    EXPECT_EQ("Rainbow", names[1]);
    EXPECT_EQ("Fire", names[2]);
    EXPECT_EQ("Lumen", names[3]);
    for (int i = 0; i < names.size(); ++i) {
        EXPECT_EQ(i, CILPalette::colorTableIndex(names[i].toUpper()));
        EXPECT_EQ(256, orvimage::colorTables()[i].colors.size());
    }
    EXPECT_EQ(-1, CILPalette::colorTableIndex("No such table"));
}

TEST(PaletteTest, EndsOfTheTables)
{
    EXPECT_EQ(qRgb(0, 0, 0), paletteOf("Grays").colorAt(0.0));
    EXPECT_EQ(qRgb(128, 128, 128), paletteOf("Grays").colorAt(128.0 / 255));
    EXPECT_EQ(qRgb(255, 255, 255), paletteOf("Grays").colorAt(1.0));
    EXPECT_EQ(qRgb(255, 0, 0), paletteOf("Rainbow").colorAt(0.0));
    const QRgb violet = paletteOf("Rainbow").colorAt(1.0);
    EXPECT_GT(qBlue(violet), qRed(violet));
    EXPECT_GT(qRed(violet), qGreen(violet));
    EXPECT_EQ(qRgb(0, 0, 0), paletteOf("Fire").colorAt(0.0));
    EXPECT_GT(qGreen(paletteOf("Fire").colorAt(1.0)), 250);
    EXPECT_EQ(qRgb(0, 255, 0), paletteOf("Green").colorAt(1.0));
    EXPECT_EQ(qRgb(255, 255, 255), paletteOf("Grays").colorAt(7.0)) << "fractions are limited";
    EXPECT_EQ(qRgb(0, 0, 0), paletteOf("Grays").colorAt(std::numeric_limits<double>::quiet_NaN()));
}

TEST(PaletteTest, LumenRisesEvenlyInLightness)
{
    const CILPalette palette = paletteOf("Lumen");
    const double first = orvimage::oklabLightness(palette.colorAt(0.0));
    const double last = orvimage::oklabLightness(palette.colorAt(1.0));
    EXPECT_LT(first, 0.2);
    EXPECT_GT(last, 0.9);
    double before = first;
    for (int i = 1; i < 256; ++i) {
        const double lightness = orvimage::oklabLightness(palette.colorAt(i / 255.0));
        EXPECT_GT(lightness, before) << i;
        // Within what the rounding of three channels to 8 bits can do in the dark.
        EXPECT_NEAR(first + (last - first) * i / 255.0, lightness, 0.005) << i;
        before = lightness;
    }
}

TEST(PaletteTest, LumenHasNoCrease)
{
    const QVector<QRgb>& colors = orvimage::colorTables()[CILPalette::colorTableIndex("Lumen")].colors;
    for (int i = 1; i < colors.size(); ++i) {
        EXPECT_LE(std::abs(qRed(colors[i]) - qRed(colors[i - 1])), 5) << i;
        EXPECT_LE(std::abs(qGreen(colors[i]) - qGreen(colors[i - 1])), 5) << i;
        EXPECT_LE(std::abs(qBlue(colors[i]) - qBlue(colors[i - 1])), 5) << i;
    }
}

TEST(PaletteTest, PublishedTablesComeBehindTheOthersWithTheirEnds)
{
    const QStringList names = CILPalette::colorTableNames();
    EXPECT_EQ(names.mid(names.indexOf("Cold to hot") + 1),
              (QStringList{"Viridis", "Magma", "Inferno", "Plasma", "Cividis"}));
    EXPECT_EQ(qRgb(68, 1, 84), paletteOf("viridis").colorAt(0.0));
    EXPECT_EQ(qRgb(33, 145, 140), paletteOf("viridis").colorAt(0.5));
    EXPECT_EQ(qRgb(253, 231, 37), paletteOf("viridis").colorAt(1.0));
    EXPECT_EQ(qRgb(0, 0, 4), paletteOf("magma").colorAt(0.0));
    EXPECT_EQ(qRgb(252, 255, 164), paletteOf("inferno").colorAt(1.0));
    EXPECT_EQ(qRgb(13, 8, 135), paletteOf("plasma").colorAt(0.0));
    EXPECT_EQ(qRgb(0, 34, 78), paletteOf("cividis").colorAt(0.0));
}

TEST(PaletteTest, PublishedTablesRiseInLightness)
{
    for (const char* name : {"Viridis", "Magma", "Inferno", "Plasma", "Cividis"}) {
        const CILPalette palette = paletteOf(name);
        double before = orvimage::oklabLightness(palette.colorAt(0.0));
        for (int i = 8; i < 256; i += 8) {
            const double lightness = orvimage::oklabLightness(palette.colorAt(i / 255.0));
            EXPECT_GT(lightness, before) << name << ' ' << i;
            before = lightness;
        }
    }
}

TEST(PaletteTest, LightnessOfKnownColours)
{
    EXPECT_NEAR(0.0, orvimage::oklabLightness(qRgb(0, 0, 0)), 1e-9);
    EXPECT_NEAR(1.0, orvimage::oklabLightness(qRgb(255, 255, 255)), 1e-6);
    // A grey's lightness is the cube root of its linear level: ((188/255 + 0.055) / 1.055)^2.4 = 0.50289, root 0.79524.
    EXPECT_NEAR(0.79524, orvimage::oklabLightness(qRgb(188, 188, 188)), 1e-4);
}

TEST(PaletteTest, ReversedIsMirrored)
{
    for (int table = 0; table < CILPalette::colorTableNames().size(); ++table) {
        CILPalette palette;
        CILPalette reversed;
        palette.setColorTable(table);
        reversed.setCLUTinfo(table, true, false);
        EXPECT_TRUE(reversed.isReversed());
        for (int i = 0; i < 256; ++i) {
            EXPECT_EQ(palette.colorAt(i / 255.0), reversed.colorAt(1.0 - i / 255.0));
        }
    }
}

TEST(PaletteTest, LogarithmicLiftsTheLowerPart)
{
    CILPalette palette; // greys
    palette.setLogScale(1);
    EXPECT_EQ(0, qRed(palette.colorAt(0.0)));
    EXPECT_EQ(255, qRed(palette.colorAt(1.0)));
    EXPECT_EQ(71, qRed(palette.colorAt(0.1)));  // 255 log10(1.9) = 71.08
    EXPECT_EQ(189, qRed(palette.colorAt(0.5))); // 255 log10(5.5) = 188.79
    palette.setReversed(1);
    EXPECT_EQ(66, qRed(palette.colorAt(0.5))); // 255 (1 - log10(5.5)) = 66.2
}

TEST(PaletteTest, ValuesGoThroughTheRange)
{
    CILPalette palette;
    EXPECT_FALSE(palette.hasImageMinMax());
    palette.SetImageMinMax(10, 20);
    EXPECT_TRUE(palette.hasImageMinMax());
    EXPECT_EQ(qRgba(0, 0, 0, 255), palette.map(10));
    EXPECT_EQ(qRgba(0, 0, 0, 255), palette.map(-1e300));
    EXPECT_EQ(qRgba(51, 51, 51, 255), palette.map(12));
    EXPECT_EQ(qRgba(255, 255, 255, 255), palette.map(std::numeric_limits<double>::infinity()));
    EXPECT_EQ(0, qAlpha(palette.map(std::numeric_limits<double>::quiet_NaN())));
    EXPECT_EQ(qRgba(255, 255, 255, 255), palette.map(5, 0, 5));
    EXPECT_EQ(qRgba(0, 0, 0, 255), palette.map(5, 5, 5)) << "an empty range";
    EXPECT_EQ(qRgba(255, 255, 255, 255), palette.map(6, 5, 5));
    palette.clearImageMinMax();
    EXPECT_FALSE(palette.hasImageMinMax());
}

TEST(PaletteTest, AlphaModeZeroIsOpaqueButForTheFactor)
{
    CILPalette palette;
    palette.setAlphaMode(0, 0.0);
    EXPECT_EQ(255, qAlpha(palette.map(0.3)));
    palette.setAlphaMode(0, 0.5);
    EXPECT_EQ(128, qAlpha(palette.map(0.3)));
}

TEST(PaletteTest, AlphaModeOneFollowsThePositionInTheRange)
{
    CILPalette palette;
    palette.setAlphaMode(1, 1.0);
    palette.SetImageMinMax(0.001, 1.0); // as a mask is shown
    EXPECT_EQ(255, qAlpha(palette.map(1.0)));
    EXPECT_EQ(0, qAlpha(palette.map(0.0)));
    EXPECT_EQ(191, qAlpha(palette.map(0.75025))) << "three quarters of the way";
    palette.setAlphaMode(1, 0.5);
    EXPECT_EQ(128, qAlpha(palette.map(2.0)));
    palette.setReversed(1);
    palette.setLogScale(1);
    EXPECT_EQ(96, qAlpha(palette.map(0.75025))) << "neither reversal nor logarithm changes the alpha";
}

TEST(PaletteTest, CustomTables)
{
    CILPalette palette;
    palette.setColors({QColor(1, 2, 3), QColor(4, 5, 6), QColor(7, 8, 9)});
    EXPECT_EQ(-1, palette.colorTable());
    EXPECT_EQ(qRgb(1, 2, 3), palette.colorAt(0.0));
    EXPECT_EQ(qRgb(4, 5, 6), palette.colorAt(0.5));
    EXPECT_EQ(qRgb(7, 8, 9), palette.colorAt(1.0));
    palette.setColors({});
    palette.setColorTable(-1);
    palette.setColorTable(10000);
    EXPECT_EQ(qRgb(4, 5, 6), palette.colorAt(0.5)) << "what is no table changes nothing";
    palette.setColorTable(0);
    EXPECT_EQ(0, palette.colorTable());
}
