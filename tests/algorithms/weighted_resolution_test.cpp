// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/weightedResolution.h"

#include "XTNT/xtnt_parallel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

using XTNT::Matrix;

constexpr long long pixels = 900;
constexpr long long bands = 5;

XTNT::NoiseModel noise(double dSlope, double dFloor)
{
    return {Matrix<double>(1, bands, dSlope), Matrix<double>(1, bands, dFloor)};
}

Matrix<double> spectra()
{
    Matrix<double> result(2, bands);
    for (long long b = 0; b < bands; ++b) {
        result[0][b] = std::exp(-0.5 * static_cast<double>(b * b));
        result[1][b] = std::exp(-0.3 * static_cast<double>((b - 3) * (b - 3)));
    }
    // Where each is dark alone, the other's amounts are told exactly.
    result[0][4] = 0.0;
    result[1][0] = 0.0;
    return result;
}

// Each source alone in a third of the pixels, both in the last.
Matrix<double> amounts()
{
    std::mt19937_64 generator(3);
    std::uniform_real_distribution<double> light(10.0, 100.0);
    Matrix<double> result(pixels, 2);
    for (long long p = 0; p < pixels; ++p) {
        result[p][0] = p % 3 != 1 ? light(generator) : 0.0;
        result[p][1] = p % 3 != 0 ? light(generator) : 0.0;
    }
    return result;
}

double largestDifference(const Matrix<double>& a, const Matrix<double>& b)
{
    double largest = 0.0;
    for (long long i = 0; i < a.storage.n_; ++i) {
        largest = std::max(largest, std::abs(a.storage[i] - b.storage[i]));
    }
    return largest;
}

Matrix<double> moved(const Matrix<double>& start)
{
    Matrix<double> result = start.deepCopy();
    for (long long b = 0; b < bands; ++b) {
        result[0][b] += 0.2 * start[1][b];
    }
    return result;
}

} // namespace

TEST(WeightedSpectraTest, SpectraThatExplainAllAreFoundFromTheirAmounts)
{
    Matrix<double> found = moved(spectra());
    ASSERT_TRUE(weightedSpectra(amounts() * spectra(), amounts(), noise(1.0, 1.0), found));
    EXPECT_LT(largestDifference(found, spectra()), 1e-9);
}

// With a variance in proportion to the light, the best estimate of one spectrum is the sum of the data over that of the
// amounts, where that without weights is sum(c d) / sum(c c).
TEST(WeightedSpectraTest, PixelsCountByTheNoiseOfTheirLight)
{
    Matrix<double> data(2, bands, 8.0);
    std::fill_n(data[1], bands, 70.0);
    Matrix<double> amount(2, 1, 10.0);
    amount[1][0] = 100.0;
    Matrix<double> found(1, bands, 1.0);
    ASSERT_TRUE(weightedSpectra(data, amount, noise(1.0, 1e-12), found));
    EXPECT_NEAR(found[0][0], 78.0 / 110.0, 1e-9);
    ASSERT_TRUE(weightedSpectra(data, amount, noise(0.0, 1.0), found));
    EXPECT_NEAR(found[0][0], (10.0 * 8.0 + 100.0 * 70.0) / (100.0 + 10000.0), 1e-9);
}

TEST(WeightedSpectraTest, NothingIsBelowZero)
{
    Matrix<double> data = amounts() * spectra();
    for (long long p = 0; p < pixels; ++p) {
        data[p][4] = -data[p][4];
    }
    Matrix<double> found = spectra();
    ASSERT_TRUE(weightedSpectra(data, amounts(), noise(1.0, 1.0), found));
    EXPECT_EQ(found[0][4], 0.0);
    EXPECT_EQ(found[1][4], 0.0);
    EXPECT_NEAR(found[1][3], 1.0, 1e-9);
}

TEST(WeightedSpectraTest, AComponentWithoutAmountsIsRefusedAndNothingChanges)
{
    Matrix<double> none = amounts();
    for (long long p = 0; p < pixels; ++p) {
        none[p][1] = 0.0;
    }
    Matrix<double> found = spectra();
    EXPECT_FALSE(weightedSpectra(amounts() * spectra(), none, noise(1.0, 1.0), found));
    EXPECT_EQ(largestDifference(found, spectra()), 0.0);
}

TEST(ResolveWeightedTest, SourcesThatAreAloneSomewhereAreResolved)
{
    const Matrix<double> data = amounts() * spectra();
    Matrix<double> found = moved(spectra());
    Matrix<double> maps = amounts();
    const WeightedRounds done = resolveWeighted(data, noise(1.0, 1.0), 500, found, maps);
    EXPECT_TRUE(done.converged);
    EXPECT_FALSE(done.failed);
    EXPECT_LT(largestDifference(found, spectra()), 0.01);
    EXPECT_LT(largestDifference(maps * found, data), 0.2);
}

TEST(ResolveWeightedTest, RoundsEndAtTheLimit)
{
    Matrix<double> found = moved(spectra());
    Matrix<double> maps = amounts();
    const WeightedRounds done = resolveWeighted(amounts() * spectra(), noise(1.0, 1.0), 2, found, maps);
    EXPECT_EQ(done.rounds, 2);
    EXPECT_FALSE(done.converged);
}

TEST(ResolveWeightedTest, SpectraHaveAMaximumOfOneAndMapsGoWithThem)
{
    Matrix<double> found = spectra();
    for (long long b = 0; b < bands; ++b) {
        found[0][b] *= 50.0;
    }
    Matrix<double> maps = amounts();
    const WeightedRounds done = resolveWeighted(amounts() * spectra(), noise(0.0, 1.0), 1, found, maps);
    EXPECT_EQ(done.rounds, 1);
    for (long long k = 0; k < 2; ++k) {
        EXPECT_EQ(*std::max_element(found[k], found[k] + bands), 1.0);
    }
    EXPECT_LT(largestDifference(maps * found, amounts() * spectra()), 1e-9 * 200.0);
}

TEST(ResolveWeightedTest, TheBitsAreTheSameOnAnyNumberOfThreads)
{
    const auto run = [](int threads) {
        XTNT::setThreadCount(threads);
        Matrix<double> found = moved(spectra());
        Matrix<double> maps = amounts();
        resolveWeighted(amounts() * spectra(), noise(1.0, 1.0), 5, found, maps);
        XTNT::setThreadCount(0);
        return found;
    };
    EXPECT_EQ(largestDifference(run(1), run(3)), 0.0);
}
