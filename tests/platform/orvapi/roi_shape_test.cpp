// SPDX-License-Identifier: GPL-3.0-or-later
// Which pixels belong to a region, and the region's text.
#include "RoiSupport.h"

using namespace roisupport;

namespace {

// One text a row, "#" for a pixel of the region; a pixel that is visited twice is "!".
QStringList drawn(const QString& strShape, long width, long height, double binning = 1.0)
{
    QStringList rows;
    for (long y = 0; y < height; ++y) {
        rows.append(QString(static_cast<int>(width), QLatin1Char('.')));
    }
    ROIShape::visitRuns(regionFrom(strShape), width, height, binning, [&](long row, long first, long end) {
        for (long x = first; x < end; ++x) {
            QCharRef pixel = rows[static_cast<int>(row)][static_cast<int>(x)];
            pixel = pixel == QLatin1Char('.') ? QLatin1Char('#') : QLatin1Char('!');
        }
    });
    return rows;
}

qint64 pixels(const QString& strShape, long side, double binning = 1.0)
{
    return ROIShape::pixelCount(regionFrom(strShape), side, side, binning);
}

// Winding number by the signs of areas; 1000 when the point lies on the outline.
int windingNumber(const QVector<tagROIInfo::Point>& points, double x, double y)
{
    int winding = 0;
    for (int i = 0; i < points.size(); ++i) {
        const auto& a = points[i];
        const auto& b = points[(i + 1) % points.size()];
        const double area = (b.x - a.x) * (y - a.y) - (x - a.x) * (b.y - a.y);
        if (area == 0.0 && std::min(a.x, b.x) <= x && x <= std::max(a.x, b.x) && std::min(a.y, b.y) <= y &&
            y <= std::max(a.y, b.y)) {
            return 1000;
        }
        if (a.y <= y && b.y > y && area > 0.0) {
            ++winding;
        }
        if (a.y > y && b.y <= y && area < 0.0) {
            --winding;
        }
    }
    return winding;
}

} // namespace

TEST(RoiShapeTest, TextsAreReadWhateverTheirCaseAndBlanks)
{
    const tagROIInfo box = regionFrom(" RECT : 1.5, -2 ,3,4e1");
    EXPECT_EQ(box.shape, ROISHAPE_RECTANGLE);
    EXPECT_EQ(box.x, 1.5);
    EXPECT_EQ(box.y, -2.0);
    EXPECT_EQ(box.width, 3.0);
    EXPECT_EQ(box.height, 40.0);
    EXPECT_EQ(regionFrom("ellipse:1,2,3,4").shape, ROISHAPE_ELLIPSE);
    EXPECT_EQ(regionFrom("freehand:0,0,1,0,0,1").shape, ROISHAPE_FREEHAND);
    const tagROIInfo polygon = regionFrom("Polygon:0,0,1,0,0,1,0.25,0.5");
    ASSERT_EQ(polygon.points.size(), 4);
    EXPECT_EQ(polygon.points[3].x, 0.25);
    EXPECT_EQ(polygon.points[3].y, 0.5);
}

TEST(RoiShapeTest, WhatIsNoShapeIsRefusedWithItsReasonAndLeavesTheRegionAlone)
{
    const QList<std::pair<QString, QString>> wrong = {
        {"", "a shape begins with"},
        {"rect", "a shape begins with"},
        {"circle:1,2,3,4", "a shape begins with"},
        {"rect:1,2,3", "a rectangle takes four numbers: x, y, width, height"},
        {"ellipse:1,2,3,4,5", "an ellipse takes four numbers: x, y, width, height"},
        {"rect:1,2,3,", "\"\" is no number"},
        {"rect:", "\"\" is no number"},
        {"rect:1;2;3;4", "\"1;2;3;4\" is no number"},
        {"rect:0x1,2,3,4", "is no number"},
        {"rect:1,2,0,4", "width and height must be above 0"},
        {"ellipse:1,2,3,-4", "width and height must be above 0"},
        {"rect:nan,2,3,4", "a coordinate is too large"},
        {"rect:inf,2,3,4", "a coordinate is too large"},
        {"rect:1e10,2,3,4", "a coordinate is too large"},
        {"polygon:0,0,1,0,0,1e300", "a coordinate is too large"},
        {"polygon:0,0,1,1", "an outline takes three points at least"},
        {"polygon:1,1", "an outline takes three points at least"},
        {"polygon:0,0,1,0,1", "the last point has an x without a y"},
        {"polygon:0,0,1,1,2,2,5,5", "all points lie on a line"},
        {"polygon:3,3,3,3,3,3", "all points lie on a line"},
        {"freehand:0,0,0,5,0,2", "all points lie on a line"},
    };
    for (const auto& [text, reason] : wrong) {
        tagROIInfo region = regionFrom("rect:1,2,3,4");
        QString error;
        EXPECT_FALSE(ROIShape::fromText(text, &region, &error)) << qPrintable(text);
        EXPECT_TRUE(error.contains(reason)) << qPrintable(text + " -> " + error);
        EXPECT_EQ(ROIShape::toText(region), "rect:1,2,3,4");
    }
}

TEST(RoiShapeTest, AnOutlineOfTooManyPointsIsRefused)
{
    QString text = "freehand:0,0";
    for (int i = 1; i < ROIShape::kMaximumPoints; ++i) {
        text += QStringLiteral(",%1,%2").arg(i).arg(i % 2);
    }
    EXPECT_EQ(regionFrom(text).points.size(), ROIShape::kMaximumPoints);
    tagROIInfo region;
    QString error;
    EXPECT_FALSE(ROIShape::fromText(text + ",7,7", &region, &error));
    EXPECT_EQ(error, "an outline has 10000 points at most");
}

RC_GTEST_PROP(RoiShapeTest, AnyShapeSurvivesItsText, ())
{
    const tagROIInfo region = *anyShape();
    tagROIInfo again;
    QString error;
    RC_ASSERT(ROIShape::fromText(ROIShape::toText(region), &again, &error));
    RC_ASSERT(again.shape == region.shape);
    RC_ASSERT(again.x == region.x && again.y == region.y);
    RC_ASSERT(again.width == region.width && again.height == region.height);
    RC_ASSERT(again.points.size() == region.points.size());
    for (int i = 0; i < region.points.size(); ++i) {
        RC_ASSERT(again.points[i].x == region.points[i].x && again.points[i].y == region.points[i].y);
    }
}

TEST(RoiShapeTest, ARectangleHoldsThePixelsWhoseCentresItHolds)
{
    EXPECT_EQ(drawn("rect:1,1,2,2", 4, 4), (QStringList{"....", ".##.", ".##.", "...."}));
    EXPECT_EQ(drawn("rect:1.4,1.4,1.2,0.2", 4, 3), (QStringList{"....", ".##.", "...."}));
    EXPECT_EQ(pixels("rect:0.6,0,0.3,4", 4), 0);
}

TEST(RoiShapeTest, ACentreOnTheUpperOrLeftEdgeIsInsideOnTheOthersOutside)
{
    EXPECT_EQ(drawn("rect:0.5,0.5,1,1", 3, 3), (QStringList{"#..", "...", "..."}));
    EXPECT_EQ(drawn("polygon:0.5,0.5,1.5,0.5,1.5,1.5,0.5,1.5", 3, 3), (QStringList{"#..", "...", "..."}));
}

TEST(RoiShapeTest, WhatLiesBeyondTheImageDoesNotCount)
{
    EXPECT_EQ(drawn("rect:-5,-5,6,7", 3, 3), (QStringList{"#..", "#..", "..."}));
    EXPECT_EQ(drawn("ellipse:2,2,1e6,1e6", 3, 3), (QStringList{"...", "...", "..."}));
    EXPECT_EQ(drawn("polygon:1,-9,90,-9,90,90,1,90", 3, 2), (QStringList{".##", ".##"}));
    for (const char* outside : {"rect:3,0,5,5", "rect:-9,0,9,3", "ellipse:0,3,4,4", "polygon:5,5,9,5,5,9"}) {
        EXPECT_EQ(pixels(outside, 3), 0) << outside;
    }
    EXPECT_EQ(pixels("rect:-1e9,-1e9,1e9,1e9", 3), 0);
    EXPECT_EQ(ROIShape::pixelCount(regionFrom("rect:0,0,9,9"), 0, 0, 1.0), 0);
}

TEST(RoiShapeTest, AnEllipseHoldsWhatLiesWithinItsRectangle)
{
    EXPECT_EQ(drawn("ellipse:0,0,4,4", 4, 4), (QStringList{".##.", "####", "####", ".##."}));
    EXPECT_EQ(drawn("ellipse:1,1,1,1", 3, 3), (QStringList{"...", ".#.", "..."}));
    EXPECT_EQ(drawn("ellipse:0,1,5,1", 5, 3), (QStringList{".....", "#####", "....."}));
    const double area = static_cast<double>(pixels("ellipse:10.3,20.7,400,300", 512));
    EXPECT_NEAR(area, M_PI * 200.0 * 150.0, 0.002 * area);
}

TEST(RoiShapeTest, APolygonHoldsTheSamePixelsInEitherDirection)
{
    const QStringList triangle{"###.", "##..", "#...", "...."};
    EXPECT_EQ(drawn("polygon:0,0,4,0,0,4", 4, 4), triangle);
    EXPECT_EQ(drawn("polygon:0,4,4,0,0,0", 4, 4), triangle);
    EXPECT_EQ(drawn("freehand:4,0,0,4,0,0,4,0", 4, 4), triangle); // closed by hand
    EXPECT_EQ(drawn("polygon:0,0,4,0,4,4,2,1,0,4", 4, 4), (QStringList{"####", "####", "#..#", "...."}));
}

// Both loops of an eight run around their inside, and an outline that is drawn over itself still holds what it runs
// around.
TEST(RoiShapeTest, AllThatACrossingOutlineRunsAroundIsInside)
{
    EXPECT_EQ(drawn("freehand:0,0,4,4,4,0,0,4", 4, 4), (QStringList{"...#", "#.##", "#.##", "...#"}));
    EXPECT_EQ(pixels("freehand:0,0,4,0,4,4,0,4,0,0,4,0,4,4,0,4", 4), 16);
    EXPECT_EQ(pixels("freehand:5,0,8,10,0,4,10,4,2,10", 10),
              pixels("polygon:5,0,6.2,4,10,4,6.85,6.4,8,10,5,7.75,2,10,3.15,6.4,0,4,3.8,4", 10));
}

TEST(RoiShapeTest, ARegionKeepsItsPlaceAtAnotherBinning)
{
    EXPECT_EQ(drawn("rect:4,8,8,4", 16, 16, 1.0).at(8), "....########....");
    EXPECT_EQ(drawn("rect:4,8,8,4", 8, 8, 2.0).at(4), "..####..");
    EXPECT_EQ(drawn("rect:4,8,8,4", 4, 4, 4.0).at(2), ".##.");
    EXPECT_EQ(pixels("rect:4,8,8,4", 16, 1.0), 32);
    EXPECT_EQ(pixels("rect:4,8,8,4", 8, 2.0) * 4, 32);
    EXPECT_EQ(pixels("rect:4,8,8,4", 4, 4.0) * 16, 32);
    EXPECT_EQ(pixels("rect:4,8,8,4", 32, 0.5), 128);
    // Too small for a centre.
    EXPECT_EQ(pixels("rect:0,0,1,1", 4, 4.0), 0);
}

TEST(RoiShapeTest, BoundsAreTheRectangleAround)
{
    const ROIShape::Bounds bounds = ROIShape::boundsOf(regionFrom("polygon:3,9,-1,4,8,5"));
    EXPECT_EQ(bounds.left, -1.0);
    EXPECT_EQ(bounds.top, 4.0);
    EXPECT_EQ(bounds.right, 8.0);
    EXPECT_EQ(bounds.bottom, 9.0);
    EXPECT_EQ(ROIShape::boundsOf(regionFrom("ellipse:1,2,3,4")).bottom, 6.0);
}

RC_GTEST_PROP(RoiShapeTest, AnyOutlineHoldsTheCentresItWindsAround, ())
{
    constexpr int side = 12;
    tagROIInfo region;
    region.shape = ROISHAPE_FREEHAND;
    const auto coordinate = rc::gen::map(rc::gen::inRange(-4, 2 * side + 4), [](int n) { return 0.5 * n; });
    for (const auto& [x, y] :
         *rc::gen::container<std::vector<std::pair<double, double>>>(rc::gen::pair(coordinate, coordinate))) {
        region.points.append({x, y});
    }
    RC_PRE(ROIShape::reasonAgainst(region).isEmpty());
    std::vector<int> visits(side * side, 0);
    ROIShape::visitRuns(region, side, side, 1.0, [&](long row, long first, long end) {
        for (long x = first; x < end; ++x) {
            ++visits[static_cast<std::size_t>(row * side + x)];
        }
    });
    for (int i = 0; i < side * side; ++i) {
        const int winding = windingNumber(region.points, i % side + 0.5, i / side + 0.5);
        if (winding != 1000) {
            RC_ASSERT(visits[static_cast<std::size_t>(i)] == (winding != 0 ? 1 : 0));
        } else {
            RC_ASSERT(visits[static_cast<std::size_t>(i)] <= 1);
        }
    }
}

RC_GTEST_PROP(RoiShapeTest, RegionsSideBySideShareNoPixelAndMissNone, ())
{
    constexpr int side = 16;
    const double binning = *rc::gen::element(1.0, 2.0, 3.0);
    const double length = side * binning;
    // A broken line from the upper edge to the lower one parts the image in two.
    const auto bends = *rc::gen::container<std::vector<std::pair<int, int>>>(
        rc::gen::pair(rc::gen::inRange(0, 700), rc::gen::inRange(0, 700)));
    QVector<tagROIInfo::Point> line{{length / 3.0, 0.0}};
    for (const auto& [x, y] : bends) {
        line.append({length * x / 700.0, length * y / 700.0});
    }
    std::sort(line.begin(), line.end(), [](const auto& a, const auto& b) { return a.y < b.y; });
    line.append({length / 7.0, length});
    std::vector<int> visits(side * side, 0);
    for (const double edge : {0.0, length}) {
        tagROIInfo part;
        part.shape = ROISHAPE_POLYGON;
        part.points = line;
        part.points.append({edge, length});
        part.points.append({edge, 0.0});
        ROIShape::visitRuns(part, side, side, binning, [&](long row, long first, long end) {
            for (long x = first; x < end; ++x) {
                ++visits[static_cast<std::size_t>(row * side + x)];
            }
        });
    }
    for (const int count : visits) {
        RC_ASSERT(count == 1);
    }
}
