// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvspinbox/spanGeometry.h"

#include <climits>
#include <gtest/gtest.h>

namespace {

using orv::isLowerNearer;
using orv::SpanGeometry;

struct PlaceCase
{
    SpanGeometry geometry;
    int value;
    int pixel;
};

class SpanGeometryPlaceTest : public ::testing::TestWithParam<PlaceCase>
{
};

TEST_P(SpanGeometryPlaceTest, ValueAndPixelBelongTogether)
{
    const PlaceCase& c = GetParam();
    EXPECT_EQ(c.geometry.pixelOf(c.value), c.pixel);
    EXPECT_EQ(c.geometry.valueAt(c.pixel), c.value);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SpanGeometryPlaceTest,
    ::testing::Values(PlaceCase{{0, 100, 200, false}, 0, 0}, PlaceCase{{0, 100, 200, false}, 5, 10},
                      PlaceCase{{0, 100, 200, false}, 100, 200}, PlaceCase{{0, 100, 200, true}, 0, 200},
                      PlaceCase{{0, 100, 200, true}, 95, 10}, PlaceCase{{-50, 50, 300, false}, 0, 150},
                      PlaceCase{{INT_MIN, INT_MAX, 100, false}, INT_MAX, 100},
                      PlaceCase{{INT_MIN, INT_MAX, 100, false}, INT_MIN, 0}));

TEST(SpanGeometryTest, EveryValueComesBackFromItsPixelWhereThereIsAPixelForEach)
{
    for (const bool bReversed : {false, true}) {
        const SpanGeometry geometry{0, 100, 137, bReversed};
        for (int value = 0; value <= 100; ++value) {
            EXPECT_EQ(geometry.valueAt(geometry.pixelOf(value)), value);
        }
    }
}

TEST(SpanGeometryTest, PlacesOutsideTheGrooveGiveTheEndsOfTheRange)
{
    const SpanGeometry geometry{10, 20, 100, false};
    EXPECT_EQ(geometry.valueAt(-1000), 10);
    EXPECT_EQ(geometry.valueAt(1000), 20);
    EXPECT_EQ(geometry.pixelOf(-1000), 0);
    EXPECT_EQ(geometry.pixelOf(1000), 100);
}

TEST(SpanGeometryTest, AnEmptyRangeOrGrooveHasOnePlace)
{
    EXPECT_EQ((SpanGeometry{7, 7, 100, false}.valueAt(60)), 7);
    EXPECT_EQ((SpanGeometry{7, 7, 100, false}.pixelOf(7)), 0);
    EXPECT_EQ((SpanGeometry{0, 100, 0, false}.valueAt(60)), 0);
    EXPECT_EQ((SpanGeometry{0, 100, 0, true}.pixelOf(60)), 0);
}

struct NearCase
{
    int pixel;
    int lower;
    int upper;
    bool reversed;
    bool expected;
};

class SpanNearTest : public ::testing::TestWithParam<NearCase>
{
};

TEST_P(SpanNearTest, TheNearerEndIsTaken)
{
    const NearCase& c = GetParam();
    EXPECT_EQ(isLowerNearer(c.pixel, c.lower, c.upper, c.reversed), c.expected);
}

INSTANTIATE_TEST_SUITE_P(Table, SpanNearTest,
                         ::testing::Values(NearCase{10, 20, 80, false, true}, NearCase{70, 20, 80, false, false},
                                           NearCase{49, 20, 80, false, true}, NearCase{51, 20, 80, false, false},
                                           // Ends that meet: the one that can come nearer.
                                           NearCase{30, 50, 50, false, true}, NearCase{70, 50, 50, false, false},
                                           NearCase{50, 50, 50, false, false}, NearCase{70, 50, 50, true, true},
                                           NearCase{30, 50, 50, true, false}, NearCase{10, 80, 20, true, false}));

} // namespace
