// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ResultSummary.h"
#include "support/Numbers.h"

#include <gtest/gtest.h>

#include <cmath>

using testsupport::matrixOf;

namespace {

const double notANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

// Two pixels, three images; components {1, 2, 0} and {0, 1, 1} with the maps {1, 2} and {3, 0}.
TEST(ResultSummaryTest, SharesAreSumOfMapTimesSumOfSpectrumOverSumOfData)
{
    const auto spectra = matrixOf({{1, 2, 0}, {0, 1, 1}});
    const auto maps = matrixOf({{1, 2}, {3, 0}});
    const auto data = matrixOf({{1, 5, 3}, {2, 4, 0}});
    const auto shares = ResultSummary::signalShares(data, maps, spectra);
    ASSERT_EQ(shares.size(), 2u);
    EXPECT_DOUBLE_EQ(shares[0], 9.0 / 15.0);
    EXPECT_DOUBLE_EQ(shares[1], 6.0 / 15.0);
    EXPECT_DOUBLE_EQ(ResultSummary::relativeResidual(data, maps, spectra), 0.0);
}

TEST(ResultSummaryTest, SharesNeedNotAddUpWhereTheFitIsPoor)
{
    const auto shares = ResultSummary::signalShares(matrixOf({{4, 4}}), matrixOf({{2}}), matrixOf({{1, 0}}));
    ASSERT_EQ(shares.size(), 1u);
    EXPECT_DOUBLE_EQ(shares[0], 0.25);
}

TEST(ResultSummaryTest, SharesOfNothingAreNotKnown)
{
    const auto shares = ResultSummary::signalShares(matrixOf({{0, 0}}), matrixOf({{1}}), matrixOf({{1, 0}}));
    ASSERT_EQ(shares.size(), 1u);
    EXPECT_TRUE(std::isnan(shares[0]));
}

// The rest of {3, 4} after 3 x {1, 0} is {0, 4}: 4 over 5.
TEST(ResultSummaryTest, ResidualIsRelativeToTheNormOfTheData)
{
    EXPECT_DOUBLE_EQ(ResultSummary::relativeResidual(matrixOf({{3, 4}}), matrixOf({{3}}), matrixOf({{1, 0}})), 0.8);
}

TEST(ResultSummaryTest, ResidualOfAllZeroDataIsNotKnown)
{
    EXPECT_TRUE(std::isnan(ResultSummary::relativeResidual(matrixOf({{0, 0}}), matrixOf({{3}}), matrixOf({{1, 0}}))));
}

TEST(ResultSummaryTest, ATinyResidualDoesNotCancel)
{
    const double residual =
        ResultSummary::relativeResidual(matrixOf({{1e6, 1e-6}}), matrixOf({{1e6}}), matrixOf({{1, 0}}));
    EXPECT_NEAR(residual, 1e-12, 1e-18);
}

// More rows than one chunk holds.
TEST(ResultSummaryTest, ResidualGathersAllRows)
{
    constexpr long long rows = 10000;
    XTNT::Matrix<double> data(rows, 2);
    XTNT::Matrix<double> map(1, rows);
    for (long long p = 0; p < rows; ++p) {
        data[p][0] = 3.0;
        data[p][1] = 4.0;
        map[0][p] = 3.0;
    }
    EXPECT_NEAR(ResultSummary::relativeResidual(data, map, matrixOf({{1, 0}})), 0.8, 1e-12);
}

TEST(ResultSummaryTest, CorrelationOfHandWorkedMaps)
{
    EXPECT_NEAR(ResultSummary::correlation({1, 2, 3}, {2, 4, 6}), 1.0, 1e-15);
    EXPECT_NEAR(ResultSummary::correlation({1, 2, 3}, {3, 2, 1}), -1.0, 1e-15);
    // Deviations {-1, 0, 1} and {-1, 1, 0}: 1 over 2.
    EXPECT_NEAR(ResultSummary::correlation({1, 2, 3}, {0, 2, 1}), 0.5, 1e-15);
}

TEST(ResultSummaryTest, CorrelationThatIsNotDefinedIsNotKnown)
{
    EXPECT_TRUE(std::isnan(ResultSummary::correlation({1, 1}, {1, 2})));
    EXPECT_TRUE(std::isnan(ResultSummary::correlation({1, 2}, {3, 3})));
    EXPECT_TRUE(std::isnan(ResultSummary::correlation({1, 2}, {1, 2, 3})));
    EXPECT_TRUE(std::isnan(ResultSummary::correlation({}, {})));
    EXPECT_TRUE(std::isnan(ResultSummary::correlation({1, notANumber}, {1, 2})));
}

// {3, 4} beside {3, 0}: 4 over 3; and the other way round 4 over 5.
TEST(ResultSummaryTest, RelativeErrorIsRelativeToTheTruth)
{
    EXPECT_DOUBLE_EQ(ResultSummary::relativeError({3, 4}, {3, 0}), 4.0 / 3.0);
    EXPECT_DOUBLE_EQ(ResultSummary::relativeError({3, 0}, {3, 4}), 0.8);
    EXPECT_DOUBLE_EQ(ResultSummary::relativeError({3, 4}, {3, 4}), 0.0);
}

TEST(ResultSummaryTest, RelativeErrorWithoutTruthIsNotKnown)
{
    EXPECT_TRUE(std::isnan(ResultSummary::relativeError({1, 2}, {0, 0})));
    EXPECT_TRUE(std::isnan(ResultSummary::relativeError({1, 2}, {1})));
    EXPECT_TRUE(std::isnan(ResultSummary::relativeError({}, {})));
}

TEST(ResultSummaryTest, CosineOfHandWorkedSpectra)
{
    EXPECT_NEAR(ResultSummary::cosine({1, 2, 2}, {2, 4, 4}), 1.0, 1e-15);
    EXPECT_EQ(ResultSummary::cosine({1, 0}, {0, 3}), 0.0);
    // 11 over 5 times the root of 5.
    EXPECT_NEAR(ResultSummary::cosine({3, 4}, {1, 2}), 11.0 / (5.0 * std::sqrt(5.0)), 1e-15);
}

TEST(ResultSummaryTest, CosineThatIsNotDefinedIsNotKnown)
{
    EXPECT_TRUE(std::isnan(ResultSummary::cosine({0, 0}, {1, 2})));
    EXPECT_TRUE(std::isnan(ResultSummary::cosine({1, 2}, {1, 2, 3})));
    EXPECT_TRUE(std::isnan(ResultSummary::cosine({}, {})));
    EXPECT_TRUE(std::isnan(ResultSummary::cosine({1, notANumber}, {1, 2})));
}

TEST(ResultSummaryTest, ExplainedVarianceIsWhatTheSquaredResidualLeaves)
{
    EXPECT_DOUBLE_EQ(ResultSummary::explainedVariance(0.0), 100.0);
    EXPECT_DOUBLE_EQ(ResultSummary::explainedVariance(0.1), 99.0);
    EXPECT_DOUBLE_EQ(ResultSummary::explainedVariance(1.0), 0.0);
}
