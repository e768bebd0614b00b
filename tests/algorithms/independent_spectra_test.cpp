// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/independentSpectra.h"

#include "XTNT/constrained_concentrations.h"
#include "XTNT/weighted_concentrations.h"
#include "XTNT/xtnt_parallel.h"

#include "spectraAngles.h"
#include "support/Numbers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

using XTNT::Matrix;

constexpr long long bands = 6;
constexpr double deviation = 2.0;

// Three spectra that overlap; the second has some of all bands.
Matrix<double> trueSpectra()
{
    return testsupport::matrixOf(
        {{1.0, 0.8, 0.3, 0.1, 0.0, 0.0}, {0.4, 0.7, 1.0, 0.7, 0.5, 0.3}, {0.0, 0.0, 0.1, 0.5, 1.0, 0.7}});
}

XTNT::NoiseModel evenNoise(double dDeviation)
{
    return {Matrix<double>(1, bands), Matrix<double>(1, bands, dDeviation * dDeviation)};
}

// Amounts of sources that know nothing of each other: the first and the last in a part of the pixels, the second
// beneath all.
Matrix<double> independentAmounts(long long pixels)
{
    std::mt19937_64 generator(5);
    std::uniform_real_distribution<double> share(0.0, 1.0);
    Matrix<double> amounts(pixels, 3);
    for (long long p = 0; p < pixels; ++p) {
        amounts[p][0] = share(generator) < 0.4 ? 100.0 * share(generator) : 0.0;
        amounts[p][1] = 30.0 + 20.0 * share(generator);
        amounts[p][2] = share(generator) < 0.3 ? 100.0 * share(generator) : 0.0;
    }
    return amounts;
}

// Parts of a whole.
Matrix<double> shares(long long pixels)
{
    std::mt19937_64 generator(6);
    std::exponential_distribution<double> size(1.0);
    Matrix<double> amounts(pixels, 3);
    for (long long p = 0; p < pixels; ++p) {
        const double parts[3] = {size(generator), size(generator), size(generator)};
        for (long long k = 0; k < 3; ++k) {
            amounts[p][k] = 100.0 * parts[k] / (parts[0] + parts[1] + parts[2]);
        }
    }
    return amounts;
}

Matrix<double> imagesOf(const Matrix<double>& amounts, const Matrix<double>& spectra)
{
    std::mt19937_64 generator(7);
    std::normal_distribution<double> noise(0.0, deviation);
    Matrix<double> data = amounts * spectra;
    for (long long i = 0; i < data.storage.n_; ++i) {
        data.storage[i] += noise(generator);
    }
    return data;
}

// Each spectrum with a part of another.
Matrix<double> mixedSpectra()
{
    Matrix<double> spectra = trueSpectra();
    const Matrix<double> truth = trueSpectra();
    for (long long b = 0; b < bands; ++b) {
        spectra[0][b] += 0.3 * truth[1][b];
        spectra[2][b] += 0.25 * truth[1][b];
    }
    return spectra;
}

// Runs it from a fit of the spectra.
bool run(const Matrix<double>& data, Matrix<double>& spectra)
{
    Matrix<double> fit;
    XTNT::constrainedConcentrations(data, spectra, fit);
    return makeIndependent(data, fit, evenNoise(deviation), spectra);
}

} // namespace

// A source beneath all others is in their spectra where nothing tells it apart from them.
TEST(IndependentSpectraTest, WhatIsBeneathAllIsTakenOutOfTheOthers)
{
    Matrix<double> spectra = mixedSpectra();
    ASSERT_GT(worstAngle(spectra, trueSpectra()), 10.0);
    ASSERT_TRUE(run(imagesOf(independentAmounts(8000), trueSpectra()), spectra));
    EXPECT_LT(worstAngle(spectra, trueSpectra()), 1.5);
    for (long long i = 0; i < spectra.storage.n_; ++i) {
        EXPECT_GE(spectra.storage[i], 0.0);
    }
}

// As pure pixels are whose noise carried them away from all others.
TEST(IndependentSpectraTest, SpectraTooFarApartComeNearer)
{
    Matrix<double> truth = trueSpectra();
    for (long long b = 0; b < bands; ++b) {
        truth[0][b] += 0.3 * truth[2][b];
        truth[2][b] += 0.3 * truth[0][b];
    }
    Matrix<double> spectra = trueSpectra();
    ASSERT_GT(worstAngle(spectra, truth), 10.0);
    ASSERT_TRUE(run(imagesOf(independentAmounts(8000), truth), spectra));
    EXPECT_LT(worstAngle(spectra, truth), 1.5);
}

TEST(IndependentSpectraTest, TrueSpectraStayWhereTheyAre)
{
    Matrix<double> spectra = trueSpectra();
    ASSERT_TRUE(run(imagesOf(independentAmounts(8000), trueSpectra()), spectra));
    EXPECT_LT(worstAngle(spectra, trueSpectra()), 1.5);
}

// Else its spectrum would go where the noise of the others has it.
TEST(IndependentSpectraTest, WhatIsHardlyThereStays)
{
    Matrix<double> amounts = independentAmounts(8000);
    for (long long p = 0; p < amounts.num_rows(); ++p) {
        amounts[p][2] = p % 150 == 0 ? 60.0 : 0.0;
    }
    Matrix<double> spectra = trueSpectra();
    run(imagesOf(amounts, trueSpectra()), spectra);
    for (long long b = 0; b < bands; ++b) {
        EXPECT_DOUBLE_EQ(spectra[2][b], trueSpectra()[2][b]);
    }
}

TEST(IndependentSpectraTest, PartsOfAWholeAreNotIndependent)
{
    Matrix<double> spectra = mixedSpectra();
    const Matrix<double> before = spectra.deepCopy();
    EXPECT_FALSE(run(imagesOf(shares(8000), trueSpectra()), spectra));
    EXPECT_TRUE(same(spectra, before));
}

// Whatever is in a cell is brighter in a bright cell, and their amounts can be made uncorrelated by wrong spectra.
TEST(IndependentSpectraTest, StainsOfTheSameCellsAreNotIndependent)
{
    std::mt19937_64 generator(8);
    std::normal_distribution<double> size(0.0, 0.7);
    Matrix<double> amounts(8000, 3);
    for (long long p = 0; p < amounts.num_rows(); p += 3) {
        const double cell = size(generator);
        for (long long k = 0; k < 3; ++k) {
            amounts[p][k] = 30.0 * std::exp(0.7 * cell + 0.7 * size(generator));
        }
    }
    Matrix<double> spectra = mixedSpectra();
    EXPECT_FALSE(run(imagesOf(amounts, trueSpectra()), spectra));
    EXPECT_TRUE(same(spectra, mixedSpectra()));
}

TEST(IndependentSpectraTest, WhatCannotBeToldStays)
{
    const Matrix<double> data = imagesOf(independentAmounts(8000), trueSpectra());
    Matrix<double> one(1, bands, 1.0);
    EXPECT_FALSE(run(data, one)) << "one component";
    Matrix<double> few = mixedSpectra();
    EXPECT_FALSE(run(imagesOf(independentAmounts(150), trueSpectra()), few)) << "hardly a pixel";
    EXPECT_TRUE(same(few, mixedSpectra()));
    Matrix<double> alike = trueSpectra();
    std::copy_n(alike[0], bands, alike[1]);
    const Matrix<double> fit(data.num_rows(), 3, 1.0);
    EXPECT_FALSE(makeIndependent(data, fit, evenNoise(deviation), alike)) << "spectra that depend on each other";
    Matrix<double> square(3, 3, 0.1);
    for (long long k = 0; k < 3; ++k) {
        square[k][k] = 1.0;
    }
    const Matrix<double> narrow = independentAmounts(8000) * square;
    const XTNT::NoiseModel noise{Matrix<double>(1, 3), Matrix<double>(1, 3, 1.0)};
    EXPECT_FALSE(makeIndependent(narrow, independentAmounts(8000), noise, square)) << "as many as there are bands";
}

TEST(IndependentSpectraTest, ConstantImagesStay)
{
    Matrix<double> spectra = mixedSpectra();
    Matrix<double> fit(1000, 3, 1.0);
    EXPECT_FALSE(makeIndependent(fit * trueSpectra(), fit, evenNoise(deviation), spectra));
    EXPECT_TRUE(same(spectra, mixedSpectra()));
}

TEST(IndependentSpectraTest, TheSameBitsOnAnyNumberOfThreads)
{
    const Matrix<double> data = imagesOf(independentAmounts(3000), trueSpectra());
    Matrix<double> one = mixedSpectra();
    XTNT::setThreadCount(1);
    ASSERT_TRUE(run(data, one));
    Matrix<double> three = mixedSpectra();
    XTNT::setThreadCount(3);
    ASSERT_TRUE(run(data, three));
    XTNT::setThreadCount(0);
    EXPECT_TRUE(same(one, three));
}
