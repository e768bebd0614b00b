// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/RandomStream.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr int kDraws = 200000;
constexpr double kSigmas = 5.0; // a sound generator misses this once in two million tests; the seeds are fixed anyway

struct Moments
{
    double mean = 0.0;
    double variance = 0.0;
};

template <typename Draw>
Moments momentsOf(Draw draw)
{
    double mean = 0.0;
    double sum = 0.0;
    for (int i = 0; i < kDraws; ++i) {
        const double x = draw();
        const double step = x - mean;
        mean += step / (i + 1);
        sum += step * (x - mean);
    }
    return {mean, sum / (kDraws - 1)};
}

class PoissonTest : public ::testing::TestWithParam<double>
{
};

} // namespace

TEST_P(PoissonTest, MeanAndVarianceAreTheMean)
{
    RandomStream random(7, 1);
    const double mean = GetParam();
    const Moments moments = momentsOf([&] { return random.poisson(mean); });
    EXPECT_NEAR(moments.mean, mean, kSigmas * std::sqrt(mean / kDraws));
    // The variance's own standard error: fourth central moment 3 m^2 + m.
    EXPECT_NEAR(moments.variance, mean, kSigmas * std::sqrt((2.0 * mean * mean + mean) / kDraws));
}

TEST_P(PoissonTest, ShareOfEachCountIsItsProbability)
{
    const double mean = GetParam();
    if (mean > 200.0) {
        return; // single counts are too rare to tell
    }
    RandomStream random(11, 2);
    std::vector<int> seen(1000, 0);
    for (int i = 0; i < kDraws; ++i) {
        const double k = random.poisson(mean);
        ASSERT_EQ(k, std::floor(k));
        ASSERT_GE(k, 0.0);
        ++seen.at(static_cast<std::size_t>(k));
    }
    for (std::size_t k = 0; k < seen.size(); ++k) {
        const double count = static_cast<double>(k);
        const double expected = kDraws * std::exp(count * std::log(mean) - mean - logFactorial(count));
        EXPECT_NEAR(seen[k], expected, kSigmas * std::sqrt(expected) + 3.0) << "count " << k;
    }
}

INSTANTIATE_TEST_SUITE_P(Means, PoissonTest,
                         ::testing::Values(0.02, 0.7, 5.0, 9.99, 10.01, 14.0, 60.0, 150.0, 2e4, 1e7));

TEST(RandomStreamTest, MeanThatIsNotAboveZeroGivesZero)
{
    RandomStream random(1, 1);
    for (const double mean : {0.0, -3.0, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(random.poisson(mean), 0.0);
    }
}

TEST(RandomStreamTest, NormalHasMeanZeroAndVarianceOne)
{
    RandomStream random(3, 4);
    const Moments moments = momentsOf([&] { return random.normal(); });
    EXPECT_NEAR(moments.mean, 0.0, kSigmas / std::sqrt(kDraws));
    EXPECT_NEAR(moments.variance, 1.0, kSigmas * std::sqrt(2.0 / kDraws));
}

TEST(RandomStreamTest, UniformStaysBelowOne)
{
    RandomStream random(5, 6);
    const Moments moments = momentsOf([&] {
        const double u = random.uniform();
        EXPECT_GE(u, 0.0);
        EXPECT_LT(u, 1.0);
        return u;
    });
    EXPECT_NEAR(moments.mean, 0.5, kSigmas * std::sqrt(1.0 / 12.0 / kDraws));
}

TEST(RandomStreamTest, SeedAndCountersNameTheStream)
{
    RandomStream a(1, 2, 3);
    RandomStream same(1, 2, 3);
    RandomStream other(1, 3, 2);
    const double first = a.uniform();
    EXPECT_EQ(first, same.uniform());
    EXPECT_NE(first, other.uniform());
}

TEST(LogFactorialTest, AgreesWithTheSumOfLogarithms)
{
    double sum = 0.0;
    for (int k = 0; k < 300; ++k) {
        if (k > 0) {
            sum += std::log(k);
        }
        EXPECT_NEAR(logFactorial(k), sum, 1e-9 * (1.0 + sum)) << k;
    }
}
