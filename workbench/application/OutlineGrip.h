// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tagROIInfo.h"

#include <QPoint>
#include <QPointF>
#include <QPolygonF>
#include <QRectF>
#include <QSizeF>

// A drag of an outline that lies over a displayed picture: from a corner of a polygon that one moves, from the inside
// the whole. `shown` is where the image lies in the view, `sensor` its size in pixels of the sensor, of which a pixel
// of the image takes `binning` on a side.
class OutlineGrip
{
public:
    struct Image
    {
        QSizeF sensor;
        double binning = 1.0;
    };

    // Polygon or line, in the view.
    static QPolygonF placed(const tagROIInfo& region, const QSizeF& sensor, const QRectF& shown);
    // One has a handle at each corner, up to a number of them that can be told apart.
    static bool hasHandles(const tagROIInfo& region);
    // Whether a press there takes hold of a corner (its place is left in *pCorner, else -1) or of the inside.
    static bool isOn(const QPolygonF& outline, bool bHandles, const QPointF& point, int* pCorner);
    // So many pixels of the image farther, or as far as it stays on the image; it has to lie on it.
    static tagROIInfo shifted(const tagROIInfo& region, const QPoint& pixels, const Image& image);

    bool isHeld() const { return m_bHeld; }
    // False when the press means something else.
    bool press(const tagROIInfo& region, const QPointF& point, const QRectF& shown, const Image& image);
    void dragTo(const QPointF& point);
    // True after a drag, false after a click.
    bool release();
    void giveUp() { *this = OutlineGrip(); }
    // What the drag has made of it so far: a corner lies on a whole pixel, the whole has moved by whole ones.
    tagROIInfo applied(tagROIInfo region, const QRectF& shown, const Image& image) const;

private:
    bool m_bHeld = false;
    bool m_bDragged = false;
    int m_nCorner = -1; // -1: the whole
    QPointF m_pressed;  // in the view
    QPointF m_at;
};
