// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tagROIInfo.h"

#include <QPointF>
#include <QRectF>
#include <QSize>
#include <QVector>

class QPainter;

// An outline as it is drawn over a displayed picture: a polygon corner by corner, or a line by hand in one drag. It is
// kept in pixels of the image, from the outer corner of the first one, so that it stays in its place when the view is
// zoomed or resized. `shown` is where the image lies in the view; points beside the picture count as the nearest on it.
class OutlineSketch
{
public:
    // The first press follows. Corners of a polygon lie on whole pixels, a line drawn by hand where it was drawn.
    void begin(tag_eroishape eShape, const QSize& image);
    bool isActive() const { return m_bActive; }
    // Active, and corners are added one by one.
    bool isPolygon() const { return m_bActive && m_eShape == ROISHAPE_POLYGON; }
    tag_eroishape shape() const { return m_eShape; }

    // A press adds a corner, which lies where it is released, or begins the line, which follows the pointer. One on the
    // first of three corners or more closes the outline instead.
    void press(const QPointF& point, const QRectF& shown);
    void dragTo(const QPointF& point, const QRectF& shown);
    // The pointer moves without a button held: the next side of the polygon leads to it.
    void hover(const QPointF& point, const QRectF& shown);
    // True when the outline is to be closed.
    bool release();
    bool isPressed() const { return m_bPressed; }

    // Takes the last corner back; with the only one the drawing ends.
    void takeBack();
    void giveUp();

    // In pixels of the image, no two that follow each other in one place, the first and the last included.
    QVector<tagROIInfo::Point> points() const;
    void paint(QPainter& painter, const QRectF& shown) const;

private:
    QPointF pixel(const QPointF& point, const QRectF& shown) const;
    QPointF placed(const QPointF& pixel, const QRectF& shown) const;
    bool isOverFirst(const QPointF& point, const QRectF& shown) const;
    void append(const QPointF& pixel);

    tag_eroishape m_eShape = ROISHAPE_POLYGON;
    QSize m_image;
    QVector<QPointF> m_points;
    QPointF m_pointer; // pixel below it
    bool m_bActive = false;
    bool m_bPressed = false;
    bool m_bClosing = false; // once the button is released
    bool m_bOverFirst = false;
};
