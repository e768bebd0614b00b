// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/Refinement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

TEST(DarkLevelTest, IsThatOfPixelsWithoutLight)
{
    XTNT::Matrix<double> data(2000, 4, 100.0);
    for (long long p = 0; p < 1800; ++p) {
        for (long long b = 0; b < 4; ++b) {
            data[p][b] += 50.0;
        }
    }
    EXPECT_DOUBLE_EQ(darkLevel(data, 50), 100.0);
}

// The darkest pixels of noise are far below its mean.
TEST(DarkLevelTest, NoiseDoesNotLowerIt)
{
    std::mt19937_64 generator(11);
    std::normal_distribution<double> noise(0.0, 10.0);
    XTNT::Matrix<double> data(20000, 6, 100.0);
    for (long long i = 0; i < data.storage.n_; ++i) {
        data.storage[i] += noise(generator);
    }
    EXPECT_NEAR(darkLevel(data, 50), 100.0, 1.0);
}

TEST(DarkLevelTest, AWiderPartOfASceneIsBrighter)
{
    XTNT::Matrix<double> data(2000, 4);
    for (long long p = 0; p < 2000; ++p) {
        std::fill_n(data[p], 4, 100.0 + static_cast<double>(p));
    }
    EXPECT_DOUBLE_EQ(darkLevel(data, 50), 119.5);
    EXPECT_DOUBLE_EQ(darkLevel(data, 20), 149.5);
}

TEST(DarkLevelTest, BrokenPixelsTakeNoPart)
{
    XTNT::Matrix<double> data(2000, 4, 300.0);
    for (long long p = 0; p < 1800; ++p) {
        std::fill_n(data[p], 4, p < 20 ? 0.0 : 350.0);
    }
    data[1999][2] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_DOUBLE_EQ(darkLevel(data, 50), 300.0);
}

TEST(DarkLevelTest, OfNothingIsNothing)
{
    EXPECT_EQ(darkLevel(XTNT::Matrix<double>(30, 3), 50), 0.0);
    EXPECT_EQ(darkLevel(XTNT::Matrix<double>(), 50), 0.0);
    EXPECT_EQ(darkLevel(XTNT::Matrix<double>(1, 3, 7.0), 50), 7.0);
}
