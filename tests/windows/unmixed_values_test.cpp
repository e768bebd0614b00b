// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/unmixedValues.h"

#include <gtest/gtest.h>

namespace {

// Two components over maps of 4 x 3 pixels; an element tells component, and its column.
UnmixedValues values(int nSpots, std::vector<int> pixels)
{
    const int nPixels = pixels.empty() ? 12 : static_cast<int>(pixels.size());
    UnmixedValues result;
    result.data = XTNT::Matrix<double>(2, static_cast<long long>(nPixels) * nSpots, 0.0);
    for (int c = 0; c < 2; ++c) {
        for (int j = 0; j < nPixels * nSpots; ++j) {
            result.data[c][j] = 100.0 * (c + 1) + j;
        }
    }
    result.pixels = std::move(pixels);
    result.size = QSize(4, 3);
    result.spots = nSpots;
    return result;
}

TEST(UnmixedValuesTest, AreThoseOfTheTilesComponent)
{
    const UnmixedValues all = values(1, {});
    EXPECT_EQ(all.value(0, {0, 0}), 100.0);
    EXPECT_EQ(all.value(0, {3, 1}), 107.0);
    EXPECT_EQ(all.value(1, {3, 2}), 211.0);
    EXPECT_EQ(all.value(2, {3, 2}), std::nullopt) << "the composite";
    EXPECT_EQ(all.value(3, {0, 0}), std::nullopt) << "of a spot that there is not";
}

TEST(UnmixedValuesTest, OfAMaskAreThoseOfItsPixelsAlone)
{
    const UnmixedValues masked = values(1, {2, 5, 11});
    EXPECT_EQ(masked.value(0, {2, 0}), 100.0);
    EXPECT_EQ(masked.value(1, {1, 1}), 201.0);
    EXPECT_EQ(masked.value(0, {3, 2}), 102.0);
    EXPECT_EQ(masked.value(0, {3, 1}), std::nullopt);
    EXPECT_EQ(masked.value(0, {0, 0}), std::nullopt);
}

TEST(UnmixedValuesTest, FollowSpotAfterSpot)
{
    const UnmixedValues scan = values(3, {2, 5});
    EXPECT_EQ(scan.value(0, {1, 1}), 101.0);
    EXPECT_EQ(scan.value(3, {1, 1}), 103.0);
    EXPECT_EQ(scan.value(7, {2, 0}), 204.0);
    EXPECT_EQ(scan.value(8, {2, 0}), std::nullopt);
    EXPECT_EQ(scan.value(9, {2, 0}), std::nullopt);
}

TEST(UnmixedValuesTest, ThereAreNoneBesideTheMapOrWithoutAResult)
{
    const UnmixedValues all = values(1, {});
    for (const QPoint& beside : {QPoint(-1, 0), QPoint(0, -1), QPoint(4, 0), QPoint(0, 3)}) {
        EXPECT_EQ(all.value(0, beside), std::nullopt);
    }
    EXPECT_EQ(all.value(-1, {0, 0}), std::nullopt);
    EXPECT_EQ(UnmixedValues().value(0, {0, 0}), std::nullopt);
}

TEST(UnmixedValuesTest, APictureOfAnotherSizeShowsTheSamePlaces)
{
    const UnmixedValues all = values(1, {});
    EXPECT_EQ(all.place({0, 0}, {8, 6}), QPoint(0, 0));
    EXPECT_EQ(all.place({1, 1}, {8, 6}), QPoint(0, 0));
    EXPECT_EQ(all.place({7, 5}, {8, 6}), QPoint(3, 2));
    EXPECT_EQ(all.place({3, 2}, {4, 3}), QPoint(3, 2));
    EXPECT_EQ(all.place({1, 0}, {2, 1}), QPoint(3, 1)) << "the middle of a pixel that covers several";
    EXPECT_EQ(all.place({1, 0}, {}), QPoint());
}

} // namespace
