// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/enclosingSpectra.h"

#include "XTNT/constrained_concentrations.h"
#include "XTNT/xtnt_parallel.h"

#include "spectraAngles.h"
#include "support/Numbers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <stdexcept>

namespace {

using XTNT::Matrix;

constexpr long long bands = 12;
constexpr long long sources = 3;
constexpr double deviation = 0.2;

// Three spectra that overlap everywhere, as those of materials do.
Matrix<double> trueSpectra()
{
    Matrix<double> spectra(sources, bands);
    for (long long k = 0; k < sources; ++k) {
        for (long long b = 0; b < bands; ++b) {
            const double at = (static_cast<double>(b) - 2.0 - 3.5 * static_cast<double>(k)) / 2.5;
            spectra[k][b] = 0.3 + 0.7 * std::exp(-at * at);
        }
    }
    return spectra;
}

// Those of pixels with a tenth of each of the other two.
Matrix<double> spectraOfMixtures()
{
    return testsupport::matrixOf({{0.8, 0.1, 0.1}, {0.1, 0.8, 0.1}, {0.1, 0.1, 0.8}}) * trueSpectra();
}

// Parts of a whole, none above `dMost`.
Matrix<double> shares(long long pixels, double dMost)
{
    std::mt19937_64 generator(6);
    std::exponential_distribution<double> size(1.0);
    Matrix<double> amounts(pixels, sources);
    for (long long p = 0; p < pixels;) {
        const double parts[sources] = {size(generator), size(generator), size(generator)};
        const double whole = parts[0] + parts[1] + parts[2];
        if (*std::max_element(parts, parts + sources) <= dMost * whole) {
            std::transform(parts, parts + sources, amounts[p++], [whole](double part) { return 100.0 * part / whole; });
        }
    }
    return amounts;
}

void addNoise(Matrix<double>& data)
{
    std::mt19937_64 generator(7);
    std::normal_distribution<double> noise(0.0, deviation);
    for (long long i = 0; i < data.storage.n_; ++i) {
        data.storage[i] += noise(generator);
    }
}

Matrix<double> imagesOf(const Matrix<double>& amounts)
{
    Matrix<double> data = amounts * trueSpectra();
    addNoise(data);
    return data;
}

XTNT::NoiseModel evenNoise(long long columns)
{
    return {Matrix<double>(1, columns), Matrix<double>(1, columns, deviation * deviation)};
}

// Runs it from a fit of the spectra.
bool run(const Matrix<double>& data, Matrix<double>& spectra)
{
    Matrix<double> fit;
    XTNT::constrainedConcentrations(data, spectra, fit);
    return encloseMixtures(data, fit, evenNoise(data.num_cols()), spectra);
}

} // namespace

TEST(EnclosingSpectraTest, MixturesLeadToWhatTheyAreMixturesOf)
{
    Matrix<double> spectra = spectraOfMixtures();
    ASSERT_GT(worstAngle(spectra, trueSpectra()), 5.0);
    ASSERT_TRUE(run(imagesOf(shares(8000, 0.85)), spectra));
    EXPECT_LT(worstAngle(spectra, trueSpectra()), 1.0);
}

TEST(EnclosingSpectraTest, SpectraOfPurePixelsStay)
{
    Matrix<double> spectra = trueSpectra();
    EXPECT_FALSE(run(imagesOf(shares(8000, 1.0)), spectra));
    EXPECT_TRUE(same(spectra, trueSpectra()));
}

// Noise takes as many rows beyond a face as lie on it.
TEST(EnclosingSpectraTest, NoiseOfRowsOnTheFacesIsNoReason)
{
    Matrix<double> amounts = shares(8000, 1.0);
    for (long long p = 0; p < amounts.num_rows(); ++p) {
        amounts[p][p % sources] = 0.0;
    }
    Matrix<double> spectra = trueSpectra();
    EXPECT_FALSE(run(imagesOf(amounts), spectra));
    EXPECT_TRUE(same(spectra, trueSpectra()));
}

// Rows are beyond the faces of the mean spectra there, pure pixels first.
TEST(EnclosingSpectraTest, SpectraThatVaryFromPixelToPixelStay)
{
    std::mt19937_64 generator(9);
    std::normal_distribution<double> size(0.0, 0.02);
    Matrix<double> data = shares(8000, 1.0) * trueSpectra();
    for (long long p = 0; p < data.num_rows(); ++p) {
        const double tilt = size(generator);
        const double bend = size(generator);
        for (long long b = 0; b < bands; ++b) {
            const double at = static_cast<double>(b) / static_cast<double>(bands - 1);
            data[p][b] *= 1.0 + tilt * std::sin(5.0 * at) + bend * std::cos(9.0 * at);
        }
    }
    addNoise(data);
    Matrix<double> spectra = trueSpectra();
    EXPECT_FALSE(run(data, spectra));
    EXPECT_TRUE(same(spectra, trueSpectra()));
}

TEST(EnclosingSpectraTest, BrokenPixelsDoNotCount)
{
    Matrix<double> data = imagesOf(shares(8000, 1.0));
    Matrix<double> mixtures = imagesOf(shares(8000, 0.85));
    for (const long long p : {1500, 3000, 4500}) {
        data[p][4] = 1000.0;
        mixtures[p][4] = 1000.0;
    }
    Matrix<double> pure = trueSpectra();
    EXPECT_FALSE(run(data, pure));
    EXPECT_TRUE(same(pure, trueSpectra()));
    Matrix<double> spectra = spectraOfMixtures();
    EXPECT_TRUE(run(mixtures, spectra));
    EXPECT_LT(worstAngle(spectra, trueSpectra()), 1.0);
}

// One of the spectra is dark in all bands but three, and none may have less than nothing.
TEST(EnclosingSpectraTest, NoSpectrumComesBelowZero)
{
    Matrix<double> truth = trueSpectra();
    std::fill_n(truth[1], bands, 0.0);
    std::fill_n(truth[1] + 5, 3, 0.1);
    Matrix<double> data = shares(8000, 0.85) * truth;
    addNoise(data);
    Matrix<double> spectra = testsupport::matrixOf({{0.8, 0.1, 0.1}, {0.1, 0.8, 0.1}, {0.1, 0.1, 0.8}}) * truth;
    EXPECT_TRUE(run(data, spectra));
    for (long long k = 0; k < sources; ++k) {
        EXPECT_GE(*std::min_element(spectra[k], spectra[k] + bands), 0.0);
        EXPECT_GT(*std::max_element(spectra[k], spectra[k] + bands), 0.0);
    }
}

TEST(EnclosingSpectraTest, WhatCannotBeToldStays)
{
    const Matrix<double> data = imagesOf(shares(8000, 0.85));
    Matrix<double> one(1, bands, 1.0);
    EXPECT_FALSE(run(data, one)) << "one component";
    Matrix<double> few = spectraOfMixtures();
    EXPECT_FALSE(run(imagesOf(shares(900, 0.85)), few)) << "hardly a pixel";
    EXPECT_TRUE(same(few, spectraOfMixtures()));
    Matrix<double> alike = spectraOfMixtures();
    std::copy_n(alike[0], bands, alike[1]);
    const Matrix<double> fit(data.num_rows(), sources, 30.0);
    EXPECT_FALSE(encloseMixtures(data, fit, evenNoise(bands), alike)) << "spectra that depend on each other";
    Matrix<double> square = testsupport::matrixOf({{1.0, 0.1, 0.1}, {0.1, 1.0, 0.1}, {0.1, 0.1, 1.0}});
    Matrix<double> mixed = testsupport::matrixOf({{1.0, 0.3, 0.3}, {0.3, 1.0, 0.3}, {0.3, 0.3, 1.0}});
    const Matrix<double> narrow = shares(8000, 0.85) * square;
    EXPECT_FALSE(encloseMixtures(narrow, shares(8000, 0.85), evenNoise(sources), mixed))
        << "as many as there are bands";
}

TEST(EnclosingSpectraTest, ConstantImagesStay)
{
    Matrix<double> spectra = spectraOfMixtures();
    const Matrix<double> fit(2000, sources, 30.0);
    EXPECT_FALSE(encloseMixtures(fit * spectraOfMixtures(), fit, evenNoise(bands), spectra));
    EXPECT_TRUE(same(spectra, spectraOfMixtures()));
}

TEST(EnclosingSpectraTest, TheSameBitsOnAnyNumberOfThreads)
{
    const Matrix<double> data = imagesOf(shares(3000, 0.85));
    Matrix<double> one = spectraOfMixtures();
    XTNT::setThreadCount(1);
    ASSERT_TRUE(run(data, one));
    Matrix<double> three = spectraOfMixtures();
    XTNT::setThreadCount(3);
    ASSERT_TRUE(run(data, three));
    XTNT::setThreadCount(0);
    EXPECT_TRUE(same(one, three));
}

TEST(EnclosingSpectraTest, AnAbortLeavesTheSpectra)
{
    const Matrix<double> data = imagesOf(shares(3000, 0.85));
    Matrix<double> spectra = spectraOfMixtures();
    Matrix<double> fit;
    XTNT::constrainedConcentrations(data, spectra, fit);
    int passed = 0;
    {
        XTNT::CancellationCheck check([&passed] {
            if (++passed == 5) {
                throw std::runtime_error("aborted");
            }
        });
        EXPECT_THROW(encloseMixtures(data, fit, evenNoise(bands), spectra), std::runtime_error);
    }
    EXPECT_EQ(passed, 5);
    EXPECT_TRUE(same(spectra, spectraOfMixtures()));
}
