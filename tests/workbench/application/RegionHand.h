// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/pointer.h"

#include "workbench/application/DatasetView.h"
#include "workbench/application/DatasetWindow.h"

#include <QToolButton>
#include <QVector>

#include <cmath>

// Draws over the picture in the window of an image as a user does by the mouse. Places are in pixels of the image that
// is shown, from the outer corner of its first one.
class RegionHand
{
public:
    explicit RegionHand(DatasetWindow& window) : m_window(window) {}

    DatasetView& view() const { return *m_window.view(); }
    QPointF place(const QPointF& pixel) const { return view().toView(pixel); }
    void take(const char* pButton) const
    {
        view(); // with all that is still to be done
        auto* pTool = m_window.findChild<QToolButton*>(QLatin1String(pButton));
        if (!pTool->isChecked()) {
            pTool->click();
        }
    }
    // No tool any more: drags choose and move.
    void layDown() const
    {
        for (auto* pTool : m_window.findChildren<QToolButton*>()) {
            if (pTool->isChecked()) {
                pTool->click();
            }
        }
    }
    void drag(const QPointF& from, const QPointF& to) const { pointer::drag(view(), place(from), place(to)); }
    void click(const QPointF& pixel) const
    {
        pointer::move(view(), place(pixel));
        pointer::press(view(), place(pixel));
        pointer::release(view(), place(pixel));
    }
    void doubleClick(const QPointF& pixel) const
    {
        click(pixel);
        pointer::send(view(), QEvent::MouseButtonDblClick, place(pixel), Qt::LeftButton, Qt::LeftButton);
        pointer::release(view(), place(pixel));
    }
    void rectangle(const QPointF& from, const QPointF& to) const
    {
        take("m_pDrawRectangleButton");
        drag(from, to);
    }
    void ellipse(const QPointF& from, const QPointF& to) const
    {
        take("m_pDrawEllipseButton");
        drag(from, to);
    }
    void polygon(QVector<QPointF> corners) const
    {
        take("m_pDrawPolygonButton");
        const QPointF last = corners.takeLast();
        for (const QPointF& corner : corners) {
            click(corner);
        }
        doubleClick(last);
    }
    void freeHand(const QVector<QPointF>& line) const
    {
        take("m_pDrawFreeHandButton");
        pointer::press(view(), place(line.first()));
        for (const QPointF& point : line) {
            pointer::move(view(), place(point), Qt::LeftButton);
        }
        pointer::release(view(), place(line.last()));
    }

private:
    DatasetWindow& m_window;
};

// A line around a place, nearly closed, a fifth longer than high.
inline QVector<QPointF> beanAround(const QPointF& middle, double dRadius)
{
    QVector<QPointF> line;
    for (int degrees = 0; degrees <= 350; degrees += 5) {
        const double turn = degrees * 3.14159265358979 / 180.0;
        const double radius = dRadius * (1.0 + 0.3 * std::cos(2.0 * turn));
        line.append(middle + QPointF(radius * std::cos(turn), radius * std::sin(turn)));
    }
    return line;
}
