// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/plotScale.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

using orv::axisScale;
using orv::AxisScale;
using orv::commonPower;
using orv::formatDecimals;
using orv::fromMantissa;
using orv::mantissa;
using orv::powerText;

struct PowerCase
{
    double largest;
    int power;
};

class CommonPowerTest : public ::testing::TestWithParam<PowerCase>
{
};

TEST_P(CommonPowerTest, IsThatOfTheLargestNumberOutsideThePlainRange)
{
    EXPECT_EQ(commonPower(GetParam().largest, 0.1, 1000.0), GetParam().power);
}

INSTANTIATE_TEST_SUITE_P(Table, CommonPowerTest,
                         ::testing::Values(PowerCase{0.0, 0}, PowerCase{1.0, 0}, PowerCase{0.1, 0}, PowerCase{999.9, 0},
                                           PowerCase{1000.0, 3}, PowerCase{1.3e9, 9}, PowerCase{9.99e8, 8},
                                           PowerCase{1e-9, -9}, PowerCase{0.05, -2}, PowerCase{1e-3, -3},
                                           PowerCase{1e15, 15}, PowerCase{1e300, 300}, PowerCase{5e-324, -324}));

TEST(MantissaTest, ComesBackAtEveryPower)
{
    for (const double value : {1.3e9, -2.5e-9, 1.7e308, 2.5e-308, 0.0}) {
        const int power = commonPower(std::abs(value), 0.1, 1000.0);
        EXPECT_LT(std::abs(mantissa(value, power)), 1000.0);
        EXPECT_DOUBLE_EQ(fromMantissa(mantissa(value, power), power), value);
    }
    EXPECT_DOUBLE_EQ(mantissa(5e-324, -324), 4.9406564584124654);
}

TEST(PowerTextTest, IsRaised)
{
    EXPECT_EQ(powerText(0), "");
    EXPECT_EQ(powerText(9), QString::fromUtf8("×10⁹"));
    EXPECT_EQ(powerText(-12), QString::fromUtf8("×10⁻¹²"));
    EXPECT_EQ(powerText(308), QString::fromUtf8("×10³⁰⁸"));
}

TEST(FormatDecimalsTest, ReadsFixedFormatsOnly)
{
    EXPECT_EQ(formatDecimals("%.2f"), 2);
    EXPECT_EQ(formatDecimals("%.0f"), 0);
    EXPECT_EQ(formatDecimals("%.4f"), 4);
    EXPECT_EQ(formatDecimals("%g"), 2);
    EXPECT_EQ(formatDecimals("%s%n"), 2);
    EXPECT_EQ(formatDecimals(""), 2);
}

struct AxisCase
{
    double low;
    double high;
    int marks;
    bool rounded;
    AxisScale expected;
};

class AxisScaleTest : public ::testing::TestWithParam<AxisCase>
{
};

TEST_P(AxisScaleTest, HasRoundStepsAndTellsItsMarksApart)
{
    const AxisCase& c = GetParam();
    const AxisScale scale = axisScale(c.low, c.high, c.marks, 2, c.rounded, 0.1, 1000.0);
    EXPECT_EQ(scale.m_nPower, c.expected.m_nPower);
    EXPECT_NEAR(scale.m_dLow, c.expected.m_dLow, 1e-9);
    EXPECT_NEAR(scale.m_dHigh, c.expected.m_dHigh, 1e-9);
    EXPECT_NEAR(scale.m_dStep, c.expected.m_dStep, 1e-12);
    EXPECT_EQ(scale.m_nDecimals, c.expected.m_nDecimals);
}

INSTANTIATE_TEST_SUITE_P(Table, AxisScaleTest,
                         ::testing::Values(AxisCase{0.0, 1.0, 5, true, {0.0, 1.0, 0.2, 0, 2}},
                                           AxisCase{0.013, 0.97, 4, true, {0.0, 1.0, 0.5, 0, 2}},
                                           AxisCase{0.0, 1.3e9, 4, true, {0.0, 1.5, 0.5, 9, 2}},
                                           AxisCase{1e-9, 4.2e-9, 4, true, {1.0, 5.0, 1.0, -9, 2}},
                                           AxisCase{-3.0, 7.0, 5, true, {-4.0, 8.0, 2.0, 0, 2}},
                                           AxisCase{0.013, 0.97, 4, false, {0.013, 0.97, 0.5, 0, 2}},
                                           // Two decimals would read alike at every mark.
                                           AxisCase{1.3e9, 1.301e9, 5, true, {1.3, 1.301, 0.0002, 9, 4}},
                                           // One value, and none: there is still an axis.
                                           AxisCase{5.0, 5.0, 4, false, {4.5, 5.5, 0.5, 0, 2}},
                                           AxisCase{0.0, 0.0, 4, false, {0.0, 1.0, 0.5, 0, 2}},
                                           AxisCase{-1e308, 1e308, 4, true, {-1.0, 1.0, 0.5, 308, 2}}));

TEST(AxisScaleTest, TimesAndWavelengthsStayPlain)
{
    EXPECT_EQ(axisScale(0.0, 90000.0, 5, 0, false, 1e-3, 1e6).m_nPower, 0);
    EXPECT_EQ(axisScale(500.0, 840.0, 5, 0, false, 1e-3, 1e6).m_nDecimals, 0);
    EXPECT_EQ(axisScale(0.0, 2.0, 5, 0, false, 1e-3, 1e6).m_nDecimals, 1);
    EXPECT_EQ(axisScale(0.0, 2e7, 5, 0, false, 1e-3, 1e6).m_nPower, 7);
}

} // namespace
