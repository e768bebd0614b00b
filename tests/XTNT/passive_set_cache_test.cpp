// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/passive_set_cache.h"

#include "support/Numbers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

using testsupport::randomMatrix;
using XTNT::Matrix;
using XTNT::PassiveSetCache;
using XTNT::ReducedSpectra;

TEST(ReducedSpectraTest, RefusesWhatTheFastPathCannotTake)
{
    EXPECT_TRUE(ReducedSpectra(randomMatrix(32, 40, 43)).usable());
    EXPECT_FALSE(ReducedSpectra(randomMatrix(33, 40, 43)).usable()) << "no room in the mask";
    EXPECT_FALSE(ReducedSpectra(Matrix<double>(2, 5)).usable()) << "zero";
    EXPECT_FALSE(ReducedSpectra(Matrix<double>()).usable());
    Matrix<double> notFinite = randomMatrix(3, 8, 44);
    notFinite[1][2] = std::nan("");
    EXPECT_FALSE(ReducedSpectra(notFinite).usable());
    notFinite[1][2] = std::numeric_limits<double>::infinity();
    EXPECT_FALSE(ReducedSpectra(notFinite).usable());
}

TEST(PassiveSetCacheTest, FullCacheStartsAnewWithTheSameBits)
{
    const ReducedSpectra spectra(randomMatrix(20, 40, 45));
    ASSERT_TRUE(spectra.usable());
    PassiveSetCache cache(spectra);
    const auto elements = static_cast<std::size_t>(cache.stride() * 20);
    ASSERT_LT(cache.capacity(), 1LL << 20);
    EXPECT_LE(cache.capacity() * static_cast<long long>(elements * sizeof(double)), PassiveSetCache::maxBytes);
    const double* op = cache.at(0x5a5a5);
    const std::vector<double> first(op, op + elements);
    for (PassiveSetCache::Mask mask = 0; mask < static_cast<PassiveSetCache::Mask>(cache.capacity()) + 10; ++mask) {
        cache.at(mask);
        ASSERT_LE(cache.size(), cache.capacity());
    }
    EXPECT_LT(cache.size(), 20);
    op = cache.at(0x5a5a5);
    EXPECT_TRUE(std::equal(first.begin(), first.end(), op));
}

TEST(PassiveSetCacheTest, EverySetOfFiveHasItsOperatorAtOnce)
{
    const ReducedSpectra spectra(randomMatrix(5, 12, 46));
    PassiveSetCache cache(spectra);
    for (int round = 0; round < 2; ++round) {
        for (PassiveSetCache::Mask mask = 0; mask < 32; ++mask) {
            cache.at(mask);
        }
        EXPECT_EQ(32, cache.size());
    }
    // The empty set: the negated dual is that of the data themselves, -R' c.
    const double* op = cache.at(0);
    for (long long i = 0; i < 5; ++i) {
        for (long long j = 0; j < 5; ++j) {
            EXPECT_EQ(-spectra.column(j)[i], op[i * cache.stride() + j]);
        }
    }
}
