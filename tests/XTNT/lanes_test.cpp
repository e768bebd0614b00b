// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/xtnt_lanes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

using XTNT::Lanes;
using XTNT::lanes;
using XTNT::lanesAt;
using XTNT::putLanes;

namespace {

// A template sees the type without the attributes of its name, an alignment below the natural one among them, and is
// compiled for whatever address such a value may have.
template <typename V>
[[gnu::noinline]] V twice(const V& values)
{
    return values + values;
}

template <typename V>
[[gnu::noinline]] void swapThem(V& a, V& b)
{
    std::swap(a, b);
}

class LanesTest : public ::testing::TestWithParam<int>
{
protected:
    static constexpr int count = 16;

    LanesTest()
    {
        for (int i = 0; i < count; ++i) {
            m_row[static_cast<std::size_t>(i)] = i + 1.0;
        }
    }
    // Where a row begins, from 0 to 3 doubles behind an address that is aligned to four.
    double* row() { return m_row.data() + GetParam(); }

    alignas(64) std::array<double, count> m_row;
};

} // namespace

TEST_P(LanesTest, AreReadAndWrittenAtTheAlignmentOfADouble)
{
    const std::array<double, count> before = m_row;
    putLanes(row() + 1, twice(lanesAt(row() + 1)));
    for (int i = 0; i < count; ++i) {
        const bool written = i >= GetParam() + 1 && i < GetParam() + 1 + lanes;
        const double value = before[static_cast<std::size_t>(i)];
        EXPECT_EQ(m_row[static_cast<std::size_t>(i)], written ? 2.0 * value : value) << i;
    }
}

TEST_P(LanesTest, ValuesAreCopiesThatTemplatesMayChange)
{
    Lanes a = lanesAt(row());
    Lanes b = lanesAt(row() + lanes);
    swapThem(a, b);
    putLanes(row(), a);
    putLanes(row() + lanes, b);
    for (int i = 0; i < lanes; ++i) {
        EXPECT_EQ(row()[i], GetParam() + static_cast<int>(lanes) + i + 1.0);
        EXPECT_EQ(row()[lanes + i], GetParam() + i + 1.0);
    }
}

// Variables hold what the widest instructions may store.
TEST(LanesTypeTest, IsAlignedToItsSize)
{
    EXPECT_EQ(alignof(Lanes), sizeof(Lanes));
    EXPECT_EQ(sizeof(Lanes), lanes * sizeof(double));
}

INSTANTIATE_TEST_SUITE_P(Offset, LanesTest, ::testing::Range(0, 4));
