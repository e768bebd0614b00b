// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/spectrumScale.h"

#include "support/Numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using testsupport::vectorOf;
using List = QVector<double>;

TEST(SpectrumScaleTest, TheLargestBecomesOne)
{
    const XTNT::Vector<double> values = vectorOf({1.0, 4.0, -2.0});
    const XTNT::Vector<double> scaled = dividedByLargest(values);
    EXPECT_EQ(curveValues(scaled), (List{0.25, 1.0, -0.5}));
    EXPECT_EQ(values[1], 4.0);
}

TEST(SpectrumScaleTest, ANegativeLargestTurnsTheSpectrumOver)
{
    EXPECT_EQ(curveValues(dividedByLargest(vectorOf({-1.0, -2.0}))), (List{1.0, 2.0}));
}

TEST(SpectrumScaleTest, ZerosBecomeNoNumbers)
{
    const XTNT::Vector<double> scaled = dividedByLargest(vectorOf({0.0, 0.0}));
    EXPECT_TRUE(std::isnan(scaled[0]));
    EXPECT_FALSE(hasFiniteValue(curveValues(scaled)));
}

TEST(SpectrumScaleTest, NothingStaysNothing)
{
    EXPECT_EQ(dividedByLargest(XTNT::Vector<double>()).n_, 0);
    EXPECT_TRUE(curveValues(XTNT::Vector<double>()).isEmpty());
    EXPECT_FALSE(hasFiniteValue({}));
}

TEST(SpectrumScaleTest, OneFiniteValueIsEnough)
{
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(hasFiniteValue(curveValues(vectorOf({std::nan(""), infinity, 3.0}))));
    EXPECT_FALSE(hasFiniteValue(curveValues(vectorOf({std::nan(""), infinity}))));
}

} // namespace
