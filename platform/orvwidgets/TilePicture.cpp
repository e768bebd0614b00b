// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/TilePicture.h"

#include "host/CILImage.h"

#include <QPaintDevice>
#include <QPainter>

#include <cmath>

namespace orvwidgets {

namespace {

bool reaches(const QSize& size, const QSize& device)
{
    return size.width() >= device.width() && size.height() >= device.height();
}

QImage halved(QImage picture, const QSize& device)
{
    // In one step: halving a mean of halves again would be the same.
    QSize size = picture.size();
    while (reaches(size / 2, device) && !(size / 2).isEmpty()) {
        size /= 2;
    }
    return size == picture.size() ? picture : picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace

QSize devicePixels(const QPainter& painter, const QRectF& target)
{
    const double ratio = painter.device()->devicePixelRatioF();
    return {static_cast<int>(std::ceil(target.width() * ratio)), static_cast<int>(std::ceil(target.height() * ratio))};
}

TilePicture::TilePicture(const CILImage& image)
    : m_pImage(&image), m_size(static_cast<int>(image.m_lWidth), static_cast<int>(image.m_lHeight))
{
}

bool TilePicture::isReady(const QSize& device, bool bSmooth) const
{
    return !m_kept.isNull() && (m_kept.size() == m_size || (bSmooth && reaches(m_kept.size(), device)));
}

void TilePicture::make(const QSize& device, bool bSmooth) const
{
    if (!isReady(device, bSmooth)) {
        m_kept = m_pImage->toQImage();
    }
    if (bSmooth) {
        m_kept = halved(m_kept, device);
    }
}

void TilePicture::draw(QPainter& painter, const QRectF& target, bool bSmooth) const
{
    if (target.isEmpty() || m_size.isEmpty()) {
        return;
    }
    make(devicePixels(painter, target), bSmooth);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, bSmooth);
    painter.drawImage(target, m_kept);
}

} // namespace orvwidgets
