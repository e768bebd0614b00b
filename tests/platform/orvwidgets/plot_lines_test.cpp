// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/plotLines.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

using orv::legibleColor;
using orv::plotExtent;
using orv::PlotLine;
using orv::plotSegments;
using orv::plotTable;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

struct SegmentCase
{
    QVector<double> x;
    QVector<double> y;
    QVector<QVector<QPointF>> expected;
};

class PlotSegmentsTest : public ::testing::TestWithParam<SegmentCase>
{
};

TEST_P(PlotSegmentsTest, BreaksWhereXRunsBackwardsAndAroundGaps)
{
    EXPECT_EQ(plotSegments(GetParam().x, GetParam().y), GetParam().expected);
}

using Segments = QVector<QVector<QPointF>>;
INSTANTIATE_TEST_SUITE_P(
    Table, PlotSegmentsTest,
    ::testing::Values(SegmentCase{{}, {}, {}}, SegmentCase{{1, 2}, {5, 6}, Segments{{{1, 5}, {2, 6}}}},
                      // Two excitations over the same emissions.
                      SegmentCase{{1, 2, 1, 2}, {5, 6, 7, 8}, Segments{{{1, 5}, {2, 6}}, {{1, 7}, {2, 8}}}},
                      SegmentCase{{1, 1}, {5, 6}, Segments{{{1, 5}, {1, 6}}}},
                      SegmentCase{{3, 2, 1}, {5, 6, 7}, Segments{{{3, 5}}, {{2, 6}}, {{1, 7}}}},
                      SegmentCase{{1, 2, 3}, {5, nan, 7}, Segments{{{1, 5}}, {{3, 7}}}},
                      SegmentCase{{1, nan, 3}, {5, 6, infinite}, Segments{{{1, 5}}}}, SegmentCase{{nan}, {1}, {}}));

TEST(PlotExtentTest, CoversTheFinitePointsOfAllLines)
{
    const auto extent = plotExtent({{"a", "a", {1, 2, 9}, {5, -6, nan}}, {"b", "b", {0.5}, {7}}});
    EXPECT_EQ(extent.m_dXLow, 0.5);
    EXPECT_EQ(extent.m_dXHigh, 2.0);
    EXPECT_EQ(extent.m_dYLow, -6.0);
    EXPECT_EQ(extent.m_dYHigh, 7.0);
}

TEST(PlotExtentTest, IsTheUnitSquareWithoutAPoint)
{
    const auto extent = plotExtent({{"a", "a", {nan}, {1}}});
    EXPECT_EQ(extent.m_dXLow, 0.0);
    EXPECT_EQ(extent.m_dXHigh, 1.0);
    EXPECT_EQ(extent.m_dYHigh, 1.0);
}

TEST(PlotTableTest, HasAHeadingAndARowAPoint)
{
    EXPECT_EQ(plotTable("Emission Wavelength [nm]",
                        {{"1", "TissueAF", {700, 720}, {0.25, 1.5e9}}, {"2", "ICG", {700, 720}, {1, -2}}}, ','),
              "Emission Wavelength [nm],TissueAF,ICG\n700,0.25,1\n720,1500000000,-2\n");
}

TEST(PlotTableTest, BringsEveryDoubleBack)
{
    const double third = 1.0 / 3.0;
    const QByteArray table = plotTable("x", {{"1", "a", {1}, {third}}}, ',');
    EXPECT_EQ(table, "x,a\n1,0.33333333333333331\n");
}

TEST(PlotTableTest, QuotesNamesThatNeedIt)
{
    EXPECT_EQ(plotTable("Time Point [s]", {{"1", "a,b", {}, {}}, {"2", "c\"d", {}, {}}, {"3", "e;f", {}, {}}}, ','),
              "Time Point [s],\"a,b\",\"c\"\"d\",e;f\n");
    EXPECT_EQ(plotTable("x", {{"1", "a,b", {}, {}}, {"2", "e;f", {}, {}}, {"3", "g\nh", {}, {}}}, ';'),
              "x;a,b;\"e;f\";\"g\nh\"\n");
    EXPECT_EQ(plotTable("x", {{"1", "a\tb", {}, {}}}, '\t'), "x\t\"a\tb\"\n");
}

TEST(PlotTableTest, KeepsPointsWhoseXComesAgainAndLinesNamedAlike)
{
    EXPECT_EQ(plotTable("x", {{"1", "a", {1, 2, 1}, {5, 6, 7}}, {"2", "a", {1, 2, 1}, {8, 9, 10}}}, ','),
              "x,a,a\n1,5,8\n2,6,9\n1,7,10\n");
}

TEST(PlotTableTest, LeavesCellsEmptyWhereALineHasNoPoint)
{
    EXPECT_EQ(plotTable("x", {{"1", "a", {1, 2}, {5, 6}}, {"2", "b", {2, 3}, {7, 8}}}, ','),
              "x,a,b\n1,5,\n2,6,7\n3,,8\n");
}

TEST(PlotTableTest, TellsValuesThatAreNoNumbers)
{
    EXPECT_EQ(plotTable("x", {{"1", "a", {1, 2}, {nan, infinite}}}, ','), "x,a\n1,nan\n2,inf\n");
}

TEST(LegibleColorTest, StaysOnALightBase)
{
    for (const char* pName : {"black", "silver", "lime", "cyan", "pink"}) {
        EXPECT_EQ(legibleColor(QColor(pName), Qt::white, Qt::black), QColor(pName)) << pName;
    }
}

TEST(LegibleColorTest, OfDarkColorsIsLighterOnADarkBase)
{
    const QColor base(30, 30, 30);
    const QColor black = legibleColor(Qt::black, base, Qt::white);
    EXPECT_GT(black.lightness(), 80);
    const QColor blue = legibleColor(Qt::blue, base, Qt::white);
    EXPECT_GT(blue.lightness(), QColor(Qt::blue).lightness());
    EXPECT_NEAR(blue.hue(), QColor(Qt::blue).hue(), 10);
    EXPECT_EQ(legibleColor(QColor("lime"), base, Qt::white), QColor("lime"));
}

} // namespace
