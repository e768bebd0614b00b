// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/drawnMask.h"

#include "windows/MaskPicture.h"

#include <rapidcheck/gtest.h>

#include <algorithm>
#include <limits>

namespace {

DrawnShape crop(int x1, int y1, int x2, int y2, float fImageWidth, float fImageHeight)
{
    DrawnShape shape;
    shape.x1 = x1;
    shape.y1 = y1;
    shape.x2 = x2;
    shape.y2 = y2;
    shape.fImageWidth = fImageWidth;
    shape.fImageHeight = fImageHeight;
    return shape;
}

DrawnShape ellipse(DrawnShape shape)
{
    shape.bEllipse = true;
    return shape;
}

DrawnShape withLegend(DrawnShape shape)
{
    shape.bLegend = true;
    return shape;
}

MaskPicture drawn(long lWidth, long lHeight, const DrawnShape& shape)
{
    CILImage mask;
    EXPECT_TRUE(makeDrawnMask(lWidth, lHeight, 1.0F, shape, mask));
    return pictureOf(mask);
}

TEST(DrawnMaskTest, StrictBoundsAndRowsFromTheBottom)
{
    // Columns 1 < c < 6, rows 6 - 1 - 3 < r < 6 - 1.
    const MaskPicture expected{
        "........", //
        "........", //
        "........", //
        "..####..", //
        "..####..", //
        "........",
    };
    EXPECT_EQ(drawn(8, 6, crop(1, 1, 6, 4, 8.0F, 6.0F)), expected);
    EXPECT_EQ(drawn(8, 6, crop(6, 4, 1, 1, 8.0F, 6.0F)), expected); // drawn from the other corner
    EXPECT_EQ(drawn(8, 6, crop(6, 1, 1, 4, 8.0F, 6.0F)), expected);
}

TEST(DrawnMaskTest, ZeroOfX2OrY1LeavesTheMaskEmptyButNotOfX1OrY2)
{
    const MaskPicture expected{
        "........", //
        "........", //
        "........", //
        ".#####..", //
        ".#####..", //
        ".#####..",
    };
    EXPECT_EQ(drawn(8, 6, crop(0, 4, 6, 0, 8.0F, 6.0F)), expected);
    EXPECT_EQ(drawn(8, 6, crop(6, 4, 0, 0, 8.0F, 6.0F)), blankPicture(8, 6));
    EXPECT_EQ(drawn(8, 6, crop(0, 0, 6, 4, 8.0F, 6.0F)), blankPicture(8, 6));
    EXPECT_EQ(drawn(8, 6, DrawnShape()), blankPicture(8, 6));
}

TEST(DrawnMaskTest, CropWithoutWidthOrHeightIsEmpty)
{
    for (const bool bEllipse : {false, true}) {
        DrawnShape flat = crop(3, 1, 3, 5, 8.0F, 6.0F);
        flat.bEllipse = bEllipse;
        EXPECT_EQ(drawn(8, 6, flat), blankPicture(8, 6));
        flat = crop(1, 3, 7, 3, 8.0F, 6.0F);
        flat.bEllipse = bEllipse;
        EXPECT_EQ(drawn(8, 6, flat), blankPicture(8, 6));
        // One pixel wide on the image: no column lies strictly between. Two: one does.
        flat = crop(3, 1, 4, 5, 8.0F, 6.0F);
        flat.bEllipse = bEllipse;
        EXPECT_EQ(drawn(8, 6, flat), blankPicture(8, 6));
    }
    EXPECT_EQ(drawn(4, 4, crop(1, 1, 3, 3, 4.0F, 4.0F)), (MaskPicture{"....", "....", "..#.", "...."}));
}

TEST(DrawnMaskTest, ViewPixelsComeToTheImageInIntegers)
{
    // 10.9 view pixels count as 10: x 3 to 24 / 10 = 2, 9 to 72 / 10 = 7; y 2 to 2 * 6 / 12 = 1, 11 to 5.
    const MaskPicture expected{
        "........", //
        "........", //
        "...####.", //
        "...####.", //
        "...####.", //
        "........",
    };
    EXPECT_EQ(drawn(8, 6, crop(3, 2, 9, 11, 10.9F, 12.0F)), expected);
}

TEST(DrawnMaskTest, LegendWidensTheDivisorOfBothAxes)
{
    // 16 and 5 view pixels count as 41 and 30, the image's own size.
    EXPECT_EQ(drawn(41, 30, withLegend(crop(4, 6, 20, 25, 16.7F, 5.2F))),
              drawn(41, 30, crop(4, 6, 20, 25, 41.0F, 30.0F)));
    EXPECT_NE(drawn(41, 30, crop(4, 6, 20, 25, 16.7F, 5.2F)), drawn(41, 30, crop(4, 6, 20, 25, 41.0F, 30.0F)));
}

TEST(DrawnMaskTest, ImageWithoutADisplayedSizeIsTakenAsNothingDrawn)
{
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    for (const float side : {0.0F, 0.9F, -0.9F, kNaN, kInfinity, -kInfinity, 1e30F}) {
        EXPECT_EQ(drawn(8, 6, crop(1, 1, 6, 4, side, 6.0F)), blankPicture(8, 6)) << side;
        EXPECT_EQ(drawn(8, 6, crop(1, 1, 6, 4, 8.0F, side)), blankPicture(8, 6)) << side;
        EXPECT_EQ(drawn(8, 6, ellipse(crop(1, 1, 6, 4, side, side))), blankPicture(8, 6)) << side;
    }
    EXPECT_EQ(drawn(8, 6, withLegend(crop(1, 1, 6, 4, -25.0F, -25.0F))), blankPicture(8, 6));
}

TEST(DrawnMaskTest, CropBeyondTheImageIsCutOff)
{
    MaskPicture all = blankPicture(8, 6);
    draw(all, 0, 0, 8, 6);
    EXPECT_EQ(drawn(8, 6, crop(-100, -100, 100, 100, 8.0F, 6.0F)), all);
    EXPECT_EQ(drawn(8, 6, crop(20, 20, 100, 100, 8.0F, 6.0F)), blankPicture(8, 6));
    constexpr int kMax = std::numeric_limits<int>::max();
    EXPECT_EQ(drawn(8, 6, crop(-kMax, -kMax, kMax, kMax, 8.0F, 6.0F)), all);
    // The whole of the view, drawn from corner to corner, leaves out the first column and the first row.
    EXPECT_EQ(drawn(4, 3, crop(0, 3, 4, 0, 4.0F, 3.0F)), (MaskPicture{"....", ".###", ".###"}));
}

TEST(DrawnMaskTest, EllipseAgainstTheHalfAxesOfTheRectangle)
{
    // Half axes 5 and 3 about column 6 and height 4.
    const MaskPicture expected{
        "............", //
        "............", //
        "...#######..", //
        "..#########.", //
        "..#########.", //
        "..#########.", //
        "...#######..", //
        "............",
    };
    EXPECT_EQ(drawn(12, 8, ellipse(crop(1, 1, 11, 7, 12.0F, 8.0F))), expected);
}

TEST(DrawnMaskTest, PointsOnTheEllipseAreInside)
{
    // A circle of radius 5 passes through (3, 4) and (4, 3).
    const MaskPicture picture = drawn(12, 12, ellipse(crop(1, 1, 11, 11, 12.0F, 12.0F)));
    EXPECT_EQ(picture[2][9], '#');
    EXPECT_EQ(picture[3][10], '#');
    EXPECT_EQ(picture[2][10], '.');
}

TEST(DrawnMaskTest, OddSidesHaveTheirCentreBetweenPixels)
{
    // Half axes 4.5 about column 5.5 and height 5.5; the corners are 3.5 off in both directions.
    const MaskPicture expected{
        "............", //
        "............", //
        "...######...", //
        "..########..", //
        "..########..", //
        "..########..", //
        "..########..", //
        "..########..", //
        "..########..", //
        "...######...", //
        "............",
    };
    EXPECT_EQ(drawn(12, 11, ellipse(crop(1, 1, 10, 10, 12.0F, 11.0F))), expected);
}

TEST(DrawnMaskTest, BytesWithTheBinningAndSizeOfThePhotograph)
{
    CILImage photo = plainImage(ORVTYPE_FLOAT, 9, 7, 3.0);
    photo.m_fBinning = 8.0F;
    CILImage mask = plainImage(ORVTYPE_DOUBLE, 3, 3, 9.0);
    ASSERT_TRUE(makeDrawnMask(photo, crop(1, 1, 8, 6, 9.0F, 7.0F), mask));
    EXPECT_EQ(mask.dataType(), ORVTYPE_BYTE);
    EXPECT_EQ(mask.m_fBinning, 8.0F);
    EXPECT_EQ(mask.m_lWidth, 9);
    EXPECT_EQ(mask.m_lHeight, 7);
    EXPECT_EQ(mask.getMin(), 0.0);
    EXPECT_EQ(mask.getMax(), 1.0);
    EXPECT_EQ(photo.value(0), 3.0);
}

TEST(DrawnMaskTest, EmptyPhotographGivesNoMask)
{
    CILImage mask = plainImage(ORVTYPE_BYTE, 4, 4, 1.0);
    EXPECT_FALSE(makeDrawnMask(CILImage(), crop(1, 1, 6, 4, 8.0F, 6.0F), mask));
    EXPECT_TRUE(mask.isEmpty());
}

TEST(DrawnMaskTest, OnePixelPhotograph)
{
    EXPECT_EQ(drawn(1, 1, crop(-1, -1, 2, 2, 1.0F, 1.0F)), (MaskPicture{"#"}));
    EXPECT_EQ(drawn(1, 1, crop(0, 1, 1, 0, 1.0F, 1.0F)), (MaskPicture{"."}));
}

// Every pixel on its own, as the rule says it.
RC_GTEST_PROP(DrawnMaskLaw, PixelByPixel, ())
{
    const long W = *rc::gen::inRange(1, 30);
    const long H = *rc::gen::inRange(1, 30);
    const auto corner = rc::gen::inRange(-20, 120);
    DrawnShape shape = crop(*corner, *corner, *corner, *corner, static_cast<float>(*rc::gen::inRange(1, 100)),
                            static_cast<float>(*rc::gen::inRange(1, 100)));
    shape.bEllipse = *rc::gen::arbitrary<bool>();
    shape.bLegend = *rc::gen::arbitrary<bool>();

    long left = 0;
    long top = 0;
    long width = 0;
    long height = 0;
    if (shape.x2 != 0 && shape.y1 != 0) {
        const long more = shape.bLegend ? 25 : 0;
        const long across = static_cast<long>(shape.fImageWidth) + more;
        const long down = static_cast<long>(shape.fImageHeight) + more;
        if (shape.x1 != shape.x2) {
            left = std::min(shape.x1 * W / across, shape.x2 * W / across);
            width = std::max(shape.x1 * W / across, shape.x2 * W / across) - left;
        }
        if (shape.y1 != shape.y2) {
            top = std::min(shape.y1 * H / down, shape.y2 * H / down);
            height = std::max(shape.y1 * H / down, shape.y2 * H / down) - top;
        }
    }
    const double a = static_cast<double>(width) / 2;
    const double b = static_cast<double>(height) / 2;
    const double cx = static_cast<double>(left) + a;
    const double cy = static_cast<double>(top) + b;
    MaskPicture expected = blankPicture(W, H);
    overRectangle(0, 0, W, H, [&](long c, long r) {
        const double y = static_cast<double>(H - r) - cy;
        const double x = static_cast<double>(c) - cx;
        if (left < c && c < left + width && r < H - top && r > H - top - height &&
            (!shape.bEllipse || y * y / (b * b) + x * x / (a * a) <= 1.0)) {
            draw(expected, c, r, 1, 1);
        }
    });
    RC_ASSERT(drawn(W, H, shape) == expected);
}

TEST(ShapeOverPixelsTest, RectanglesAtEveryBorder)
{
    MaskPicture all = blankPicture(5, 4);
    draw(all, 0, 0, 5, 4);
    EXPECT_EQ(drawn(5, 4, shapeOverPixels(5, 4, 0, 0, 5, 4, false)), all);
    EXPECT_EQ(drawn(5, 4, shapeOverPixels(5, 4, 0, 0, 1, 1, false)), (MaskPicture{"#....", ".....", ".....", "....."}));
    EXPECT_EQ(drawn(5, 4, shapeOverPixels(5, 4, 3, 2, 2, 2, false)), (MaskPicture{".....", ".....", "...##", "...##"}));
    EXPECT_EQ(drawn(5, 4, shapeOverPixels(5, 4, 1, 1, 0, 2, false)), blankPicture(5, 4));
    EXPECT_EQ(drawn(5, 4, shapeOverPixels(5, 4, 1, 1, 2, -1, false)), blankPicture(5, 4));
}

TEST(ShapeOverPixelsTest, EllipseIsCentredInItsPixels)
{
    EXPECT_EQ(drawn(5, 3, shapeOverPixels(5, 3, 2, 1, 1, 1, true)), (MaskPicture{".....", "..#..", "....."}));
    const MaskPicture expected{
        "..........", //
        "..######..", //
        ".########.", //
        ".########.", //
        ".########.", //
        ".########.", //
        "..######..", //
        "..........",
    };
    const MaskPicture picture = drawn(10, 8, shapeOverPixels(10, 8, 1, 1, 8, 6, true));
    EXPECT_EQ(picture, expected);
}

RC_GTEST_PROP(ShapeOverPixelsLaw, RectangleCoversItsPixelsAndTheEllipseIsSymmetricInside, ())
{
    const int W = *rc::gen::inRange(1, 25);
    const int H = *rc::gen::inRange(1, 25);
    const int left = *rc::gen::inRange(0, W);
    const int top = *rc::gen::inRange(0, H);
    const int width = *rc::gen::inRange(1, W - left + 1);
    const int height = *rc::gen::inRange(1, H - top + 1);
    MaskPicture expected = blankPicture(W, H);
    draw(expected, left, top, width, height);
    RC_ASSERT(drawn(W, H, shapeOverPixels(W, H, left, top, width, height, false)) == expected);

    const MaskPicture round = drawn(W, H, shapeOverPixels(W, H, left, top, width, height, true));
    overRectangle(0, 0, W, H, [&](long x, long y) {
        const char mark = round[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
        if (expected[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] == '.') {
            RC_ASSERT(mark == '.');
        } else {
            RC_ASSERT(mark == round[static_cast<std::size_t>(2 * top + height - 1 - y)]
                                   [static_cast<std::size_t>(2 * left + width - 1 - x)]);
        }
    });
    // The middle of each side is inside.
    RC_ASSERT(round[static_cast<std::size_t>(top + height / 2)][static_cast<std::size_t>(left)] == '#');
    RC_ASSERT(round[static_cast<std::size_t>(top)][static_cast<std::size_t>(left + width / 2)] == '#');
}

} // namespace
