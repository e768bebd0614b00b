// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/RegionEditor.h"

#include "platform/orvapi/ROIShape.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Tool = RegionEditor::Tool;
using orvwidgets::CropPart;

// An image of 100 x 50 pixels, each of 4 sensor pixels a side, shown ten times as large with a corner at (20, 30).
class RegionEditorTest : public ::testing::Test
{
protected:
    RegionEditorTest() { m_editor.setImage(QSize(100, 50), 4.0); }

    static tagROIInfo box(const QString& name, double x, double y, double w, double h)
    {
        tagROIInfo region;
        region.name = name;
        region.x = x;
        region.y = y;
        region.width = w;
        region.height = h;
        return region;
    }
    static QPointF at(double column, double row) { return m_shown.topLeft() + QPointF(10.0 * column, 10.0 * row); }
    std::optional<tagROIInfo> drag(const QPointF& from, const QPointF& to)
    {
        if (!m_editor.press(from, m_shown)) {
            return std::nullopt;
        }
        m_editor.dragTo((from + to) / 2.0, m_shown);
        m_editor.dragTo(to, m_shown);
        return m_editor.release(m_shown, &m_strReason);
    }
    // What a click hands out, if anything.
    std::optional<tagROIInfo> click(double column, double row)
    {
        EXPECT_TRUE(m_editor.press(at(column, row), m_shown));
        return m_editor.release(m_shown, &m_strReason);
    }
    void clickAll(const QVector<QPointF>& corners)
    {
        for (const QPointF& corner : corners) {
            EXPECT_FALSE(click(corner.x(), corner.y()).has_value());
        }
    }
    std::optional<tagROIInfo> byHand(const QVector<QPointF>& line)
    {
        EXPECT_TRUE(m_editor.press(at(line.first().x(), line.first().y()), m_shown));
        for (const QPointF& point : line) {
            m_editor.dragTo(at(point.x(), point.y()), m_shown);
        }
        return m_editor.release(m_shown, &m_strReason);
    }
    static tagROIInfo outline(const QString& name, tag_eroishape shape, const QVector<tagROIInfo::Point>& points)
    {
        tagROIInfo region;
        region.name = name;
        region.shape = shape;
        region.points = points;
        return region;
    }
    static std::string text(const std::optional<tagROIInfo>& region)
    {
        return region ? ROIShape::toText(*region).toStdString() : "none";
    }
    static void expectBox(const std::optional<tagROIInfo>& region, double x, double y, double w, double h)
    {
        ASSERT_TRUE(region.has_value());
        EXPECT_EQ(region->x, x);
        EXPECT_EQ(region->y, y);
        EXPECT_EQ(region->width, w);
        EXPECT_EQ(region->height, h);
    }

    static inline const QRectF m_shown{20.0, 30.0, 1000.0, 500.0};
    RegionEditor m_editor;
    QString m_strReason;
};

TEST_F(RegionEditorTest, ADragWithAToolDrawsOnWholePixelsOfTheImage)
{
    m_editor.setTool(Tool::Rectangle);
    const std::optional<tagROIInfo> drawn = drag(at(10.3, 5.4), at(30.4, 15.6));
    expectBox(drawn, 40.0, 20.0, 80.0, 44.0); // pixels 10 to 30 and 5 to 16, of four on a side
    EXPECT_EQ(drawn->shape, ROISHAPE_RECTANGLE);
    EXPECT_TRUE(m_editor.isNew());
    m_editor.setTool(Tool::Ellipse);
    EXPECT_EQ(drag(at(50, 20), at(40, 10))->shape, ROISHAPE_ELLIPSE) << "from whatever corner";
}

TEST_F(RegionEditorTest, WithoutAToolADragBesideAllRegionsIsLeftToTheView)
{
    m_editor.setRegions({box("a", 40, 40, 40, 40)});
    m_editor.choose(0);
    EXPECT_FALSE(m_editor.press(at(80, 40), m_shown));
    EXPECT_EQ(m_editor.chosen(), -1);
    EXPECT_FALSE(m_editor.isDragging());
}

TEST_F(RegionEditorTest, APressInARegionChoosesTheUpperOneAndADragMovesItByWholePixels)
{
    m_editor.setRegions({box("a", 40, 40, 80, 80), box("b", 80, 80, 42, 40)});
    const std::optional<tagROIInfo> moved = drag(at(25, 25), at(28.2, 23.9));
    EXPECT_EQ(m_editor.chosen(), 1);
    EXPECT_FALSE(m_editor.isNew());
    expectBox(moved, 92.0, 76.0, 42.0, 40.0); // a width that is none of whole pixels stays
    EXPECT_EQ(moved->name, "b");
    EXPECT_FALSE(drag(at(12, 12), at(12, 12)).has_value()) << "a click changes nothing";
    EXPECT_EQ(m_editor.chosen(), 0);
}

TEST_F(RegionEditorTest, ACornerOfTheChosenRegionResizesIt)
{
    m_editor.setRegions({box("a", 40, 40, 80, 80)});
    m_editor.choose(0);
    EXPECT_EQ(m_editor.partAt(at(30, 30), m_shown), CropPart::BottomRight);
    expectBox(drag(at(30, 30), at(45, 20)), 40.0, 40.0, 140.0, 40.0);
}

TEST_F(RegionEditorTest, NothingLeavesTheImage)
{
    m_editor.setTool(Tool::Rectangle);
    expectBox(drag(at(90, 40), at(300, 300)), 360.0, 160.0, 40.0, 40.0);
    EXPECT_FALSE(m_editor.press(at(-1, 10), m_shown)) << "beside the image";
    m_editor.setTool(Tool::None);
    m_editor.setRegions({box("a", 0, 0, 80, 80)});
    expectBox(drag(at(5, 5), at(-30, 6)), 0.0, 4.0, 80.0, 80.0);
    m_editor.setRegions({box("a", 320, 120, 80, 80)});
    m_editor.choose(0);
    EXPECT_FALSE(m_editor.moved({1, 0}).has_value());
    expectBox(m_editor.moved({-1, 0}), 316.0, 120.0, 80.0, 80.0);
}

TEST_F(RegionEditorTest, TheSmallestRegionIsOnePixel)
{
    m_editor.setTool(Tool::Rectangle);
    expectBox(drag(at(10.1, 20.1), at(10.45, 20.45)), 40.0, 80.0, 4.0, 4.0);
    expectBox(drag(at(99.6, 49.6), at(99.99, 49.99)), 396.0, 196.0, 4.0, 4.0);
}

TEST_F(RegionEditorTest, WhatCannotBeChangedByHandCanBeChosen)
{
    m_editor.setRegions(
        {outline("outline", ROISHAPE_POLYGON, {{40, 40}, {420, 40}, {80, 120}}), box("beyond", 200, 120, 400, 400)});
    EXPECT_FALSE(drag(at(20, 15), at(30, 20)).has_value());
    EXPECT_EQ(m_editor.chosen(), 0);
    EXPECT_FALSE(m_editor.moved({1, 0}).has_value());
    EXPECT_FALSE(drag(at(90, 40), at(95, 45)).has_value());
    EXPECT_EQ(m_editor.chosen(), 1);
}

TEST_F(RegionEditorTest, ADragThatIsGivenUpChangesNothing)
{
    m_editor.setRegions({box("a", 40, 40, 80, 80)});
    ASSERT_TRUE(m_editor.press(at(15, 15), m_shown));
    m_editor.dragTo(at(40, 20), m_shown);
    m_editor.giveUp();
    EXPECT_FALSE(m_editor.isDragging());
    EXPECT_FALSE(m_editor.release(m_shown, &m_strReason).has_value());
    EXPECT_EQ(m_editor.chosen(), 0);
}

TEST_F(RegionEditorTest, TheChosenRegionStaysChosenByItsName)
{
    m_editor.setRegions({box("a", 0, 0, 8, 8), box("b", 8, 8, 8, 8)});
    m_editor.choose(1);
    m_editor.setRegions({box("b", 8, 8, 8, 8)});
    EXPECT_EQ(m_editor.chosen(), 0);
    m_editor.setRegions({box("c", 8, 8, 8, 8)});
    EXPECT_EQ(m_editor.chosen(), -1);
}

TEST_F(RegionEditorTest, APolygonIsDrawnByClicksAndClosedWithCornersOnWholePixels)
{
    m_editor.setTool(Tool::Polygon);
    clickAll({{10.2, 5.1}, {20.4, 4.9}, {20.1, 14.8}});
    EXPECT_TRUE(m_editor.isDrawing());
    EXPECT_FALSE(m_editor.isDragging());
    EXPECT_EQ(text(m_editor.close(&m_strReason)), "polygon:40,20,80,20,80,60");
    EXPECT_TRUE(m_editor.isNew());
    EXPECT_FALSE(m_editor.isDrawing());
}

TEST_F(RegionEditorTest, AClickOnTheFirstOfThreeCornersClosesThePolygon)
{
    m_editor.setTool(Tool::Polygon);
    clickAll({{10, 5}, {20, 5}, {10.1, 5.2}}); // of two none is to be closed, so the third lies on the first
    EXPECT_TRUE(m_editor.isDrawing());
    m_editor.takeBackCorner();
    clickAll({{20, 15}});
    EXPECT_EQ(text(click(10.3, 4.8)), "polygon:40,20,80,20,80,60");
    EXPECT_FALSE(m_editor.isDrawing());
}

TEST_F(RegionEditorTest, ACornerFollowsThePointerUntilItIsReleased)
{
    m_editor.setTool(Tool::Polygon);
    clickAll({{10, 5}});
    EXPECT_FALSE(drag(at(15, 5), at(20, 5)).has_value());
    clickAll({{20, 15}, {20, 15}}); // a double click sets one corner
    EXPECT_EQ(text(m_editor.close(&m_strReason)), "polygon:40,20,80,20,80,60");
}

TEST_F(RegionEditorTest, FewerThanThreeCornersOrALineAreNoPolygonAndItGoesOn)
{
    m_editor.setTool(Tool::Polygon);
    clickAll({{10, 5}, {20, 5}});
    EXPECT_FALSE(m_editor.close(&m_strReason).has_value());
    EXPECT_EQ(m_strReason, "an outline takes three points at least");
    clickAll({{30, 5}});
    EXPECT_FALSE(m_editor.close(&m_strReason).has_value());
    EXPECT_EQ(m_strReason, "all points lie on a line");
    EXPECT_TRUE(m_editor.isDrawing());
    clickAll({{30, 15}});
    EXPECT_TRUE(m_editor.close(&m_strReason).has_value());
}

TEST_F(RegionEditorTest, ACornerIsTakenBackAndThePolygonEndsWithItsOnlyOne)
{
    m_editor.setTool(Tool::Polygon);
    clickAll({{10, 5}, {20, 5}, {40, 40}});
    m_editor.takeBackCorner();
    clickAll({{20, 15}});
    EXPECT_EQ(text(m_editor.close(&m_strReason)), "polygon:40,20,80,20,80,60");
    clickAll({{10, 5}});
    m_editor.takeBackCorner();
    EXPECT_FALSE(m_editor.isDrawing());
}

TEST_F(RegionEditorTest, APolygonThatIsGivenUpLeavesWhatWasChosen)
{
    m_editor.setRegions({box("a", 40, 40, 80, 80)});
    m_editor.choose(0);
    m_editor.setTool(Tool::Polygon);
    clickAll({{50, 5}, {60, 5}, {60, 15}});
    m_editor.giveUp();
    EXPECT_FALSE(m_editor.isDrawing());
    EXPECT_EQ(m_editor.chosen(), 0);
    EXPECT_EQ(m_editor.partAt(at(30, 30), m_shown), CropPart::BottomRight);
    clickAll({{50, 5}});
    m_editor.takeBackCorner();
    EXPECT_EQ(m_editor.partAt(at(30, 30), m_shown), CropPart::BottomRight) << "so does taking its only corner back";
    clickAll({{50, 5}});
    m_editor.setTool(Tool::Ellipse);
    EXPECT_FALSE(m_editor.isDrawing()) << "another tool gives it up, too";
}

TEST_F(RegionEditorTest, APolygonStaysInItsPlaceWhenTheViewIsZoomedAndRegionsChange)
{
    m_editor.setTool(Tool::Polygon);
    clickAll({{10, 5}, {20, 5}});
    m_editor.setRegions({box("renamed", 40, 40, 80, 80)});
    m_editor.setImage(QSize(100, 50), 4.0);
    EXPECT_TRUE(m_editor.isDrawing()) << "the same image in another unit";
    const QRectF zoomed(-500.0, -200.0, 4000.0, 2000.0);
    ASSERT_TRUE(m_editor.press(QPointF(-500.0 + 20.3 * 40.0, -200.0 + 15.2 * 40.0), zoomed));
    EXPECT_FALSE(m_editor.release(zoomed, &m_strReason).has_value());
    EXPECT_EQ(text(m_editor.close(&m_strReason)), "polygon:40,20,80,20,80,60");
    clickAll({{10, 5}});
    m_editor.setImage(QSize(200, 100), 2.0);
    EXPECT_FALSE(m_editor.isDrawing()) << "another image";
}

TEST_F(RegionEditorTest, CornersBesideTheImageCountAsTheNearestOnIt)
{
    m_editor.setTool(Tool::Polygon);
    EXPECT_FALSE(m_editor.press(at(-1, 10), m_shown)) << "none begins there";
    clickAll({{90, 40}, {130, 40}, {130, 70}, {90, 50.4}});
    EXPECT_EQ(text(m_editor.close(&m_strReason)), "polygon:360,160,400,160,400,200,360,200");
}

TEST_F(RegionEditorTest, AnOutlineThatCrossesItselfIsARegionOfAllThatItRunsAround)
{
    m_editor.setTool(Tool::Polygon);
    clickAll({{10, 10}, {20, 20}, {20, 10}, {10, 20}});
    const std::optional<tagROIInfo> eight = m_editor.close(&m_strReason);
    ASSERT_TRUE(eight.has_value());
    EXPECT_EQ(ROIShape::pixelCount(*eight, 100, 50, 4.0), 50) << "half of the square around it";
}

TEST_F(RegionEditorTest, APolygonAroundOnePixelHoldsItAndOneAroundNoCentreIsNone)
{
    m_editor.setTool(Tool::Polygon);
    clickAll({{10, 10}, {11, 10}, {11, 11}, {10, 11}});
    const std::optional<tagROIInfo> pixel = m_editor.close(&m_strReason);
    ASSERT_TRUE(pixel.has_value());
    EXPECT_EQ(ROIShape::pixelCount(*pixel, 100, 50, 4.0), 1);
    clickAll({{10, 10}, {11, 10}, {10, 11}}); // its third side passes the centre, which is outside then
    EXPECT_FALSE(m_editor.close(&m_strReason).has_value());
    EXPECT_EQ(m_strReason, "the centre of no pixel lies inside");
}

TEST_F(RegionEditorTest, ALineByHandClosesWhereItIsReleased)
{
    m_editor.setTool(Tool::FreeHand);
    EXPECT_EQ(text(byHand({{10.25, 5.5}, {20, 5}, {20.123, 14.877}, {20.123, 14.877}, {120, 30}})),
              "freehand:41,22,80,20,80.49,59.51,400,120");
    EXPECT_TRUE(m_editor.isNew());
    EXPECT_FALSE(m_editor.isDragging());
}

TEST_F(RegionEditorTest, AClickOrALineWithoutAnInsideDrawsNothingByHand)
{
    m_editor.setTool(Tool::FreeHand);
    EXPECT_FALSE(click(10, 10).has_value());
    EXPECT_FALSE(byHand({{10, 10}, {20, 10}, {30, 10}}).has_value());
    EXPECT_EQ(m_strReason, "all points lie on a line");
    EXPECT_FALSE(byHand({{10.1, 10.1}, {10.3, 10.1}, {10.3, 10.3}}).has_value());
    EXPECT_EQ(m_strReason, "the centre of no pixel lies inside");
    EXPECT_FALSE(m_editor.isDrawing());
    m_editor.setTool(Tool::Rectangle);
    EXPECT_TRUE(drag(at(1, 1), at(9, 9)).has_value()) << "the next drag is free";
}

TEST_F(RegionEditorTest, ALongLineByHandKeepsAsManyPointsAsARegionMayHave)
{
    m_editor.setTool(Tool::FreeHand);
    QVector<QPointF> spiral;
    for (int i = 0; i < 25000; ++i) {
        const double turn = 0.01 * i;
        spiral.append({50.0 + 20.0 * std::cos(turn), 25.0 + (1.0 + 0.0008 * i) * std::sin(turn)});
    }
    const std::optional<tagROIInfo> drawn = byHand(spiral);
    ASSERT_TRUE(drawn.has_value()) << qPrintable(m_strReason);
    EXPECT_LE(drawn->points.size(), ROIShape::kMaximumPoints);
    EXPECT_GE(drawn->points.size(), ROIShape::kMaximumPoints / 2);
}

TEST_F(RegionEditorTest, ALineByHandThatLosesItsButtonIsGivenUpAndAPolygonKeepsItsCorners)
{
    m_editor.setTool(Tool::FreeHand);
    ASSERT_TRUE(m_editor.press(at(10, 10), m_shown));
    m_editor.dragTo(at(20, 20), m_shown);
    m_editor.cancelDrag();
    EXPECT_FALSE(m_editor.isDragging());
    m_editor.setTool(Tool::Polygon);
    clickAll({{10, 5}, {20, 5}});
    ASSERT_TRUE(m_editor.press(at(20, 15), m_shown));
    m_editor.cancelDrag();
    EXPECT_FALSE(m_editor.isDragging());
    EXPECT_EQ(text(m_editor.close(&m_strReason)), "polygon:40,20,80,20,80,60");
}

TEST_F(RegionEditorTest, OutlinesMoveByWholePixelsAndStayOnTheImage)
{
    m_editor.setRegions({outline("hand", ROISHAPE_FREEHAND, {{41.5, 20}, {80, 21}, {60, 60.25}}),
                         outline("poly", ROISHAPE_POLYGON, {{200, 80}, {240, 80}, {220, 120}})});
    EXPECT_EQ(m_editor.partAt(at(15, 7), m_shown), CropPart::Inside);
    EXPECT_EQ(text(drag(at(15, 7), at(17.2, 10.9))), "freehand:49.5,36,88,37,68,76.25");
    EXPECT_FALSE(m_editor.isNew());
    EXPECT_EQ(m_editor.chosen(), 0);
    EXPECT_EQ(text(drag(at(15, 7), at(-30, 7))), "freehand:1.5,20,40,21,20,60.25") << "less than a pixel is left";
    EXPECT_EQ(text(m_editor.moved({0, -20})), "freehand:41.5,0,80,1,60,40.25");
    EXPECT_FALSE(m_editor.press(at(11, 14), m_shown)) << "beside it, within the rectangle around it";
    EXPECT_EQ(text(drag(at(55, 22), at(56, 22))), "polygon:204,80,244,80,224,120");
    EXPECT_FALSE(drag(at(55, 22), at(55, 22)).has_value()) << "a click changes nothing";
    m_editor.setRegions({outline("poly", ROISHAPE_POLYGON, {{0, 0}, {400, 0}, {220, 120}})});
    m_editor.choose(0);
    EXPECT_FALSE(m_editor.moved({1, 0}).has_value());
    EXPECT_FALSE(m_editor.moved({0, -1}).has_value());
}

TEST_F(RegionEditorTest, ACornerOfTheChosenPolygonIsDraggedAndOneThatLeavesNoRegionGoesBack)
{
    m_editor.setRegions({outline("poly", ROISHAPE_POLYGON, {{200, 80}, {240, 80}, {220, 120}})});
    m_editor.choose(0);
    EXPECT_EQ(text(drag(at(60.2, 20.1), at(64.7, 10.2))), "polygon:200,80,260,40,220,120");
    EXPECT_FALSE(drag(at(55, 30), at(55, 20)).has_value());
    EXPECT_EQ(m_strReason, "all points lie on a line");
    EXPECT_EQ(text(drag(at(55, 30), at(300, 300))), "polygon:200,80,240,80,400,200");
    m_editor.setRegions({outline("hand", ROISHAPE_FREEHAND, {{200, 80}, {240, 80}, {220, 120}})});
    m_editor.choose(0);
    EXPECT_FALSE(m_editor.press(at(60.3, 20), m_shown)) << "a line drawn by hand has no corners to drag";
}

TEST_F(RegionEditorTest, WithoutAnImageNothingIsDrawn)
{
    m_editor.setImage(QSize(), 1.0);
    m_editor.setTool(Tool::Rectangle);
    EXPECT_FALSE(m_editor.press(at(10, 10), m_shown));
}

} // namespace
