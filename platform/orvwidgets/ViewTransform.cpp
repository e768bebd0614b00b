// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/ViewTransform.h"

#include <algorithm>
#include <cmath>

namespace orvwidgets {

namespace {

constexpr double kNotch = 120.0;

// Origin of a side of length `shown` in a view of length `view`.
double limited(double origin, double shown, double view)
{
    return shown <= view ? (view - shown) / 2.0 : std::clamp(origin, view - shown, 0.0);
}

} // namespace

void ViewTransform::setPictureSize(const QSizeF& size)
{
    if (size == m_picture) {
        return;
    }
    m_picture = size;
    fit();
}

void ViewTransform::setViewSize(const QSizeF& size)
{
    if (size == m_view) {
        return;
    }
    if (m_bFitted || !isUsable()) {
        const double upper = m_dZoom > 0.0 ? m_origin.y() / m_dZoom : 0.0;
        m_view = size;
        fit();
        m_origin.setY(upper * m_dZoom);
        limitOrigin();
        return;
    }
    const QPointF middle = toPicture(QPointF(m_view.width() / 2.0, m_view.height() / 2.0));
    m_view = size;
    if (!isUsable() || m_dZoom < minimumZoom()) {
        fit();
        return;
    }
    m_origin = QPointF(m_view.width() / 2.0, m_view.height() / 2.0) - middle * m_dZoom;
    limitOrigin();
}

double ViewTransform::wholeZoom() const
{
    return isUsable() ? std::min(m_view.width() / m_picture.width(), m_view.height() / m_picture.height()) : 0.0;
}

double ViewTransform::fittedZoom() const
{
    return isUsable() ? std::max(wholeZoom(), std::min(m_dLeastFitted, m_view.width() / m_picture.width())) : 0.0;
}

double ViewTransform::minimumZoom() const
{
    return std::min(1.0, wholeZoom());
}

double ViewTransform::maximumZoom() const
{
    return std::max(kMaxZoom, fittedZoom());
}

void ViewTransform::fit()
{
    m_bFitted = true;
    m_dZoom = fittedZoom();
    m_origin = QPointF();
    limitOrigin();
}

void ViewTransform::setLeastFittedZoom(double dZoom)
{
    if (dZoom == m_dLeastFitted) {
        return;
    }
    m_dLeastFitted = dZoom;
    if (m_bFitted) {
        fit();
    }
}

void ViewTransform::showWhole()
{
    fit();
    m_bFitted = qFuzzyCompare(wholeZoom(), m_dZoom);
    m_dZoom = wholeZoom();
    limitOrigin();
}

void ViewTransform::setZoom(double dZoom, const QPointF& about)
{
    if (!isUsable() || std::isnan(dZoom)) {
        return;
    }
    const QPointF point = toPicture(about);
    const double limitedZoom = std::clamp(dZoom, minimumZoom(), maximumZoom());
    if (qFuzzyCompare(limitedZoom, fittedZoom()) && qFuzzyCompare(limitedZoom, wholeZoom())) {
        fit();
        return;
    }
    m_bFitted = false;
    m_dZoom = limitedZoom;
    m_origin = about - point * m_dZoom;
    limitOrigin();
}

void ViewTransform::zoomByWheel(int nAngle, const QPointF& about)
{
    setZoom(m_dZoom * std::pow(kWheelStep, nAngle / kNotch), about);
}

void ViewTransform::pan(const QPointF& delta)
{
    m_origin += delta;
    limitOrigin();
}

void ViewTransform::limitOrigin()
{
    m_origin.setX(limited(m_origin.x(), m_picture.width() * m_dZoom, m_view.width()));
    m_origin.setY(limited(m_origin.y(), m_picture.height() * m_dZoom, m_view.height()));
}

QRectF ViewTransform::pictureRect() const
{
    return isUsable() ? QRectF(m_origin, m_picture * m_dZoom) : QRectF();
}

QPointF ViewTransform::toPicture(const QPointF& view) const
{
    return m_dZoom > 0.0 ? (view - m_origin) / m_dZoom : QPointF();
}

QPointF ViewTransform::toView(const QPointF& picture) const
{
    return m_origin + picture * m_dZoom;
}

bool ViewTransform::pixelAt(const QPointF& view, QPoint& pixel) const
{
    const QPointF point = toPicture(view);
    if (!isUsable() || point.x() < 0.0 || point.y() < 0.0 || point.x() >= m_picture.width() ||
        point.y() >= m_picture.height()) {
        pixel = QPoint(-1, -1);
        return false;
    }
    pixel = QPoint(static_cast<int>(point.x()), static_cast<int>(point.y()));
    return true;
}

} // namespace orvwidgets
