// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/explainedVariance.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

XTNT::Vector<double> vectorOf(const std::vector<double>& values)
{
    XTNT::Vector<double> vector(static_cast<long long>(values.size()));
    for (std::size_t i = 0; i < values.size(); ++i) {
        vector[static_cast<long long>(i)] = values[i];
    }
    return vector;
}

ExplainedVariance explainedBy(const std::vector<double>& values)
{
    return explainedVariance(vectorOf(values));
}

TEST(ExplainedVarianceTest, PercentCumulatesByNumberOfComponents)
{
    const ExplainedVariance result = explainedBy({8.0, 1.0, 0.9375, 0.0625});
    ASSERT_EQ(result.percent.size(), 4);
    EXPECT_DOUBLE_EQ(result.percent[0], 80.0);
    EXPECT_DOUBLE_EQ(result.percent[1], 90.0);
    EXPECT_DOUBLE_EQ(result.percent[2], 99.375);
    EXPECT_DOUBLE_EQ(result.percent[3], 100.0);
    EXPECT_EQ(result.nSuggested, 3);
    EXPECT_DOUBLE_EQ(result.dSuggestedPercent, 99.375);
    EXPECT_FALSE(result.isEmpty());
}

TEST(ExplainedVarianceTest, SingleEigenvalueExplainsAll)
{
    const ExplainedVariance result = explainedBy({0.3});
    ASSERT_EQ(result.percent.size(), 1);
    EXPECT_EQ(result.nSuggested, 1);
    EXPECT_EQ(result.dSuggestedPercent, 100.0);
}

TEST(ExplainedVarianceTest, TargetItselfIsEnough)
{
    EXPECT_EQ(explainedBy({99.0, 1.0}).nSuggested, 1);
    EXPECT_EQ(explainedBy({98.9, 1.1}).nSuggested, 2);
}

TEST(ExplainedVarianceTest, ThreeEigenvaluesGiveThreeRows)
{
    EXPECT_EQ(explainedBy({5.0, 3.0, 1.0}).percent.size(), 3);
}

TEST(ExplainedVarianceTest, NothingToShow)
{
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr double kLargest = std::numeric_limits<double>::max();
    const std::vector<std::vector<double>> cases{
        {},          {0.0},       {0.0, 0.0, 0.0},  {-1.0, -2.0},        {kNaN, 1.0},
        {1.0, kNaN}, {kInfinity}, {kInfinity, 1.0}, {kLargest, kLargest}};
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const ExplainedVariance result = explainedBy(cases[i]);
        EXPECT_TRUE(result.isEmpty()) << i;
        EXPECT_EQ(result.percent.size(), 0) << i;
        EXPECT_EQ(result.nSuggested, 0) << i;
        EXPECT_EQ(result.dSuggestedPercent, 0.0) << i;
    }
}

TEST(ExplainedVarianceTest, ZerosBehindTheLastComponentAddNothing)
{
    const ExplainedVariance result = explainedBy({3.0, 1.0, 0.0, 0.0});
    EXPECT_EQ(result.nSuggested, 2);
    EXPECT_EQ(result.percent[3], 100.0);
}

TEST(ExplainedVarianceTest, EigenvaluesStayAsTheyAre)
{
    const XTNT::Vector<double> values = vectorOf({4.0, 1.0});
    const ExplainedVariance result = explainedVariance(values);
    EXPECT_EQ(values[0], 4.0);
    EXPECT_EQ(values[1], 1.0);
    EXPECT_NE(result.percent.data, values.data);
}

TEST(ExplainedVarianceTest, TextsHaveSixDigits)
{
    EXPECT_EQ(explainedVarianceText(100.0), QString("100"));
    EXPECT_EQ(explainedVarianceText(99.375), QString("99.375"));
    EXPECT_EQ(explainedVarianceText(98.7654321), QString("98.7654"));
    EXPECT_EQ(explainedVarianceText(99.9999999), QString("100"));
}

RC_GTEST_PROP(ExplainedVarianceLaw, RisesToAHundredAndTheSuggestionIsTheFirstToReachTheTarget, ())
{
    auto values = *rc::gen::nonEmpty(rc::gen::container<std::vector<double>>(
        rc::gen::map(rc::gen::inRange(0, 1000000), [](int v) { return static_cast<double>(v); })));
    values.push_back(1.0);
    std::sort(values.rbegin(), values.rend());
    const ExplainedVariance result = explainedBy(values);
    const auto n = static_cast<long long>(values.size());
    RC_ASSERT(result.percent.size() == n);
    for (long long i = 1; i < n; ++i) {
        RC_ASSERT(result.percent[i] >= result.percent[i - 1]);
    }
    const double tolerance = 100.0 * static_cast<double>(n) * std::numeric_limits<double>::epsilon();
    RC_ASSERT(std::abs(result.percent[n - 1] - 100.0) <= tolerance);
    RC_ASSERT(result.dSuggestedPercent >= 99.0);
    RC_ASSERT(result.percent[result.nSuggested - 1] == result.dSuggestedPercent);
    if (result.nSuggested > 1) {
        RC_ASSERT(result.percent[result.nSuggested - 2] < 99.0);
    }
}

} // namespace
