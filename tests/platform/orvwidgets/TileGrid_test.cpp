// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/TileGrid.h"

#include <gtest/gtest.h>

namespace orvwidgets {
namespace {

struct GridCase
{
    int count, perRow, columns, rows;
};

class TileGridTest : public ::testing::TestWithParam<GridCase>
{
};

TEST_P(TileGridTest, IsNearSquareOrAsWideAsAsked)
{
    const TileGrid grid(GetParam().count, GetParam().perRow, {64, 64});
    EXPECT_EQ(grid.columns(), GetParam().columns);
    EXPECT_EQ(grid.rows(), GetParam().rows);
}

INSTANTIATE_TEST_SUITE_P(Counts, TileGridTest,
                         ::testing::Values(GridCase{0, 0, 0, 0}, GridCase{1, 0, 1, 1}, GridCase{2, 0, 2, 1},
                                           GridCase{3, 0, 2, 2}, GridCase{4, 0, 2, 2}, GridCase{5, 0, 3, 2},
                                           GridCase{7, 0, 3, 3}, GridCase{10, 0, 4, 3}, GridCase{125, 5, 5, 25},
                                           GridCase{3, 5, 3, 1}));

TEST(TileGridPlacesTest, TilesAreOfOneSizeInOrderAndDoNotTouch)
{
    const TileGrid grid(7, 0, {200, 100});
    EXPECT_EQ(grid.tile(0), QRectF(3, 3, 100, 50));
    EXPECT_EQ(grid.tile(2), QRectF(209, 3, 100, 50));
    EXPECT_EQ(grid.tile(3), QRectF(3, 56, 100, 50));
    EXPECT_EQ(grid.size(), QSizeF(312, 162));
    for (int i = 0; i < 7; ++i) {
        EXPECT_TRUE(QRectF(QPointF(), grid.size()).contains(grid.tile(i)));
        for (int k = 0; k < i; ++k) {
            EXPECT_FALSE(grid.tile(i).intersects(grid.tile(k)));
        }
    }
    EXPECT_TRUE(grid.tile(7).isEmpty());
    EXPECT_TRUE(grid.tile(-1).isEmpty());
}

struct HitCase
{
    const char* name;
    QPointF at;
    int index;
};

class TileHitTest : public ::testing::TestWithParam<HitCase>
{
};

TEST_P(TileHitTest, FindsTheTileUnderAPoint)
{
    EXPECT_EQ(TileGrid(5, 0, {100, 100}).tileAt(GetParam().at), GetParam().index);
}

INSTANTIATE_TEST_SUITE_P(Points, TileHitTest,
                         ::testing::Values(HitCase{"First", {50, 50}, 0}, HitCase{"Third", {250, 50}, 2},
                                           HitCase{"Fifth", {150, 150}, 4}, HitCase{"OuterGap", {1, 50}, -1},
                                           HitCase{"GapBetween", {104.5, 50}, -1}, HitCase{"NoSixth", {250, 150}, -1},
                                           HitCase{"Beside", {400, 50}, -1}, HitCase{"Below", {50, 400}, -1},
                                           HitCase{"Negative", {-1, -1}, -1}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(TilesPerSpotTest, LabelsOfSeveralSpotsGiveARowASpot)
{
    EXPECT_EQ(tilesPerSpot({"A_001", "B_001", "Composite_001", "A_002", "B_002", "Composite_002"}), 3);
    EXPECT_EQ(tilesPerSpot({"A_001", "A_002", "A_003"}), 1);
}

TEST(TilesPerSpotTest, OtherLabelsGiveNone)
{
    EXPECT_EQ(tilesPerSpot({}), 0);
    EXPECT_EQ(tilesPerSpot({"A", "B", "Composite"}), 0);
    EXPECT_EQ(tilesPerSpot({"Dye_001", "Composite"}), 0) << "a component that is named so";
    EXPECT_EQ(tilesPerSpot({"A_001", "B_001", "A_002"}), 0);
    EXPECT_EQ(tilesPerSpot({"A_001", "A_002", "B_001", "B_002"}), 0);
    EXPECT_EQ(tilesPerSpot({"A_000"}), 0);
    EXPECT_EQ(tilesPerSpot({"_1"}), 0);
}

TEST(PictureInTileTest, KeepsTheAspectInTheMiddle)
{
    EXPECT_EQ(pictureInTile({0, 0, 100, 100}, {20, 10}, 1.0), QRectF(0, 25, 100, 50));
    EXPECT_EQ(pictureInTile({10, 0, 100, 50}, {20, 10}, 0.5), QRectF(35, 12.5, 50, 25));
    EXPECT_TRUE(pictureInTile({0, 0, 100, 100}, {0, 10}, 1.0).isEmpty());
}

} // namespace
} // namespace orvwidgets
