// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/RegionEditor.h"

#include <gtest/gtest.h>

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
        return m_editor.release(m_shown);
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
    tagROIInfo outline;
    outline.name = "outline";
    outline.shape = ROISHAPE_POLYGON;
    outline.points = {{40, 40}, {120, 40}, {80, 120}};
    m_editor.setRegions({outline, box("beyond", 200, 120, 400, 400)});
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
    EXPECT_FALSE(m_editor.release(m_shown).has_value());
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

TEST_F(RegionEditorTest, WithoutAnImageNothingIsDrawn)
{
    m_editor.setImage(QSize(), 1.0);
    m_editor.setTool(Tool::Rectangle);
    EXPECT_FALSE(m_editor.press(at(10, 10), m_shown));
}

} // namespace
