// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QRectF>

class QPainter;

namespace orvwidgets {

// A picture that is drawn at changing sizes. Drawn much smaller than it is, a copy of that size is kept: the averages
// of a smooth reduction, which a painter's interpolation of four pixels does not give, and less to hand to OpenGL.
class ScaledPicture
{
public:
    // Shares the picture.
    void setPicture(const QImage& picture);
    const QImage& picture() const { return m_picture; }

    // Draws the picture into `target`, logical pixels of the painter.
    void draw(QPainter& painter, const QRectF& target, bool bSmooth) const;
    // The copy that is kept; null while none is.
    const QImage& reduced() const { return m_reduced; }

private:
    QImage m_picture;
    mutable QImage m_reduced;
};

} // namespace orvwidgets
