// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPoint>
#include <QPointF>
#include <QRectF>
#include <QSizeF>

namespace orvwidgets {

// How a picture lies in a view: zoom and place, with the aspect kept. Both systems have their origin at the upper left
// and y downwards; sizes of the view are logical pixels, those of the picture its own.
//
// Fitted, the picture is as large as the view allows and stays so when the view changes; a zoom ends that. A side that
// is shorter than the view's is centred, one that is longer leaves no gap.
class ViewTransform
{
public:
    static constexpr double kMaxZoom = 64.0; // view pixels that a pixel of the picture may take up
    static constexpr double kWheelStep = 1.25;

    // A picture of another size is fitted; one of the same size lies where the earlier one did.
    void setPictureSize(const QSizeF& size);
    // Fitted stays fitted; else the zoom stays, and the point of the picture in the middle of the view.
    void setViewSize(const QSizeF& size);
    QSizeF pictureSize() const { return m_picture; }
    QSizeF viewSize() const { return m_view; }

    bool isFitted() const { return m_bFitted; }
    void fit();
    // Fitted, a picture is not shown smaller than at this zoom as long as the view is wide enough for it: what does not
    // find room in the height is reached by panning, from the upper edge on. 0 at first.
    void setLeastFittedZoom(double dZoom);
    // The whole picture, however small; not fitted when that has a least zoom above it.
    void showWhole();
    // Logical pixels of the view that a pixel of the picture takes up; 0 without a picture or a view.
    double zoom() const { return m_dZoom; }
    // From the zoom of the whole picture (or 1, when that is smaller) to kMaxZoom (or the fitted zoom, when that is
    // larger).
    double minimumZoom() const;
    double maximumZoom() const;
    // Limited to the range; the point of the picture under `about` stays there as far as the gaps allow. At the fitted
    // zoom the picture is fitted again.
    void setZoom(double dZoom, const QPointF& about);
    // By the wheel's angle, in eighths of a degree: a notch of 120 is kWheelStep.
    void zoomByWheel(int nAngle, const QPointF& about);
    // Moves the picture by that many view pixels, as far as the gaps allow.
    void pan(const QPointF& delta);

    // Where the picture lies in the view; empty without one.
    QRectF pictureRect() const;
    QPointF toPicture(const QPointF& view) const;
    QPointF toView(const QPointF& picture) const;
    // The pixel of the picture under a point of the view. False beside the picture; `pixel` is then (-1, -1).
    bool pixelAt(const QPointF& view, QPoint& pixel) const;

private:
    bool isUsable() const { return !m_picture.isEmpty() && !m_view.isEmpty(); }
    double wholeZoom() const;
    double fittedZoom() const;
    void limitOrigin();

    QSizeF m_picture;
    QSizeF m_view;
    QPointF m_origin; // of the picture in the view
    double m_dZoom = 0.0;
    double m_dLeastFitted = 0.0;
    bool m_bFitted = true;
};

} // namespace orvwidgets
