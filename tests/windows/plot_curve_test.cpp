// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/plotCurve.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

QVector<double> curveOf(std::vector<double> list, bool bNormalized)
{
    return plotCurve(XTNT::Vector<double>(list.data(), static_cast<long long>(list.size())), bNormalized);
}

TEST(PlotCurveTest, IsTheValuesAsTheyAre)
{
    EXPECT_EQ(curveOf({1.0, -4.0, 2.0}, false), (QVector<double>{1.0, -4.0, 2.0}));
    EXPECT_EQ(curveOf({}, true), QVector<double>());
}

TEST(PlotCurveTest, IsNormalizedToItsLargestValue)
{
    EXPECT_EQ(curveOf({1.0, -4.0, 2.0}, true), (QVector<double>{0.5, -2.0, 1.0}));
}

TEST(PlotCurveTest, ZerosAndNegativeValuesStayUnscaled)
{
    EXPECT_EQ(curveOf({0.0, 0.0}, true), (QVector<double>{0.0, 0.0}));
    EXPECT_EQ(curveOf({-3.0, -1.0}, true), (QVector<double>{-3.0, -1.0}));
}

TEST(PlotCurveTest, WhatIsNoNumberHasNoSayInTheScale)
{
    const QVector<double> curve = curveOf({std::numeric_limits<double>::quiet_NaN(), 4.0, 2.0}, true);
    EXPECT_TRUE(std::isnan(curve[0]));
    EXPECT_EQ(curve[1], 1.0);
    EXPECT_EQ(curve[2], 0.5);
}

} // namespace
