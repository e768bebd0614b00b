// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/CropGeometry.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvwidgets {

namespace {

// The crop shifted by `delta`, parts of the picture, and kept on it.
QRectF shifted(const QRectF& crop, const QPointF& delta)
{
    const double x = std::clamp(crop.left() + delta.x(), 0.0, 1.0 - crop.width());
    const double y = std::clamp(crop.top() + delta.y(), 0.0, 1.0 - crop.height());
    return {QPointF(x, y), crop.size()};
}

QRectF spanned(const QPointF& a, const QPointF& b)
{
    return QRectF(a, b).normalized();
}

int corner(double place, int side)
{
    return std::clamp(static_cast<int>(std::lround(place * side)), 1, side);
}

QPointF perShown(const QPointF& delta, const QRectF& shown)
{
    return {delta.x() / shown.width(), delta.y() / shown.height()};
}

} // namespace

Qt::CursorShape cursorOver(CropPart ePart)
{
    switch (ePart) {
    case CropPart::TopLeft:
    case CropPart::BottomRight:
        return Qt::SizeFDiagCursor;
    case CropPart::TopRight:
    case CropPart::BottomLeft:
        return Qt::SizeBDiagCursor;
    case CropPart::Inside:
        return Qt::SizeAllCursor;
    case CropPart::Outside:
        break;
    }
    return Qt::CrossCursor;
}

QPointF CropGeometry::part(const QPointF& point, const QRectF& shown)
{
    return {std::clamp((point.x() - shown.left()) / shown.width(), 0.0, 1.0),
            std::clamp((point.y() - shown.top()) / shown.height(), 0.0, 1.0)};
}

QRectF CropGeometry::rect(const QRectF& shown) const
{
    if (!m_crop) {
        return {};
    }
    return {shown.left() + m_crop->left() * shown.width(), shown.top() + m_crop->top() * shown.height(),
            m_crop->width() * shown.width(), m_crop->height() * shown.height()};
}

QRectF CropGeometry::handle(const QPointF& corner)
{
    return {corner.x() - kHandle / 2.0, corner.y() - kHandle / 2.0, kHandle, kHandle};
}

CropPart CropGeometry::partAt(const QPointF& point, const QRectF& shown) const
{
    if (!m_crop) {
        return CropPart::Outside;
    }
    const QRectF r = rect(shown);
    // The lower right one first: the corner that a drag over a tiny crop most likely means.
    const std::pair<QPointF, CropPart> corners[] = {{r.bottomRight(), CropPart::BottomRight},
                                                    {r.topLeft(), CropPart::TopLeft},
                                                    {r.topRight(), CropPart::TopRight},
                                                    {r.bottomLeft(), CropPart::BottomLeft}};
    for (const auto& [place, part] : corners) {
        if (handle(place).contains(point)) {
            return part;
        }
    }
    return r.contains(point) ? CropPart::Inside : CropPart::Outside;
}

void CropGeometry::press(const QPointF& point, const QRectF& shown)
{
    if (shown.isEmpty()) {
        return;
    }
    m_part = partAt(point, shown);
    m_bPressed = true;
    m_bDragged = false;
    m_pressed = point;
    m_atPress = m_crop;
    switch (m_part) {
    case CropPart::Outside:
        m_anchor = part(point, shown);
        break;
    case CropPart::TopLeft:
        m_anchor = m_crop->bottomRight();
        break;
    case CropPart::TopRight:
        m_anchor = m_crop->bottomLeft();
        break;
    case CropPart::BottomLeft:
        m_anchor = m_crop->topRight();
        break;
    case CropPart::BottomRight:
        m_anchor = m_crop->topLeft();
        break;
    case CropPart::Inside:
        break;
    }
}

void CropGeometry::dragTo(const QPointF& point, const QRectF& shown)
{
    if (!m_bPressed || shown.isEmpty()) {
        return;
    }
    const QPointF delta = point - m_pressed;
    m_bDragged = m_bDragged || std::abs(delta.x()) > kClickSlack || std::abs(delta.y()) > kClickSlack;
    if (!m_bDragged) {
        return;
    }
    if (m_part == CropPart::Inside) {
        m_crop = shifted(*m_atPress, perShown(delta, shown));
    } else {
        m_crop = spanned(m_anchor, part(point, shown));
    }
}

bool CropGeometry::release(const QRectF& shown)
{
    if (!m_bPressed) {
        return false;
    }
    m_bPressed = false;
    const QRectF r = rect(shown);
    if (!m_bDragged || (m_part != CropPart::Inside && std::min(r.width(), r.height()) < kSmallest) ||
        m_crop == m_atPress) {
        m_crop = m_atPress;
        return false;
    }
    m_before = m_atPress;
    m_bChanged = true;
    return true;
}

void CropGeometry::change(const Crop& crop)
{
    m_before = std::exchange(m_crop, crop);
    m_bChanged = true;
}

bool CropGeometry::takeBack()
{
    if (m_bPressed) {
        m_bPressed = false;
        m_crop = m_atPress;
        return true;
    }
    if (!m_bChanged) {
        return false;
    }
    m_bChanged = false;
    m_crop = m_before;
    return true;
}

bool CropGeometry::clear()
{
    m_bPressed = false;
    if (!m_crop) {
        return false;
    }
    change(std::nullopt);
    return true;
}

void CropGeometry::setWhole()
{
    m_bPressed = false;
    change(QRectF(0.0, 0.0, 1.0, 1.0));
}

bool CropGeometry::moveBy(const QPointF& delta, const QRectF& shown)
{
    if (!m_crop || m_bPressed || shown.isEmpty()) {
        return false;
    }
    const QRectF moved = shifted(*m_crop, perShown(delta, shown));
    if (moved == *m_crop) {
        return false;
    }
    change(moved);
    return true;
}

bool CropGeometry::growBy(const QPointF& delta, const QRectF& shown)
{
    if (!m_crop || m_bPressed || shown.isEmpty()) {
        return false;
    }
    const QPointF smallest = perShown(QPointF(kSmallest, kSmallest), shown);
    const QPointF by = perShown(delta, shown);
    const auto grown = [](double from, double to, double step, double least) {
        return std::clamp(to + step, std::min(from + least, to), 1.0);
    };
    const QPointF end(grown(m_crop->left(), m_crop->right(), by.x(), smallest.x()),
                      grown(m_crop->top(), m_crop->bottom(), by.y(), smallest.y()));
    if (end == m_crop->bottomRight()) {
        return false;
    }
    change(QRectF(m_crop->topLeft(), end));
    return true;
}

void CropGeometry::reset()
{
    *this = CropGeometry();
}

void CropGeometry::set(const std::optional<QRectF>& crop)
{
    reset();
    m_crop = crop;
}

QRect CropGeometry::reported(const QSizeF& side) const
{
    QRect crop;
    const int width = static_cast<int>(side.width());
    const int height = static_cast<int>(side.height());
    if (!m_crop || width < 1 || height < 1) {
        crop.setCoords(0, 0, 0, 0);
        return crop;
    }
    crop.setCoords(corner(m_crop->left(), width), corner(1.0 - m_crop->top(), height), corner(m_crop->right(), width),
                   corner(1.0 - m_crop->bottom(), height));
    return crop;
}

} // namespace orvwidgets
