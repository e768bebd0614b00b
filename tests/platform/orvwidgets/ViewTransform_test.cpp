// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/ViewTransform.h"

#include <gtest/gtest.h>

namespace orvwidgets {
namespace {

constexpr double kRounding = 1e-9; // of sums and products of sides up to some thousand

ViewTransform transform(const QSizeF& picture, const QSizeF& view)
{
    ViewTransform t;
    t.setViewSize(view);
    t.setPictureSize(picture);
    return t;
}

void expectRect(const ViewTransform& t, double x, double y, double w, double h)
{
    const QRectF r = t.pictureRect();
    EXPECT_NEAR(r.x(), x, kRounding);
    EXPECT_NEAR(r.y(), y, kRounding);
    EXPECT_NEAR(r.width(), w, kRounding);
    EXPECT_NEAR(r.height(), h, kRounding);
}

TEST(ViewTransformTest, FitsAPictureKeepingItsAspectAndCentresIt)
{
    expectRect(transform({100, 50}, {400, 400}), 0, 100, 400, 200);
    expectRect(transform({100, 50}, {400, 100}), 100, 0, 200, 100);
    expectRect(transform({1024, 1024}, {300, 200}), 50, 0, 200, 200);
}

TEST(ViewTransformTest, FittedStaysFittedWhenTheViewChanges)
{
    ViewTransform t = transform({100, 50}, {400, 400});
    t.setViewSize({100, 200});
    EXPECT_TRUE(t.isFitted());
    expectRect(t, 0, 75, 100, 50);
}

TEST(ViewTransformTest, ZoomKeepsThePointUnderThePointer)
{
    ViewTransform t = transform({100, 100}, {200, 200});
    const QPointF about(50, 150);
    const QPointF before = t.toPicture(about);
    t.zoomByWheel(120, about);
    EXPECT_FALSE(t.isFitted());
    EXPECT_NEAR(t.zoom(), 2.5, kRounding);
    EXPECT_NEAR(t.toPicture(about).x(), before.x(), kRounding);
    EXPECT_NEAR(t.toPicture(about).y(), before.y(), kRounding);
}

TEST(ViewTransformTest, ZoomOutEndsAtTheFittedPicture)
{
    ViewTransform t = transform({1000, 1000}, {200, 200});
    t.setZoom(3.0, {10, 10});
    for (int i = 0; i < 40; ++i) {
        t.zoomByWheel(-120, {150, 20});
    }
    EXPECT_TRUE(t.isFitted());
    expectRect(t, 0, 0, 200, 200);
}

TEST(ViewTransformTest, APictureSmallerThanTheViewZoomsOutToItsOwnSize)
{
    ViewTransform t = transform({50, 50}, {200, 200});
    for (int i = 0; i < 40; ++i) {
        t.zoomByWheel(-120, {100, 100});
    }
    EXPECT_NEAR(t.zoom(), 1.0, kRounding);
    expectRect(t, 75, 75, 50, 50);
}

TEST(ViewTransformTest, ZoomInEndsAtTheLargestZoom)
{
    ViewTransform t = transform({100, 100}, {200, 200});
    for (int i = 0; i < 60; ++i) {
        t.zoomByWheel(120, {100, 100});
    }
    EXPECT_NEAR(t.zoom(), ViewTransform::kMaxZoom, kRounding);
}

TEST(ViewTransformTest, PanLeavesNoGap)
{
    ViewTransform t = transform({100, 100}, {200, 100});
    t.setZoom(4.0, {100, 50});
    t.pan({10000, 10000});
    EXPECT_NEAR(t.pictureRect().left(), 0, kRounding);
    EXPECT_NEAR(t.pictureRect().top(), 0, kRounding);
    t.pan({-10000, -10000});
    EXPECT_NEAR(t.pictureRect().right(), 200, kRounding);
    EXPECT_NEAR(t.pictureRect().bottom(), 100, kRounding);
}

TEST(ViewTransformTest, PanOfAFittedPictureDoesNothing)
{
    ViewTransform t = transform({100, 50}, {400, 400});
    t.pan({30, -20});
    expectRect(t, 0, 100, 400, 200);
}

TEST(ViewTransformTest, APictureOfTheSameSizeKeepsTheZoomAnotherIsFitted)
{
    ViewTransform t = transform({100, 100}, {200, 200});
    t.setZoom(8.0, {0, 0});
    t.setPictureSize({100, 100});
    EXPECT_NEAR(t.zoom(), 8.0, kRounding);
    t.setPictureSize({100, 101});
    EXPECT_TRUE(t.isFitted());
}

TEST(ViewTransformTest, AChangedViewKeepsZoomAndMiddle)
{
    ViewTransform t = transform({100, 100}, {200, 200});
    t.setZoom(8.0, {100, 100});
    const QPointF middle = t.toPicture({100, 100});
    t.setViewSize({300, 120});
    EXPECT_NEAR(t.zoom(), 8.0, kRounding);
    EXPECT_NEAR(t.toPicture({150, 60}).x(), middle.x(), kRounding);
    EXPECT_NEAR(t.toPicture({150, 60}).y(), middle.y(), kRounding);
}

TEST(ViewTransformTest, PixelsAreThoseUnderThePointAndNoneBesideThePicture)
{
    const ViewTransform t = transform({100, 50}, {400, 400});
    QPoint pixel;
    EXPECT_TRUE(t.pixelAt({0, 100}, pixel));
    EXPECT_EQ(pixel, QPoint(0, 0));
    EXPECT_TRUE(t.pixelAt({399.9, 299.9}, pixel));
    EXPECT_EQ(pixel, QPoint(99, 49));
    EXPECT_FALSE(t.pixelAt({10, 99.9}, pixel));
    EXPECT_EQ(pixel, QPoint(-1, -1));
    EXPECT_FALSE(t.pixelAt({10, 300}, pixel));
}

TEST(ViewTransformTest, FittedNotBelowItsLeastZoomItStartsAtTheTopAndIsPanned)
{
    ViewTransform t = transform({100, 1000}, {300, 200});
    t.setLeastFittedZoom(0.5);
    EXPECT_TRUE(t.isFitted());
    expectRect(t, 125, 0, 50, 500);
    t.pan({0, -120});
    expectRect(t, 125, -120, 50, 500);
    EXPECT_TRUE(t.isFitted());
    t.setViewSize({300, 100});
    expectRect(t, 125, -120, 50, 500);
    t.setViewSize({20, 100});
    EXPECT_NEAR(t.zoom(), 0.2, kRounding) << "no wider than the view";
    t.setViewSize({300, 2000});
    expectRect(t, 50, 0, 200, 2000);
}

TEST(ViewTransformTest, ShowsTheWholePictureBelowItsLeastZoom)
{
    ViewTransform t = transform({100, 1000}, {300, 200});
    t.setLeastFittedZoom(0.5);
    t.showWhole();
    EXPECT_FALSE(t.isFitted());
    expectRect(t, 140, 0, 20, 200);
    t.fit();
    EXPECT_NEAR(t.zoom(), 0.5, kRounding);
    for (int i = 0; i < 40; ++i) {
        t.zoomByWheel(-120, {150, 100});
    }
    expectRect(t, 140, 0, 20, 200);
    t.setLeastFittedZoom(0.0);
    t.showWhole();
    EXPECT_TRUE(t.isFitted());
}

TEST(ViewTransformTest, WithoutAPictureOrAViewNothingIsShown)
{
    ViewTransform t;
    QPoint pixel;
    EXPECT_TRUE(t.pictureRect().isEmpty());
    t.setViewSize({100, 100});
    t.zoomByWheel(120, {1, 1});
    t.pan({5, 5});
    EXPECT_TRUE(t.pictureRect().isEmpty());
    EXPECT_FALSE(t.pixelAt({50, 50}, pixel));
    t.setPictureSize({10, 10});
    t.setViewSize({0, 0});
    EXPECT_FALSE(t.pixelAt({0, 0}, pixel));
    t.setViewSize({20, 20});
    expectRect(t, 0, 0, 20, 20);
}

} // namespace
} // namespace orvwidgets
