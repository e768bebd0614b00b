// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/RunMemory.h"

#include <gtest/gtest.h>

namespace {

constexpr qint64 mebibyte = 1 << 20;
constexpr qint64 gibibyte = 1 << 30;

RunSize sizeOf(double pixels, double images, bool bAutomatic)
{
    RunSize size;
    size.pixels = pixels;
    size.elements = pixels * images;
    size.automatic = bAutomatic;
    return size;
}

} // namespace

TEST(RunMemoryTest, AResolutionHoldsNoMoreThanThreeCubes)
{
    const double pixels = 1024.0 * 1024.0;
    const double more = 24.0 * pixels;
    const double one = static_cast<double>(unmixMemory(sizeOf(pixels, 24.0, true)));
    RunSize larger = sizeOf(pixels, 24.0, true);
    larger.elements += more;
    EXPECT_LE((static_cast<double>(unmixMemory(larger)) - one) / (8.0 * more), 3.0);
    EXPECT_GT(one, static_cast<double>(unmixMemory(sizeOf(pixels, 24.0, false))));
}

TEST(RunMemoryTest, AnIsotopesImagesAreHeldTwice)
{
    RunSize size = sizeOf(1e6, 12.0, true);
    const qint64 without = unmixMemory(size);
    size.keepsRaw = true;
    EXPECT_EQ(unmixMemory(size) - without, qint64{8} * 12 * 1000000);
}

TEST(RunMemoryTest, AnAbsurdSizeStaysWithinTheNumbers)
{
    EXPECT_GT(unmixMemory(sizeOf(1e18, 1e9, true)), 0);
}

TEST(RunMemoryTest, TheSystemTellsWhatItHas)
{
    const SystemMemory memory = SystemMemory::ofThisMachine();
    EXPECT_GT(memory.free, 16 * mebibyte);
    EXPECT_GE(memory.whole, memory.free / 2);
}

TEST(RunMemoryTest, WhatFitsIsNotMentioned)
{
    const SystemMemory memory{gibibyte, 4 * gibibyte};
    EXPECT_TRUE(tooMuchMemoryText(gibibyte, memory).isEmpty());
    EXPECT_EQ(tooMuchMemoryText(2 * gibibyte, memory), "the run takes about 2 GiB of memory, where 1 are to be had");
}
