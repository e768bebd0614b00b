// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/ScaledPicture.h"

#include <QPaintDevice>
#include <QPainter>

#include <cmath>

namespace orvwidgets {

namespace {

// Above this part of its size a picture is interpolated well enough.
constexpr double kReduction = 0.75;

} // namespace

void ScaledPicture::setPicture(const QImage& picture)
{
    if (picture.cacheKey() == m_picture.cacheKey()) {
        return;
    }
    m_picture = picture;
    m_reduced = QImage();
}

void ScaledPicture::draw(QPainter& painter, const QRectF& target, bool bSmooth) const
{
    if (m_picture.isNull() || target.isEmpty()) {
        return;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, bSmooth);
    const double ratio = painter.device()->devicePixelRatioF();
    const QSize size(static_cast<int>(std::ceil(target.width() * ratio)),
                     static_cast<int>(std::ceil(target.height() * ratio)));
    if (!bSmooth || size.width() > kReduction * m_picture.width() || size.height() > kReduction * m_picture.height()) {
        painter.drawImage(target, m_picture);
        return;
    }
    if (m_reduced.size() != size) {
        m_reduced = m_picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    painter.drawImage(target, m_reduced);
}

} // namespace orvwidgets
