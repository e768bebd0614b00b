// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/PaintLayer.h"
#include "platform/orvwidgets/PaintMasks.h"

#include <QPainter>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <set>

namespace orvwidgets {
namespace {

class PaintMasksTest : public ::testing::Test
{
protected:
    PaintMasksTest()
    {
        m_masks.setSize({20, 10});
        m_masks.setColor(1, Qt::red);
        m_masks.setColor(2, Qt::blue);
    }
    QRect stroke(unsigned char channel, std::initializer_list<QPoint> points, bool bErase = false)
    {
        QRect changed;
        EXPECT_TRUE(m_masks.beginStroke(channel, bErase));
        for (const QPoint& p : points) {
            changed |= m_masks.strokeTo(p);
        }
        EXPECT_TRUE(m_masks.endStroke());
        return changed;
    }

    PaintMasks m_masks;
};

TEST_F(PaintMasksTest, PensAreOneThreeAndSevenPixelsWide)
{
    EXPECT_EQ(PaintMasks::penDiameter("Thin"), 1);
    EXPECT_EQ(PaintMasks::penDiameter("Medium"), 3);
    EXPECT_EQ(PaintMasks::penDiameter("Thick"), 7);
    EXPECT_EQ(PaintMasks::penDiameter("Import"), 0);
}

TEST_F(PaintMasksTest, BesideAPenLiesTheNextThinnerOrThickerOne)
{
    EXPECT_EQ(PaintMasks::penBeside(1, false), "Medium");
    EXPECT_EQ(PaintMasks::penBeside(3, false), "Thick");
    EXPECT_TRUE(PaintMasks::penBeside(7, false).isEmpty());
    EXPECT_EQ(PaintMasks::penBeside(7, true), "Medium");
    EXPECT_EQ(PaintMasks::penBeside(3, true), "Thin");
    EXPECT_TRUE(PaintMasks::penBeside(1, true).isEmpty());
}

TEST_F(PaintMasksTest, AFilledBoxIsAllOfItsPixelsAndOneStroke)
{
    stroke(1, {{4, 3}});
    ASSERT_TRUE(m_masks.beginStroke(1, false));
    EXPECT_EQ(m_masks.fill(QRect(3, 2, 3, 2), false), QRect(3, 2, 3, 2));
    EXPECT_TRUE(m_masks.endStroke());
    EXPECT_EQ(m_masks.pixels(1), (QList<int>{43, 44, 45, 63, 64, 65}));
    EXPECT_EQ(m_masks.count(1), 6);
    EXPECT_TRUE(m_masks.takeBack(1).has_value());
    EXPECT_EQ(m_masks.pixels(1), QList<int>{64}) << "what was painted before stays";
}

TEST_F(PaintMasksTest, AFilledEllipseIsThePixelsWhoseCentresLieInIt)
{
    ASSERT_TRUE(m_masks.beginStroke(1, false));
    m_masks.fill(QRect(2, 1, 8, 4), true);
    m_masks.endStroke();
    QStringList rows;
    for (int y = 1; y <= 4; ++y) {
        QString row;
        for (int x = 2; x <= 9; ++x) {
            row += QLatin1Char(m_masks.isPainted(1, y * 20 + x) ? '#' : '.');
        }
        rows << row;
    }
    // By x squared / 16 + y squared / 4 of the centres: 1.5 lines from the middle it reaches 2.6 pixels to each side.
    EXPECT_EQ(rows, (QStringList{".######.", "########", "########", ".######."}));
}

TEST_F(PaintMasksTest, ABoxBeyondThePictureFillsWhatLiesInIt)
{
    ASSERT_TRUE(m_masks.beginStroke(1, false));
    m_masks.fill(QRect(QPoint(-5, -5), QPoint(40, 40)), false);
    m_masks.endStroke();
    EXPECT_EQ(m_masks.count(1), 200);
    ASSERT_TRUE(m_masks.beginStroke(1, true));
    m_masks.fill(QRect(QPoint(18, 8), QPoint(90, 90)), false);
    m_masks.endStroke();
    EXPECT_EQ(m_masks.count(1), 196) << "erased";
    ASSERT_TRUE(m_masks.takeBack(1).has_value());
    EXPECT_EQ(m_masks.count(1), 200);
    EXPECT_TRUE(m_masks.fill(QRect(0, 0, 3, 3), false).isEmpty()) << "without a stroke";
}

TEST_F(PaintMasksTest, ADabIsARoundSpotOfThePensWidth)
{
    stroke(1, {{5, 5}});
    EXPECT_EQ(m_masks.pixels(1), QList<int>{5 * 20 + 5});
    m_masks.reset(1);
    m_masks.setPen(1, 7);
    EXPECT_EQ(stroke(1, {{9, 5}}), QRect(6, 2, 7, 7));
    EXPECT_EQ(m_masks.pixels(1).size(), 37);
    EXPECT_TRUE(m_masks.isPainted(1, 5 * 20 + 6));
    EXPECT_FALSE(m_masks.isPainted(1, 2 * 20 + 6)) << "a corner of the square";
    m_masks.setPen(1, 0);
    EXPECT_EQ(m_masks.pen(1), 7) << "no pen";
}

TEST_F(PaintMasksTest, AStrokeHasNoGapsAndEachPixelOnce)
{
    stroke(1, {{0, 0}, {9, 9}, {0, 0}});
    QList<int> diagonal;
    for (int i = 0; i < 10; ++i) {
        diagonal << i * 20 + i;
    }
    EXPECT_EQ(m_masks.pixels(1), diagonal);
}

TEST_F(PaintMasksTest, PointsBesideThePictureGiveNoPixelsOutside)
{
    m_masks.setPen(1, 7);
    stroke(1, {{-2, -2}, {30, -2}, {30, 30}});
    for (const int index : m_masks.pixels(1)) {
        EXPECT_TRUE(index >= 0 && index < 200);
    }
    m_masks.reset(1);
    stroke(1, {{-50, 4}});
    EXPECT_TRUE(m_masks.isEmpty(1));
}

TEST_F(PaintMasksTest, APixelMayBelongToSeveralChannels)
{
    stroke(1, {{3, 3}, {6, 3}});
    stroke(2, {{5, 3}, {8, 3}});
    EXPECT_TRUE(m_masks.isPainted(1, 65) && m_masks.isPainted(2, 65));
    stroke(2, {{5, 3}, {8, 3}}, true);
    EXPECT_TRUE(m_masks.isPainted(1, 65)) << "erasing is of one channel";
    EXPECT_TRUE(m_masks.isEmpty(2));
}

TEST_F(PaintMasksTest, StrokesAreTakenBackChannelByChannel)
{
    stroke(1, {{1, 1}});
    stroke(2, {{2, 2}});
    stroke(1, {{1, 1}, {4, 1}});
    EXPECT_TRUE(m_masks.takeBack(1).has_value());
    EXPECT_EQ(m_masks.pixels(1), QList<int>{21}) << "the pixel of the first stroke stays";
    EXPECT_EQ(m_masks.pixels(2), QList<int>{42});
    EXPECT_TRUE(m_masks.takeBack(1).has_value());
    EXPECT_TRUE(m_masks.isEmpty(1));
    EXPECT_FALSE(m_masks.takeBack(1).has_value());
}

TEST_F(PaintMasksTest, AnErasingStrokeIsTakenBackToo)
{
    stroke(1, {{1, 1}, {4, 1}});
    stroke(1, {{2, 1}, {9, 1}}, true);
    EXPECT_EQ(m_masks.takeBack(1).value(), QRect(2, 1, 3, 1));
    EXPECT_EQ(m_masks.pixels(1), (QList<int>{21, 22, 23, 24}));
}

TEST_F(PaintMasksTest, TakingBackEndsTheStrokeThatIsDrawn)
{
    m_masks.beginStroke(1, false);
    m_masks.strokeTo({3, 3});
    EXPECT_TRUE(m_masks.takeBack(1).has_value());
    EXPECT_FALSE(m_masks.isStroking());
    EXPECT_TRUE(m_masks.isEmpty(1));
}

TEST_F(PaintMasksTest, AStrokeThatChangesNothingIsNotRemembered)
{
    stroke(1, {{1, 1}});
    stroke(1, {{1, 1}});
    m_masks.takeBack(1);
    EXPECT_TRUE(m_masks.isEmpty(1));
}

TEST_F(PaintMasksTest, AnotherSizeDropsThePixelsAndKeepsTheChannels)
{
    stroke(1, {{1, 1}});
    m_masks.setSize({20, 10});
    EXPECT_FALSE(m_masks.isEmpty(1));
    m_masks.setSize({21, 10});
    EXPECT_TRUE(m_masks.isEmpty(1));
    EXPECT_TRUE(m_masks.contains(1));
    EXPECT_FALSE(m_masks.takeBack(1).has_value());
}

TEST_F(PaintMasksTest, OnlyChannelsWithAColourArePaintedAndNoneIsZero)
{
    EXPECT_FALSE(m_masks.setColor(0, Qt::green));
    EXPECT_FALSE(m_masks.contains(0));
    EXPECT_FALSE(m_masks.beginStroke(0, false));
    EXPECT_FALSE(m_masks.beginStroke(3, false));
    EXPECT_TRUE(m_masks.setColor(255, Qt::green));
    EXPECT_TRUE(m_masks.beginStroke(255, false));
}

TEST_F(PaintMasksTest, ARemovedColourIsNotShownAndItsPixelsStayUntilTheReset)
{
    stroke(1, {{1, 1}});
    m_masks.removeColor(1);
    EXPECT_FALSE(m_masks.contains(1));
    EXPECT_FALSE(m_masks.colorAt(21).has_value());
    EXPECT_EQ(m_masks.pixels(1), QList<int>{21});
    m_masks.reset(1);
    EXPECT_TRUE(m_masks.pixels(1).isEmpty());
}

TEST_F(PaintMasksTest, OverlappingColoursAreMixed)
{
    stroke(1, {{1, 1}});
    EXPECT_EQ(m_masks.colorAt(21).value(), QColor(Qt::red).rgb());
    stroke(2, {{1, 1}});
    EXPECT_EQ(m_masks.colorAt(21).value(), qRgb(127, 0, 127));
    EXPECT_FALSE(m_masks.colorAt(22).has_value());
}

TEST_F(PaintMasksTest, TheOldestStrokesAreForgotten)
{
    for (int i = 0; i <= PaintMasks::kHistory; ++i) {
        stroke(1, {{i % 20, i / 20}});
    }
    int taken = 0;
    while (m_masks.takeBack(1)) {
        ++taken;
    }
    EXPECT_EQ(taken, PaintMasks::kHistory);
    EXPECT_EQ(m_masks.pixels(1), QList<int>{0});
}

RC_GTEST_PROP(PaintMasksLaw, TakingAllStrokesBackLeavesNothingAndPixelsAreAscending, ())
{
    PaintMasks masks;
    const int width = *rc::gen::inRange(1, 40);
    const int height = *rc::gen::inRange(1, 40);
    masks.setSize({width, height});
    masks.setColor(7, Qt::red);
    const int strokes = *rc::gen::inRange(1, 20);
    for (int i = 0; i < strokes; ++i) {
        masks.setPen(7, *rc::gen::element(1, 3, 7));
        masks.beginStroke(7, *rc::gen::arbitrary<bool>());
        for (int k = *rc::gen::inRange(1, 5); k > 0; --k) {
            const QPoint at(*rc::gen::inRange(-10, 50), *rc::gen::inRange(-10, 50));
            if (*rc::gen::arbitrary<bool>()) {
                masks.strokeTo(at);
            } else {
                const QSize size(*rc::gen::inRange(1, 30), *rc::gen::inRange(1, 30));
                masks.fill(QRect(at, size), *rc::gen::arbitrary<bool>());
            }
        }
        masks.endStroke();
    }
    const QList<int> pixels = masks.pixels(7);
    RC_ASSERT(std::is_sorted(pixels.begin(), pixels.end()));
    const std::set<int> unique(pixels.begin(), pixels.end());
    RC_ASSERT(static_cast<int>(unique.size()) == pixels.size());
    RC_ASSERT(pixels.size() == masks.count(7));
    RC_ASSERT(pixels.isEmpty() || (pixels.first() >= 0 && pixels.last() < width * height));
    while (masks.takeBack(7)) {
    }
    RC_ASSERT(masks.isEmpty(7));
}

TEST(PaintLayerTest, HoldsTilesOnlyWhereSomethingIsPainted)
{
    PaintMasks masks;
    masks.setSize({1024, 1024});
    masks.setColor(1, QColor(0, 255, 0));
    PaintLayer layer;
    layer.update(masks, masks.all());
    EXPECT_EQ(layer.tileCount(), 0U);
    masks.beginStroke(1, false);
    const QRect changed = masks.strokeTo({200, 300}) | masks.strokeTo({300, 300});
    masks.endStroke();
    layer.update(masks, changed);
    EXPECT_EQ(layer.tileCount(), 2U);
    QImage page(1024, 1024, QImage::Format_ARGB32_Premultiplied);
    page.fill(Qt::black);
    QPainter painter(&page);
    layer.draw(painter);
    EXPECT_GT(page.pixelColor(250, 300).green(), 100);
    EXPECT_EQ(page.pixelColor(250, 301), QColor(Qt::black));
    layer.clear();
    EXPECT_EQ(layer.tileCount(), 0U);
}

} // namespace
} // namespace orvwidgets
