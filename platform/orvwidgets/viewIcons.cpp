// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/viewIcons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QPolygonF>

namespace orvwidgets {

namespace {

constexpr int kGrid = 16; // icons are drawn on a grid of 16 by 16

void drawSheet(QPainter& p, const QRectF& sheet)
{
    p.drawRect(sheet);
}

void drawGlass(QPainter& p, bool bPlus)
{
    p.drawEllipse(QPointF(6.5, 6.5), 4.5, 4.5);
    p.drawLine(QPointF(10.0, 10.0), QPointF(14.0, 14.0));
    p.drawLine(QPointF(4.5, 6.5), QPointF(8.5, 6.5));
    if (bPlus) {
        p.drawLine(QPointF(6.5, 4.5), QPointF(6.5, 8.5));
    }
}

void drawCorners(QPainter& p)
{
    for (const int sx : {-1, 1}) {
        for (const int sy : {-1, 1}) {
            const QPointF corner(8.0 + sx * 5.5, 8.0 + sy * 5.5);
            p.drawLine(corner, corner - QPointF(sx * 3.5, 0.0));
            p.drawLine(corner, corner - QPointF(0.0, sy * 3.5));
        }
    }
}

void drawTakeBack(QPainter& p)
{
    p.drawArc(QRectF(3.0, 4.0, 10.0, 9.0), -60 * 16, 220 * 16);
    p.drawLine(QPointF(3.4, 7.5), QPointF(2.0, 3.5));
    p.drawLine(QPointF(3.4, 7.5), QPointF(7.2, 6.2));
}

// A bean, its line open where a hand would begin.
void drawFreeHand(QPainter& p)
{
    QPainterPath path(QPointF(6.5, 3.5));
    path.cubicTo(QPointF(11.0, 1.5), QPointF(15.0, 4.5), QPointF(13.5, 8.5));
    path.cubicTo(QPointF(12.0, 12.0), QPointF(9.5, 9.0), QPointF(8.0, 11.5));
    path.cubicTo(QPointF(6.0, 15.0), QPointF(1.5, 12.5), QPointF(2.5, 8.5));
    p.drawPath(path);
}

void drawIcon(QPainter& p, ViewIcon kind)
{
    switch (kind) {
    case ViewIcon::Copy:
        drawSheet(p, QRectF(2.5, 2.5, 8.0, 9.0));
        drawSheet(p, QRectF(5.5, 5.5, 8.0, 8.0));
        break;
    case ViewIcon::Save:
        p.drawRect(QRectF(2.5, 2.5, 11.0, 11.0));
        p.drawRect(QRectF(5.5, 2.5, 5.0, 3.5));
        p.drawRect(QRectF(4.5, 9.0, 7.0, 4.5));
        break;
    case ViewIcon::ZoomIn:
    case ViewIcon::ZoomOut:
        drawGlass(p, kind == ViewIcon::ZoomIn);
        break;
    case ViewIcon::Fit:
        drawCorners(p);
        break;
    case ViewIcon::Rectangle:
        p.drawRect(QRectF(2.5, 4.5, 11.0, 7.0));
        break;
    case ViewIcon::Ellipse:
        p.drawEllipse(QRectF(2.0, 4.0, 12.0, 8.0));
        break;
    case ViewIcon::Whole:
        drawCorners(p);
        p.drawRect(QRectF(5.5, 5.5, 5.0, 5.0));
        break;
    case ViewIcon::TakeBack:
        drawTakeBack(p);
        break;
    case ViewIcon::Clear:
        p.drawLine(QPointF(4.0, 4.0), QPointF(12.0, 12.0));
        p.drawLine(QPointF(12.0, 4.0), QPointF(4.0, 12.0));
        break;
    case ViewIcon::Polygon:
        p.drawPolygon(QPolygonF({{3.0, 6.0}, {9.0, 2.5}, {13.5, 7.0}, {11.0, 13.0}, {4.5, 13.0}}));
        break;
    case ViewIcon::FreeHand:
        drawFreeHand(p);
        break;
    }
}

QPixmap iconPixmap(ViewIcon kind, const QColor& color, int side)
{
    QPixmap pixmap(side, side);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(static_cast<double>(side) / kGrid, static_cast<double>(side) / kGrid);
    painter.setPen(QPen(color, 1.2));
    drawIcon(painter, kind);
    return pixmap;
}

} // namespace

QIcon viewIcon(ViewIcon kind, const QColor& color)
{
    QIcon icon;
    for (const int side : {kGrid, 2 * kGrid, 3 * kGrid}) {
        icon.addPixmap(iconPixmap(kind, color, side));
    }
    return icon;
}

} // namespace orvwidgets
