// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/ROIShape.h"

#include "platform/orvutils/NumberText.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <vector>

namespace ROIShape {

namespace {

using Point = tagROIInfo::Point;

// A region within a row, from its left end to its right one; the right one is outside.
struct Interval
{
    double left;
    double right;
};

// Where an outline passes a row: +1 on its way down, -1 on its way up.
struct Crossing
{
    double x;
    int direction;
};

bool isOutline(const tagROIInfo& info)
{
    return info.shape == ROISHAPE_POLYGON || info.shape == ROISHAPE_FREEHAND;
}

QString kindText(tag_eroishape eShape)
{
    switch (eShape) {
    case ROISHAPE_RECTANGLE:
        return QStringLiteral("rect");
    case ROISHAPE_ELLIPSE:
        return QStringLiteral("ellipse");
    case ROISHAPE_POLYGON:
        return QStringLiteral("polygon");
    case ROISHAPE_FREEHAND:
        return QStringLiteral("freehand");
    }
    return QString();
}

bool shapeOf(const QString& strKind, tag_eroishape* pShape)
{
    for (const tag_eroishape shape : {ROISHAPE_RECTANGLE, ROISHAPE_ELLIPSE, ROISHAPE_POLYGON, ROISHAPE_FREEHAND}) {
        if (strKind.compare(kindText(shape), Qt::CaseInsensitive) != 0) {
            continue;
        }
        *pShape = shape;
        return true;
    }
    return false;
}

bool readNumbers(const QString& strList, std::vector<double>* pNumbers, QString* pError)
{
    const auto texts = strList.splitRef(QLatin1Char(','));
    for (const auto& text : texts) {
        bool ok = false;
        const double number = text.trimmed().toDouble(&ok); // of the C locale
        if (!ok) {
            *pError = QStringLiteral("\"%1\" is no number").arg(text.trimmed().left(20));
            return false;
        }
        pNumbers->push_back(number);
    }
    return true;
}

bool takeBox(const std::vector<double>& numbers, tagROIInfo* pInfo, QString* pError)
{
    if (numbers.size() != 4) {
        *pError =
            QStringLiteral("%1 takes four numbers: x, y, width, height")
                .arg(pInfo->shape == ROISHAPE_RECTANGLE ? QStringLiteral("a rectangle") : QStringLiteral("an ellipse"));
        return false;
    }
    pInfo->x = numbers[0];
    pInfo->y = numbers[1];
    pInfo->width = numbers[2];
    pInfo->height = numbers[3];
    return true;
}

bool takePoints(const std::vector<double>& numbers, tagROIInfo* pInfo, QString* pError)
{
    if (numbers.size() % 2 != 0) {
        *pError = QStringLiteral("the last point has an x without a y");
        return false;
    }
    for (std::size_t i = 0; i < numbers.size(); i += 2) {
        pInfo->points.append({numbers[i], numbers[i + 1]});
    }
    return true;
}

bool isFit(double dCoordinate)
{
    return std::isfinite(dCoordinate) && std::abs(dCoordinate) <= kFarthest;
}

double cross(const Point& o, const Point& a, const Point& b)
{
    return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

bool liesOnALine(const QVector<Point>& points)
{
    const Point& first = points.first();
    const auto* other =
        std::find_if(points.begin(), points.end(), [&](const Point& p) { return p.x != first.x || p.y != first.y; });
    return std::all_of(other, points.end(), [&](const Point& p) { return cross(first, *other, p) == 0.0; });
}

QString reasonAgainstBox(const tagROIInfo& info)
{
    if (!isFit(info.x) || !isFit(info.y) || !isFit(info.width) || !isFit(info.height)) {
        return QStringLiteral("a coordinate is too large");
    }
    return info.width > 0.0 && info.height > 0.0 ? QString() : QStringLiteral("width and height must be above 0");
}

QString reasonAgainstOutline(const tagROIInfo& info)
{
    if (info.points.size() < 3) {
        return QStringLiteral("an outline takes three points at least");
    }
    if (info.points.size() > kMaximumPoints) {
        return QStringLiteral("an outline has %1 points at most").arg(kMaximumPoints);
    }
    if (!std::all_of(info.points.begin(), info.points.end(), [](const Point& p) { return isFit(p.x) && isFit(p.y); })) {
        return QStringLiteral("a coordinate is too large");
    }
    return liesOnALine(info.points) ? QStringLiteral("all points lie on a line") : QString();
}

// First pixel of `count` with its centre at or behind the coordinate; `count` when there is none.
long firstPixel(double dCoordinate, double binning, long count)
{
    const double pixel = std::ceil(dCoordinate / binning - 0.5);
    return static_cast<long>(std::clamp(pixel, 0.0, static_cast<double>(count)));
}

void ellipseIntervals(const tagROIInfo& info, double y, std::vector<Interval>& intervals)
{
    const double t = (y - (info.y + 0.5 * info.height)) / (0.5 * info.height);
    if (std::abs(t) >= 1.0) {
        return;
    }
    const double half = 0.5 * info.width * std::sqrt(1.0 - t * t);
    const double middle = info.x + 0.5 * info.width;
    intervals.push_back({middle - half, middle + half});
}

// The winding number of the outline along the row. Each edge is evaluated from its upper end, whatever its direction,
// so that two outlines that share an edge share its crossings to the bit.
void outlineIntervals(const QVector<Point>& points, double y, std::vector<Crossing>& crossings,
                      std::vector<Interval>& intervals)
{
    crossings.clear();
    const Point* from = &points.last();
    for (const Point& to : points) {
        if ((from->y <= y) != (to.y <= y)) {
            const bool down = from->y < to.y;
            const Point& upper = down ? *from : to;
            const Point& lower = down ? to : *from;
            const double x = upper.x + (y - upper.y) / (lower.y - upper.y) * (lower.x - upper.x);
            crossings.push_back({x, down ? 1 : -1});
        }
        from = &to;
    }
    std::sort(crossings.begin(), crossings.end(), [](const Crossing& a, const Crossing& b) { return a.x < b.x; });
    int winding = 0;
    for (const Crossing& crossing : crossings) {
        const int before = winding;
        winding += crossing.direction;
        if (before == 0) {
            intervals.push_back({crossing.x, crossing.x});
        } else if (winding == 0) {
            intervals.back().right = crossing.x;
        }
    }
}

} // namespace

QString toText(const tagROIInfo& info)
{
    QStringList texts;
    const auto append = [&texts](double dNumber) { texts.append(orv::shortestText(dNumber)); };
    if (isOutline(info)) {
        for (const Point& point : info.points) {
            append(point.x);
            append(point.y);
        }
    } else {
        for (const double number : {info.x, info.y, info.width, info.height}) {
            append(number);
        }
    }
    return kindText(info.shape) + QLatin1Char(':') + texts.join(QLatin1Char(','));
}

bool fromText(const QString& strText, tagROIInfo* pInfo, QString* pError)
{
    const int colon = strText.indexOf(QLatin1Char(':'));
    tagROIInfo read = *pInfo;
    if (colon < 0 || !shapeOf(strText.left(colon).trimmed(), &read.shape)) {
        *pError = QStringLiteral("a shape begins with \"rect:\", \"ellipse:\", \"polygon:\" or \"freehand:\"");
        return false;
    }
    read.x = read.y = read.width = read.height = 0.0;
    read.points.clear();
    std::vector<double> numbers;
    if (!readNumbers(strText.mid(colon + 1), &numbers, pError)) {
        return false;
    }
    if (!(isOutline(read) ? takePoints(numbers, &read, pError) : takeBox(numbers, &read, pError))) {
        return false;
    }
    *pError = reasonAgainst(read);
    if (!pError->isEmpty()) {
        return false;
    }
    *pInfo = read;
    return true;
}

QString reasonAgainst(const tagROIInfo& info)
{
    return isOutline(info) ? reasonAgainstOutline(info) : reasonAgainstBox(info);
}

Bounds boundsOf(const tagROIInfo& info)
{
    if (!isOutline(info)) {
        return {info.x, info.y, info.x + info.width, info.y + info.height};
    }
    if (info.points.isEmpty()) {
        return {};
    }
    const Point& first = info.points.first();
    Bounds bounds{first.x, first.y, first.x, first.y};
    for (const Point& point : info.points) {
        bounds.left = std::min(bounds.left, point.x);
        bounds.top = std::min(bounds.top, point.y);
        bounds.right = std::max(bounds.right, point.x);
        bounds.bottom = std::max(bounds.bottom, point.y);
    }
    return bounds;
}

void visitRuns(const tagROIInfo& info, long width, long height, double binning, const RunVisitor& visit)
{
    const Bounds bounds = boundsOf(info);
    const long end = firstPixel(bounds.bottom, binning, height);
    std::vector<Interval> intervals;
    std::vector<Crossing> crossings;
    for (long row = firstPixel(bounds.top, binning, height); row < end; ++row) {
        const double y = (static_cast<double>(row) + 0.5) * binning;
        intervals.clear();
        if (isOutline(info)) {
            outlineIntervals(info.points, y, crossings, intervals);
        } else if (info.shape == ROISHAPE_ELLIPSE) {
            ellipseIntervals(info, y, intervals);
        } else {
            intervals.push_back({bounds.left, bounds.right});
        }
        for (const Interval& interval : intervals) {
            const long first = firstPixel(interval.left, binning, width);
            const long last = firstPixel(interval.right, binning, width);
            if (first < last) {
                visit(row, first, last);
            }
        }
    }
}

qint64 pixelCount(const tagROIInfo& info, long width, long height, double binning)
{
    qint64 count = 0;
    visitRuns(info, width, height, binning, [&count](long, long first, long end) { count += end - first; });
    return count;
}

} // namespace ROIShape
