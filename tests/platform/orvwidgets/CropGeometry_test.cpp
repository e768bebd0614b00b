// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/CropGeometry.h"

#include <gtest/gtest.h>

namespace orvwidgets {
namespace {

const QRectF shown(50, 20, 200, 100); // where the picture lies in the view

bool drawn(CropGeometry& crop, const QPointF& from, const QPointF& to)
{
    crop.press(from, shown);
    crop.dragTo((from + to) / 2, shown);
    crop.dragTo(to, shown);
    return crop.release(shown);
}

std::array<int, 4> corners(const CropGeometry& crop, const QSizeF& side = shown.size())
{
    std::array<int, 4> c{};
    crop.reported(side).getCoords(&c[0], &c[1], &c[2], &c[3]);
    return c;
}

using Corners = std::array<int, 4>;

struct ReportCase
{
    const char* name;
    QPointF from, to;
    Corners expected; // x1, y1, x2, y2
};

class CropReportTest : public ::testing::TestWithParam<ReportCase>
{
};

TEST_P(CropReportTest, CountsFromTheLowerLeftCornerOfThePictureWithinOneAndItsSides)
{
    CropGeometry crop;
    EXPECT_TRUE(drawn(crop, GetParam().from, GetParam().to));
    EXPECT_EQ(corners(crop), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Drags, CropReportTest,
                         ::testing::Values(ReportCase{"Inside", {60, 30}, {110, 70}, {10, 90, 60, 50}},
                                           ReportCase{"InsideDrawnBackwards", {110, 70}, {60, 30}, {10, 90, 60, 50}},
                                           ReportCase{"AlongTheLeftEdge", {50, 30}, {60, 110}, {1, 90, 10, 10}},
                                           ReportCase{"AlongTheLowerEdge", {60, 100}, {200, 120}, {10, 20, 150, 1}},
                                           ReportCase{"AlongTheRightEdge", {200, 30}, {250, 70}, {150, 90, 200, 50}},
                                           ReportCase{"AlongTheUpperEdge", {60, 20}, {110, 40}, {10, 100, 60, 80}},
                                           ReportCase{
                                               "FromBesideThePictureAcrossIt", {0, 0}, {500, 500}, {1, 100, 200, 1}},
                                           ReportCase{"InTheLowerLeftCorner", {50, 117}, {53, 120}, {1, 3, 3, 1}}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(CropGeometryTest, WithoutACropAllCornersAreZero)
{
    EXPECT_EQ(corners(CropGeometry()), (Corners{0, 0, 0, 0}));
    CropGeometry crop;
    drawn(crop, {60, 30}, {110, 70});
    EXPECT_EQ(corners(crop, QSizeF(0.5, 100)), (Corners{0, 0, 0, 0}));
}

TEST(CropGeometryTest, AClickChangesNothing)
{
    CropGeometry crop;
    EXPECT_FALSE(drawn(crop, {60, 30}, {61, 31}));
    EXPECT_TRUE(crop.isEmpty());
    drawn(crop, {60, 30}, {110, 70});
    EXPECT_FALSE(drawn(crop, {200, 100}, {201, 100}));
    EXPECT_FALSE(drawn(crop, {80, 50}, {80, 50}));
    EXPECT_EQ(corners(crop), (Corners{10, 90, 60, 50}));
}

TEST(CropGeometryTest, ADragThatLeavesALineKeepsTheCropOfBefore)
{
    CropGeometry crop;
    drawn(crop, {60, 30}, {110, 70});
    EXPECT_FALSE(drawn(crop, {200, 30}, {200, 100}));
    EXPECT_EQ(corners(crop), (Corners{10, 90, 60, 50}));
}

struct PartCase
{
    const char* name;
    QPointF at;
    CropPart part;
};

class CropPartTest : public ::testing::TestWithParam<PartCase>
{
};

TEST_P(CropPartTest, HandlesAreEightPixelsWideAroundTheCorners)
{
    CropGeometry crop;
    drawn(crop, {100, 40}, {150, 80});
    EXPECT_EQ(crop.partAt(GetParam().at, shown), GetParam().part);
}

INSTANTIATE_TEST_SUITE_P(Places, CropPartTest,
                         ::testing::Values(PartCase{"TopLeft", {100, 40}, CropPart::TopLeft},
                                           PartCase{"TopLeftEdgeOfTheHandle", {96, 44}, CropPart::TopLeft},
                                           PartCase{"BesideTheHandle", {95, 40}, CropPart::Outside},
                                           PartCase{"InsideBeyondTheHandle", {105, 45}, CropPart::Inside},
                                           PartCase{"TopRight", {150, 40}, CropPart::TopRight},
                                           PartCase{"BottomLeft", {100, 80}, CropPart::BottomLeft},
                                           PartCase{"BottomRight", {154, 84}, CropPart::BottomRight},
                                           PartCase{"Middle", {125, 60}, CropPart::Inside},
                                           PartCase{"OnTheEdgeBetween", {125, 40}, CropPart::Inside},
                                           PartCase{"Outside", {200, 100}, CropPart::Outside}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(CropGeometryTest, ADragInsideMovesAndStaysOnThePicture)
{
    CropGeometry crop;
    drawn(crop, {60, 30}, {110, 70});
    EXPECT_TRUE(drawn(crop, {80, 50}, {90, 55}));
    EXPECT_EQ(corners(crop), (Corners{20, 85, 70, 45}));
    EXPECT_TRUE(drawn(crop, {90, 55}, {1000, 1000}));
    EXPECT_EQ(corners(crop), (Corners{150, 40, 200, 1}));
}

TEST(CropGeometryTest, ACornerResizesAgainstTheOppositeOne)
{
    CropGeometry crop;
    drawn(crop, {60, 30}, {110, 70});
    EXPECT_TRUE(drawn(crop, {110, 70}, {130, 100}));
    EXPECT_EQ(corners(crop), (Corners{10, 90, 80, 20}));
    EXPECT_TRUE(drawn(crop, {60, 30}, {150, 110}));
    EXPECT_EQ(corners(crop), (Corners{80, 20, 100, 10})) << "past the opposite corner";
}

TEST(CropGeometryTest, TakingBackEndsADragOrUndoesOneChange)
{
    CropGeometry crop;
    EXPECT_FALSE(crop.takeBack());
    drawn(crop, {60, 30}, {110, 70});
    crop.press({80, 50}, shown);
    crop.dragTo({100, 60}, shown);
    EXPECT_TRUE(crop.takeBack());
    EXPECT_FALSE(crop.release(shown));
    EXPECT_EQ(corners(crop), (Corners{10, 90, 60, 50}));
    EXPECT_TRUE(crop.takeBack());
    EXPECT_TRUE(crop.isEmpty());
    EXPECT_FALSE(crop.takeBack());
}

TEST(CropGeometryTest, TakingBackBringsAClearedCropBack)
{
    CropGeometry crop;
    drawn(crop, {60, 30}, {110, 70});
    EXPECT_TRUE(crop.clear());
    EXPECT_FALSE(crop.clear());
    EXPECT_TRUE(crop.takeBack());
    EXPECT_EQ(corners(crop), (Corners{10, 90, 60, 50}));
}

TEST(CropGeometryTest, MovesAndGrowsByViewPixels)
{
    CropGeometry crop;
    EXPECT_FALSE(crop.moveBy({1, 0}, shown));
    EXPECT_FALSE(crop.growBy({1, 0}, shown));
    drawn(crop, {60, 30}, {110, 70});
    EXPECT_TRUE(crop.moveBy({3, -5}, shown));
    EXPECT_EQ(corners(crop), (Corners{13, 95, 63, 55}));
    EXPECT_TRUE(crop.growBy({1, 1}, shown));
    EXPECT_EQ(corners(crop), (Corners{13, 95, 64, 54}));
    crop.moveBy({-100, 0}, shown);
    EXPECT_FALSE(crop.moveBy({-1, 0}, shown)) << "at the left edge";
    EXPECT_TRUE(crop.growBy({-500, -500}, shown));
    EXPECT_EQ(corners(crop), (Corners{1, 95, 2, 93})) << "the smallest crop";
}

TEST(CropGeometryTest, StaysOverTheSamePartOfThePictureWhenTheViewChanges)
{
    CropGeometry crop;
    drawn(crop, {100, 45}, {150, 95});
    const QRectF zoomed(0, 0, 400, 200);
    EXPECT_EQ(crop.rect(zoomed), QRectF(100, 50, 100, 100));
    EXPECT_EQ(corners(crop, zoomed.size()), (Corners{100, 150, 200, 50}));
}

TEST(CropGeometryTest, AViewWithoutAPictureTakesNoPress)
{
    CropGeometry crop;
    crop.press({10, 10}, QRectF());
    crop.dragTo({90, 90}, QRectF());
    EXPECT_FALSE(crop.release(QRectF()));
    EXPECT_TRUE(crop.isEmpty());
}

TEST(CropCursorTest, TellsWhatAPressThereWouldDo)
{
    EXPECT_EQ(cursorOver(CropPart::Outside), Qt::CrossCursor);
    EXPECT_EQ(cursorOver(CropPart::Inside), Qt::SizeAllCursor);
    EXPECT_EQ(cursorOver(CropPart::TopLeft), Qt::SizeFDiagCursor);
    EXPECT_EQ(cursorOver(CropPart::BottomRight), Qt::SizeFDiagCursor);
    EXPECT_EQ(cursorOver(CropPart::TopRight), Qt::SizeBDiagCursor);
    EXPECT_EQ(cursorOver(CropPart::BottomLeft), Qt::SizeBDiagCursor);
}

} // namespace
} // namespace orvwidgets
