// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/FitStatistics.h"
#include "support/Numbers.h"

#include <gtest/gtest.h>

#include <cmath>

using testsupport::matrixOf;

namespace {

const double notANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

// Two pixels, three images; components {1, 2, 0} and {0, 1, 1} with the maps {1, 2} and {3, 0}.
TEST(FitStatisticsTest, SharesAreSumOfMapTimesSumOfSpectrumOverSumOfData)
{
    const auto spectra = matrixOf({{1, 2, 0}, {0, 1, 1}});
    const auto maps = matrixOf({{1, 2}, {3, 0}});
    const auto data = matrixOf({{1, 5, 3}, {2, 4, 0}});
    const auto shares = FitStatistics::signalShares(data, maps, spectra);
    ASSERT_EQ(shares.size(), 2u);
    EXPECT_DOUBLE_EQ(shares[0], 9.0 / 15.0);
    EXPECT_DOUBLE_EQ(shares[1], 6.0 / 15.0);
    EXPECT_DOUBLE_EQ(FitStatistics::relativeResidual(data, maps, spectra), 0.0);
}

TEST(FitStatisticsTest, SharesNeedNotAddUpWhereTheFitIsPoor)
{
    const auto shares = FitStatistics::signalShares(matrixOf({{4, 4}}), matrixOf({{2}}), matrixOf({{1, 0}}));
    ASSERT_EQ(shares.size(), 1u);
    EXPECT_DOUBLE_EQ(shares[0], 0.25);
}

TEST(FitStatisticsTest, SharesOfNothingAreNotKnown)
{
    const auto shares = FitStatistics::signalShares(matrixOf({{0, 0}}), matrixOf({{1}}), matrixOf({{1, 0}}));
    ASSERT_EQ(shares.size(), 1u);
    EXPECT_TRUE(std::isnan(shares[0]));
}

// The rest of {3, 4} after 3 x {1, 0} is {0, 4}: 4 over 5.
TEST(FitStatisticsTest, ResidualIsRelativeToTheNormOfTheData)
{
    EXPECT_DOUBLE_EQ(FitStatistics::relativeResidual(matrixOf({{3, 4}}), matrixOf({{3}}), matrixOf({{1, 0}})), 0.8);
}

TEST(FitStatisticsTest, ResidualOfAllZeroDataIsNotKnown)
{
    EXPECT_TRUE(std::isnan(FitStatistics::relativeResidual(matrixOf({{0, 0}}), matrixOf({{3}}), matrixOf({{1, 0}}))));
}

TEST(FitStatisticsTest, ATinyResidualDoesNotCancel)
{
    const double residual =
        FitStatistics::relativeResidual(matrixOf({{1e6, 1e-6}}), matrixOf({{1e6}}), matrixOf({{1, 0}}));
    EXPECT_NEAR(residual, 1e-12, 1e-18);
}

// More rows than one chunk holds.
TEST(FitStatisticsTest, ResidualGathersAllRows)
{
    constexpr long long rows = 10000;
    XTNT::Matrix<double> data(rows, 2);
    XTNT::Matrix<double> map(1, rows);
    for (long long p = 0; p < rows; ++p) {
        data[p][0] = 3.0;
        data[p][1] = 4.0;
        map[0][p] = 3.0;
    }
    EXPECT_NEAR(FitStatistics::relativeResidual(data, map, matrixOf({{1, 0}})), 0.8, 1e-12);
}

TEST(FitStatisticsTest, CorrelationOfHandWorkedMaps)
{
    EXPECT_NEAR(FitStatistics::correlation({1, 2, 3}, {2, 4, 6}), 1.0, 1e-15);
    EXPECT_NEAR(FitStatistics::correlation({1, 2, 3}, {3, 2, 1}), -1.0, 1e-15);
    // Deviations {-1, 0, 1} and {-1, 1, 0}: 1 over 2.
    EXPECT_NEAR(FitStatistics::correlation({1, 2, 3}, {0, 2, 1}), 0.5, 1e-15);
}

TEST(FitStatisticsTest, CorrelationThatIsNotDefinedIsNotKnown)
{
    EXPECT_TRUE(std::isnan(FitStatistics::correlation({1, 1}, {1, 2})));
    EXPECT_TRUE(std::isnan(FitStatistics::correlation({1, 2}, {3, 3})));
    EXPECT_TRUE(std::isnan(FitStatistics::correlation({1, 2}, {1, 2, 3})));
    EXPECT_TRUE(std::isnan(FitStatistics::correlation({}, {})));
    EXPECT_TRUE(std::isnan(FitStatistics::correlation({1, notANumber}, {1, 2})));
}

// {3, 4} beside {3, 0}: 4 over 3; and the other way round 4 over 5.
TEST(FitStatisticsTest, RelativeErrorIsRelativeToTheTruth)
{
    EXPECT_DOUBLE_EQ(FitStatistics::relativeError({3, 4}, {3, 0}), 4.0 / 3.0);
    EXPECT_DOUBLE_EQ(FitStatistics::relativeError({3, 0}, {3, 4}), 0.8);
    EXPECT_DOUBLE_EQ(FitStatistics::relativeError({3, 4}, {3, 4}), 0.0);
}

TEST(FitStatisticsTest, RelativeErrorWithoutTruthIsNotKnown)
{
    EXPECT_TRUE(std::isnan(FitStatistics::relativeError({1, 2}, {0, 0})));
    EXPECT_TRUE(std::isnan(FitStatistics::relativeError({1, 2}, {1})));
    EXPECT_TRUE(std::isnan(FitStatistics::relativeError({}, {})));
}

TEST(FitStatisticsTest, CosineOfHandWorkedSpectra)
{
    EXPECT_NEAR(FitStatistics::cosine({1, 2, 2}, {2, 4, 4}), 1.0, 1e-15);
    EXPECT_EQ(FitStatistics::cosine({1, 0}, {0, 3}), 0.0);
    // 11 over 5 times the root of 5.
    EXPECT_NEAR(FitStatistics::cosine({3, 4}, {1, 2}), 11.0 / (5.0 * std::sqrt(5.0)), 1e-15);
}

TEST(FitStatisticsTest, CosineThatIsNotDefinedIsNotKnown)
{
    EXPECT_TRUE(std::isnan(FitStatistics::cosine({0, 0}, {1, 2})));
    EXPECT_TRUE(std::isnan(FitStatistics::cosine({1, 2}, {1, 2, 3})));
    EXPECT_TRUE(std::isnan(FitStatistics::cosine({}, {})));
    EXPECT_TRUE(std::isnan(FitStatistics::cosine({1, notANumber}, {1, 2})));
}

TEST(FitStatisticsTest, ExplainedVarianceIsWhatTheSquaredResidualLeaves)
{
    EXPECT_DOUBLE_EQ(FitStatistics::explainedVariance(0.0), 100.0);
    EXPECT_DOUBLE_EQ(FitStatistics::explainedVariance(0.1), 99.0);
    EXPECT_DOUBLE_EQ(FitStatistics::explainedVariance(1.0), 0.0);
}
