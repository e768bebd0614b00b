// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/SaturatedPixels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace {

using XTNT::Matrix;

Matrix<double> dataOf(long long nRows, long long nImages, const std::function<double(long long, long long)>& value)
{
    Matrix<double> data(nRows, nImages);
    for (long long p = 0; p < nRows; ++p) {
        for (long long j = 0; j < nImages; ++j) {
            data[p][j] = value(p, j);
        }
    }
    return data;
}

SaturatedPixels found(const Matrix<double>& data, int nSpots = 1)
{
    return SaturatedPixels::of(data, nSpots, Matrix<double>(), Matrix<double>());
}

// Counts that rise by one or none a pixel, in a unit of their own.
double ramp(long long p, long long j)
{
    return (300.0 + 37.0 * static_cast<double>((p * 7) % 1000)) * (1.0 + 0.25 * static_cast<double>(j));
}

} // namespace

TEST(SaturatedPixelsTest, ImagesBelowTheTopAreQuiet)
{
    EXPECT_EQ(found(dataOf(1000, 3, ramp)).pixels, 0);
    EXPECT_TRUE(found(dataOf(1000, 3, ramp)).images.empty());
}

TEST(SaturatedPixelsTest, WhatIsCutAtTheTopIsCountedInAnyUnit)
{
    const auto cut = [](long long p, long long j) {
        return j == 1 ? std::min(ramp(p, 0), 300.0 + 37.0 * 990.0) * 1.37e7 : ramp(p, j);
    };
    const SaturatedPixels saturated = found(dataOf(1000, 3, cut));
    // 990 to 999 of the thousand values.
    EXPECT_EQ(saturated.pixels, 10);
    EXPECT_EQ(saturated.images, std::vector<int>{1});
    EXPECT_EQ(saturated.component, -1);
}

TEST(SaturatedPixelsTest, AFewBrightPixelsAreChance)
{
    const auto pair = [](long long p, long long j) { return std::min(ramp(p, j), 300.0 + 37.0 * 998.0); };
    EXPECT_EQ(found(dataOf(1000, 1, pair)).pixels, 0);
}

// Dim images repeat every count, and drawn ones have few values far apart.
TEST(SaturatedPixelsTest, ImagesOfFewValuesAreNotSaturated)
{
    EXPECT_EQ(found(dataOf(1000, 1, [](long long p, long long) { return static_cast<double>(p % 4); })).pixels, 0);
    EXPECT_EQ(found(dataOf(1000, 1, [](long long p, long long) { return p < 900 ? 1.0 : 0.0; })).pixels, 0);
    EXPECT_EQ(found(dataOf(1000, 1, [](long long, long long) { return 5.0; })).pixels, 0);
    EXPECT_EQ(found(dataOf(1000, 1, [](long long, long long) { return 0.0; })).pixels, 0);
}

TEST(SaturatedPixelsTest, EachSpotOfAScanIsAnImageOfItsOwn)
{
    const auto cut = [](long long p, long long) {
        return p < 1000 ? ramp(p, 0) : std::min(ramp(p, 0), 300.0 + 37.0 * 990.0);
    };
    EXPECT_EQ(found(dataOf(2000, 1, cut), 2).pixels, 10);
}

TEST(SaturatedPixelsTest, TheBrightestComponentThereIsNamed)
{
    const auto cut = [](long long p, long long) { return std::min(ramp(p, 0), 300.0 + 37.0 * 990.0); };
    const Matrix<double> data = dataOf(1000, 1, cut);
    Matrix<double> maps(2, 1000, 1.0);
    for (long long p = 0; p < 1000; ++p) {
        maps[1][p] = data[p][0] == 300.0 + 37.0 * 990.0 ? 2.0 : 0.0;
    }
    const Matrix<double> spectra(2, 1, 1.0);
    EXPECT_EQ(SaturatedPixels::of(data, 1, maps, spectra).component, 1);
}
