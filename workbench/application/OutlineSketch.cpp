// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/OutlineSketch.h"

#include "platform/orvapi/ROIShape.h"
#include "platform/orvwidgets/CropGeometry.h"
#include "platform/orvwidgets/viewOverlays.h"

#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kLeastCorners = 3;

} // namespace

void OutlineSketch::begin(tag_eroishape eShape, const QSize& image)
{
    *this = OutlineSketch();
    m_eShape = eShape;
    m_image = image;
    m_bActive = true;
}

QPointF OutlineSketch::pixel(const QPointF& point, const QRectF& shown) const
{
    const double x = (point.x() - shown.left()) / shown.width() * m_image.width();
    const double y = (point.y() - shown.top()) / shown.height() * m_image.height();
    const QPointF on(std::clamp(x, 0.0, static_cast<double>(m_image.width())),
                     std::clamp(y, 0.0, static_cast<double>(m_image.height())));
    return m_eShape == ROISHAPE_POLYGON ? QPointF(std::round(on.x()), std::round(on.y())) : on;
}

QPointF OutlineSketch::placed(const QPointF& pixel, const QRectF& shown) const
{
    return {shown.left() + pixel.x() / m_image.width() * shown.width(),
            shown.top() + pixel.y() / m_image.height() * shown.height()};
}

bool OutlineSketch::isOverFirst(const QPointF& point, const QRectF& shown) const
{
    return isPolygon() && m_points.size() >= kLeastCorners &&
           orvwidgets::CropGeometry::handle(placed(m_points.first(), shown)).contains(point);
}

// A line of more points than a region may have loses every other one.
void OutlineSketch::append(const QPointF& pixel)
{
    if (!m_points.isEmpty() && m_points.last() == pixel) {
        return;
    }
    m_points.append(pixel);
    if (m_points.size() <= ROIShape::kMaximumPoints) {
        return;
    }
    QVector<QPointF> half;
    for (int i = 0; i < m_points.size(); i += 2) {
        half.append(m_points.at(i));
    }
    m_points = half;
}

void OutlineSketch::press(const QPointF& point, const QRectF& shown)
{
    if (!m_bActive || shown.isEmpty()) {
        return;
    }
    m_bPressed = true;
    m_bClosing = isOverFirst(point, shown);
    m_pointer = pixel(point, shown);
    if (!m_bClosing) {
        append(m_pointer);
    }
}

void OutlineSketch::dragTo(const QPointF& point, const QRectF& shown)
{
    if (!m_bPressed || m_bClosing || shown.isEmpty()) {
        return;
    }
    m_pointer = pixel(point, shown);
    if (m_eShape == ROISHAPE_POLYGON) {
        m_points.last() = m_pointer;
    } else {
        append(m_pointer);
    }
}

void OutlineSketch::hover(const QPointF& point, const QRectF& shown)
{
    if (isPolygon() && !shown.isEmpty()) {
        m_pointer = pixel(point, shown);
        m_bOverFirst = isOverFirst(point, shown);
    }
}

bool OutlineSketch::release()
{
    const bool closed = m_bPressed && (m_bClosing || m_eShape != ROISHAPE_POLYGON);
    m_bPressed = false;
    m_bClosing = false;
    return closed;
}

void OutlineSketch::takeBack()
{
    if (m_points.size() <= 1) {
        giveUp();
        return;
    }
    m_points.removeLast();
    m_bPressed = false;
    m_bClosing = false;
    m_bOverFirst = m_bOverFirst && m_points.size() >= kLeastCorners;
}

void OutlineSketch::giveUp()
{
    *this = OutlineSketch();
}

QVector<tagROIInfo::Point> OutlineSketch::points() const
{
    QVector<tagROIInfo::Point> points;
    for (int i = 0; i < m_points.size(); ++i) {
        const QPointF& before = m_points.at(i > 0 ? i - 1 : m_points.size() - 1);
        if (m_points.at(i) != before) {
            points.append({m_points.at(i).x(), m_points.at(i).y()});
        }
    }
    return points;
}

void OutlineSketch::paint(QPainter& painter, const QRectF& shown) const
{
    if (!m_bActive) {
        return;
    }
    QPolygonF line;
    for (const QPointF& point : m_points) {
        line << placed(point, shown);
    }
    if (!isPolygon()) {
        orvwidgets::paintLine(painter, line);
        return;
    }
    QPolygonF next = line;
    next << (m_bOverFirst ? line.first() : placed(m_pointer, shown));
    orvwidgets::paintLine(painter, next);
    orvwidgets::paintHandles(painter, line);
    if (m_bOverFirst) {
        orvwidgets::paintRing(painter, line.first(), 2.0 * orvwidgets::CropGeometry::kHandle);
    }
}
