// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QRectF>
#include <QSize>

class CILImage;
class QPainter;

namespace orvwidgets {

// The picture of a borrowed image, made when it is first drawn. Of a picture that is drawn small no more is kept than
// that takes: it is halved until it is less than twice as large as drawn. The image is asked again only when it is
// drawn larger than what was kept.
class TilePicture
{
public:
    // The image outlives this, or its use.
    explicit TilePicture(const CILImage& image);

    const CILImage& image() const { return *m_pImage; }
    // Of the whole picture.
    QSize size() const { return m_size; }
    // Whether a picture of that many device pixels can be drawn without asking the image.
    bool isReady(const QSize& device, bool bSmooth) const;
    // Makes the picture if need be and draws it into `target`, logical pixels of the painter.
    void draw(QPainter& painter, const QRectF& target, bool bSmooth) const;
    const QImage& kept() const { return m_kept; }

private:
    void make(const QSize& device, bool bSmooth) const;

    const CILImage* m_pImage;
    QSize m_size;
    mutable QImage m_kept;
};

// The device pixels that a rectangle of a painter takes up, rounded up.
QSize devicePixels(const QPainter& painter, const QRectF& target);

} // namespace orvwidgets
