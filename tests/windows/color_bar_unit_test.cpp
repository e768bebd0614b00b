// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/colorBarUnit.h"

#include <gtest/gtest.h>

#include <QStringList>

#include <limits>
#include <vector>

namespace {

QStringList textsOf(const QList<ColorBarUnitLine>& lines)
{
    QStringList texts;
    for (const ColorBarUnitLine& line : lines) {
        texts.append(line.text);
    }
    return texts;
}

std::vector<double> offsetsOf(const QList<ColorBarUnitLine>& lines)
{
    std::vector<double> offsets;
    for (const ColorBarUnitLine& line : lines) {
        offsets.push_back(line.offset);
    }
    return offsets;
}

TEST(ColorBarUnitTest, CountsAndRadianceDoNotDependOnTheKindOfEfficiency)
{
    for (const bool bNTF : {false, true}) {
        EXPECT_EQ(textsOf(colorBarUnitLines(0, bNTF)), QStringList{"Counts"});
        EXPECT_EQ(textsOf(colorBarUnitLines(1, bNTF)), (QStringList{"Radiance", " (p/sec/cm/sr)"}));
        EXPECT_EQ(offsetsOf(colorBarUnitLines(1, bNTF)), (std::vector<double>{0.0, 1.0}));
    }
}

TEST(ColorBarUnitTest, RadiantEfficiencyIsAFractionInBrackets)
{
    const auto lines = colorBarUnitLines(2, false);
    EXPECT_EQ(textsOf(lines), (QStringList{"Radiant Efficiency", "   p/sec/cm/sr", "  __________",
                                           " (                    )", "        mW"}));
    EXPECT_EQ(offsetsOf(lines), (std::vector<double>{0.0, 1.0, 1.15, 1.5, 2.0}));
}

TEST(ColorBarUnitTest, RadiantEfficiencyOfTheOtherKindHasItsBarALittleHigher)
{
    const auto lines = colorBarUnitLines(2, true);
    EXPECT_EQ(textsOf(lines), (QStringList{"Radiant Efficiency", "   p/sec/cm/sr", "  __________",
                                           " (                    )", "        W/cm"}));
    EXPECT_EQ(offsetsOf(lines), (std::vector<double>{0.0, 1.0, 1.1, 1.5, 2.0}));
}

TEST(ColorBarUnitTest, EfficiencyTellsItsKind)
{
    EXPECT_EQ(textsOf(colorBarUnitLines(3, false)), QStringList{"Efficiency"});
    EXPECT_EQ(textsOf(colorBarUnitLines(3, true)), QStringList{"NTF Efficiency"});
}

TEST(ColorBarUnitTest, AnythingElseIsUnknown)
{
    for (const int nUnit : {-1, 4, std::numeric_limits<int>::max()}) {
        for (const bool bNTF : {false, true}) {
            EXPECT_EQ(textsOf(colorBarUnitLines(nUnit, bNTF)), QStringList{"UnKnown"});
            EXPECT_EQ(offsetsOf(colorBarUnitLines(nUnit, bNTF)), std::vector<double>{0.0});
        }
    }
}

TEST(ColorBarUnitTest, FirstLineStandsHalfAFontHeightUnderTheTag)
{
    EXPECT_EQ(colorBarUnitTop(100.0, 12.0, 16.0), 120.0);
    EXPECT_EQ(colorBarUnitTop(0.0, 0.0, 0.0), 0.0);
}

TEST(ColorBarLayoutTest, FractionTakesFiveFontHeightsAndTheRestFour)
{
    EXPECT_EQ(colorBarTextLines("Radiant Efficiency"), 5);
    EXPECT_EQ(colorBarTextLines("rADIANT efficiency"), 5);
    EXPECT_EQ(colorBarTextLines("Radiance"), 4);
    EXPECT_EQ(colorBarTextLines("Radiant Efficiency "), 4);
    EXPECT_EQ(colorBarTextLines(QString()), 4);
}

TEST(ColorBarLayoutTest, BarTakesWhatTheTextsLeave)
{
    ColorBarSpace space;
    space.margin = QPointF(10.0, 20.0);
    space.viewHeight = 500.0;
    space.fontHeight = 16.0;
    space.topFontHeight = 14.0;
    const ColorBarLayout plain = colorBarLayout(space, "Counts");
    EXPECT_EQ(plain.bottomLeft, QPointF(18.0, 28.0));
    EXPECT_EQ(plain.textRoom, 64.0);
    EXPECT_EQ(plain.height, 500.0 - 64.0 - 14.0 - 3.0 - 8.0);
    const ColorBarLayout fraction = colorBarLayout(space, "Radiant Efficiency");
    EXPECT_EQ(fraction.bottomLeft, plain.bottomLeft);
    EXPECT_EQ(fraction.textRoom, 80.0);
    EXPECT_EQ(fraction.height, 500.0 - 80.0 - 14.0 - 3.0 - 8.0);
}

TEST(ColorBarLayoutTest, LowViewHasNoBar)
{
    ColorBarSpace space;
    space.viewHeight = 50.0;
    space.fontHeight = 16.0;
    space.topFontHeight = 16.0;
    EXPECT_EQ(colorBarLayout(space, "Counts").height, 0.0);
    EXPECT_EQ(colorBarLayout(ColorBarSpace(), "Counts").height, 0.0);
}

TEST(ColorBarUnitTest, TheRangeOfAnImageIsOneLineWithItsUnit)
{
    EXPECT_EQ(shownRangeText(1.2e6, 3.4e8, 1, false), "1.2e+06 to 3.4e+08 (Radiance)");
    EXPECT_EQ(shownRangeText(0.0, 0.125, 3, true), "0 to 0.125 (NTF Efficiency)");
    EXPECT_EQ(shownRangeText(-2.0, 12345.0, 9, false), "-2 to 1.23e+04 (UnKnown)");
}

} // namespace
