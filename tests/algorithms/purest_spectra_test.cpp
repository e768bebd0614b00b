// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/purestSpectra.h"

#include "support/Numbers.h"
#include "support/cosine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

namespace {

using XTNT::Matrix;

constexpr long long bands = 6;

// Three spectra that overlap.
Matrix<double> trueSpectra()
{
    return testsupport::matrixOf(
        {{1.0, 0.8, 0.3, 0.1, 0.0, 0.0}, {0.1, 0.5, 1.0, 0.6, 0.2, 0.0}, {0.3, 0.1, 0.1, 0.5, 1.0, 0.7}});
}

// Mixtures in which one pixel in twenty holds one source alone, with noise of that size.
Matrix<double> mixtures(long long pixels, double dNoise)
{
    std::mt19937_64 generator(5);
    std::uniform_real_distribution<double> share(0.0, 1.0);
    std::normal_distribution<double> noise(0.0, 1.0);
    const Matrix<double> spectra = trueSpectra();
    Matrix<double> data(pixels, bands);
    for (long long p = 0; p < pixels; ++p) {
        double amounts[3] = {share(generator), share(generator), share(generator)};
        if (p % 20 == 0) {
            std::fill_n(amounts, 3, 0.0);
            amounts[p / 20 % 3] = 1.0;
        }
        for (long long b = 0; b < bands; ++b) {
            for (long long k = 0; k < 3; ++k) {
                data[p][b] += 100.0 * amounts[k] * spectra[k][b];
            }
            data[p][b] += dNoise * noise(generator);
        }
    }
    return data;
}

double cosine(const double* a, const double* b)
{
    return testsupport::cosine(a, b, bands);
}

// The least of the cosines of the true spectra with the nearest found ones.
double worstCosine(const Matrix<double>& found)
{
    const Matrix<double> truth = trueSpectra();
    double worst = 1.0;
    for (long long k = 0; k < truth.num_rows(); ++k) {
        double best = 0.0;
        for (long long i = 0; i < found.num_rows(); ++i) {
            best = std::max(best, cosine(truth[k], found[i]));
        }
        worst = std::min(worst, best);
    }
    return worst;
}

} // namespace

TEST(PurestSpectraTest, PixelsOfOneSourceAloneAreFoundAmongMixtures)
{
    const Matrix<double> found = purestSpectra(mixtures(2000, 0.0), 3);
    ASSERT_EQ(found.num_rows(), 3);
    ASSERT_EQ(found.num_cols(), bands);
    EXPECT_GT(worstCosine(found), 1.0 - 1e-9);
}

TEST(PurestSpectraTest, TheMeanOfSomePixelsIsNearTheTruthDespiteNoise)
{
    EXPECT_GT(worstCosine(purestSpectra(mixtures(6000, 3.0), 3)), 0.995);
}

TEST(PurestSpectraTest, DarkPixelsTellNothing)
{
    Matrix<double> data = mixtures(2000, 0.0);
    for (long long p = 1; p < 40; p += 2) {
        std::fill_n(data[p], bands, 0.0);
        data[p][p % bands] = 0.5; // a spectrum of its own, far from all others
    }
    EXPECT_GT(worstCosine(purestSpectra(data, 3)), 1.0 - 1e-9);
}

TEST(PurestSpectraTest, NothingIsBelowZero)
{
    const Matrix<double> found = purestSpectra(mixtures(2000, 10.0), 3);
    ASSERT_FALSE(found.empty());
    for (long long i = 0; i < found.storage.n_; ++i) {
        EXPECT_GE(found.storage[i], 0.0);
    }
}

TEST(PurestSpectraTest, WhatHoldsFewerSourcesGivesNothing)
{
    EXPECT_TRUE(purestSpectra(mixtures(2000, 0.0), 4).empty());
    EXPECT_TRUE(purestSpectra(Matrix<double>(100, bands, 3.0), 2).empty());
    EXPECT_TRUE(purestSpectra(Matrix<double>(100, bands), 1).empty());
}

TEST(PurestSpectraTest, WhatIsTooSmallOrNotFiniteGivesNothing)
{
    EXPECT_TRUE(purestSpectra(Matrix<double>(), 2).empty());
    EXPECT_TRUE(purestSpectra(mixtures(2, 0.0), 3).empty());
    EXPECT_TRUE(purestSpectra(mixtures(100, 1.0), 7).empty());
    EXPECT_TRUE(purestSpectra(mixtures(100, 0.0), 0).empty());
    Matrix<double> broken = mixtures(100, 0.0);
    broken[7][2] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(purestSpectra(broken, 3).empty());
}

TEST(PurestSpectraTest, OnePixelASourceIsEnough)
{
    EXPECT_EQ(purestSpectra(trueSpectra(), 3).num_rows(), 3);
}
