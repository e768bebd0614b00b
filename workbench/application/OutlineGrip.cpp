// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/OutlineGrip.h"

#include "platform/orvapi/ROIShape.h"
#include "platform/orvwidgets/CropGeometry.h"

#include <algorithm>
#include <cmath>

using orvwidgets::CropGeometry;

namespace {

constexpr int kMostHandles = 200;

// In pixels of the sensor: `pixels` of the image, or fewer so that [dFirst, dLast] stays on [0, dSide].
double steps(double pixels, double binning, double dFirst, double dLast, double dSide)
{
    const double least = std::ceil(-dFirst / binning);
    const double most = std::floor((dSide - dLast) / binning);
    return std::clamp(pixels, std::min(least, 0.0), std::max(most, 0.0)) * binning;
}

double snapped(double at, double from, double length, double sensor, double binning)
{
    const double pixels = std::round(sensor / binning);
    return std::clamp(std::round((at - from) / length * pixels), 0.0, pixels) * binning;
}

} // namespace

QPolygonF OutlineGrip::placed(const tagROIInfo& region, const QSizeF& sensor, const QRectF& shown)
{
    QPolygonF outline;
    outline.reserve(region.points.size());
    for (const tagROIInfo::Point& point : region.points) {
        outline << QPointF(shown.left() + point.x / sensor.width() * shown.width(),
                           shown.top() + point.y / sensor.height() * shown.height());
    }
    return outline;
}

bool OutlineGrip::hasHandles(const tagROIInfo& region)
{
    return region.shape == ROISHAPE_POLYGON && region.points.size() <= kMostHandles;
}

bool OutlineGrip::isOn(const QPolygonF& outline, bool bHandles, const QPointF& point, int* pCorner)
{
    *pCorner = -1;
    // The last one lies above.
    for (int i = outline.size() - 1; bHandles && i >= 0; --i) {
        if (CropGeometry::handle(outline.at(i)).contains(point)) {
            *pCorner = i;
            return true;
        }
    }
    return outline.containsPoint(point, Qt::WindingFill);
}

tagROIInfo OutlineGrip::shifted(const tagROIInfo& region, const QPoint& pixels, const Image& image)
{
    const ROIShape::Bounds bounds = ROIShape::boundsOf(region);
    const double x = steps(pixels.x(), image.binning, bounds.left, bounds.right, image.sensor.width());
    const double y = steps(pixels.y(), image.binning, bounds.top, bounds.bottom, image.sensor.height());
    tagROIInfo moved = region;
    for (tagROIInfo::Point& point : moved.points) {
        point.x += x;
        point.y += y;
    }
    return moved;
}

bool OutlineGrip::press(const tagROIInfo& region, const QPointF& point, const QRectF& shown, const Image& image)
{
    giveUp();
    if (shown.isEmpty() || !isOn(placed(region, image.sensor, shown), hasHandles(region), point, &m_nCorner)) {
        return false;
    }
    m_bHeld = true;
    m_pressed = point;
    m_at = point;
    return true;
}

void OutlineGrip::dragTo(const QPointF& point)
{
    if (!m_bHeld) {
        return;
    }
    m_at = point;
    const QPointF delta = m_at - m_pressed;
    m_bDragged = m_bDragged || std::max(std::abs(delta.x()), std::abs(delta.y())) > CropGeometry::kClickSlack;
}

bool OutlineGrip::release()
{
    m_bHeld = false;
    return m_bDragged;
}

tagROIInfo OutlineGrip::applied(tagROIInfo region, const QRectF& shown, const Image& image) const
{
    if (!m_bDragged || shown.isEmpty()) {
        return region;
    }
    if (m_nCorner >= 0 && m_nCorner < region.points.size()) {
        region.points[m_nCorner] = {
            snapped(m_at.x(), shown.left(), shown.width(), image.sensor.width(), image.binning),
            snapped(m_at.y(), shown.top(), shown.height(), image.sensor.height(), image.binning)};
        return region;
    }
    const QSizeF pixels = image.sensor / image.binning;
    const QPointF delta = m_at - m_pressed;
    return shifted(region,
                   QPoint(qRound(delta.x() / shown.width() * pixels.width()),
                          qRound(delta.y() / shown.height() * pixels.height())),
                   image);
}
