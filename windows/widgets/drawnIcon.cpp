// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/widgets/drawnIcon.h"

#include <QPainter>
#include <QPixmap>
#include <QVector>

namespace {

constexpr double kGrid = 16.0; // icons are drawn on a grid of 16 by 16
constexpr double kPen = 1.3;

void drawArrow(QPainter& p, const QPointF& from, const QPointF& to)
{
    p.drawLine(from, to);
    const QPointF step = (to - from) / 3.0;
    const QPointF side(-step.y(), step.x());
    p.drawLine(to, to - step + side);
    p.drawLine(to, to - step - side);
}

void drawPhotograph(QPainter& p)
{
    p.drawRoundedRect(QRectF(1.5, 4.5, 13.0, 9.0), 1.5, 1.5);
    p.drawEllipse(QPointF(8.0, 9.0), 2.8, 2.8);
    p.drawLine(QPointF(5.5, 2.5), QPointF(10.5, 2.5));
}

// A spine with ribs.
void drawXRay(QPainter& p)
{
    p.drawLine(QPointF(8.0, 1.5), QPointF(8.0, 14.5));
    for (const double y : {3.5, 6.5, 9.5}) {
        p.drawArc(QRectF(2.5, y, 11.0, 4.0), 0, 180 * 16);
    }
}

// A sheet with an arrow into it or out of it.
void drawSheetAndArrow(QPainter& p, const QRectF& sheet, const QPointF& from, const QPointF& to)
{
    p.drawRect(sheet);
    drawArrow(p, from, to);
}

void draw(QPainter& p, DrawnIcon kind)
{
    switch (kind) {
    case DrawnIcon::Photograph:
        return drawPhotograph(p);
    case DrawnIcon::XRay:
        return drawXRay(p);
    case DrawnIcon::Transfer:
        return drawSheetAndArrow(p, QRectF(1.5, 6.5, 8.0, 8.0), QPointF(14.5, 1.5), QPointF(6.0, 10.0));
    case DrawnIcon::Copy:
        return p.drawRects(QVector<QRectF>{QRectF(2.5, 1.5, 8.0, 9.5), QRectF(5.5, 5.0, 8.0, 9.5)});
    case DrawnIcon::Export:
        return drawSheetAndArrow(p, QRectF(1.5, 5.5, 9.0, 9.0), QPointF(6.0, 10.0), QPointF(14.5, 1.5));
    case DrawnIcon::Print:
        return p.drawRects(
            QVector<QRectF>{QRectF(1.5, 6.5, 13.0, 5.0), QRectF(4.5, 1.5, 7.0, 5.0), QRectF(4.5, 9.5, 7.0, 5.0)});
    }
}

} // namespace

QIcon drawnIcon(DrawnIcon kind, const QColor& color)
{
    QIcon icon;
    for (const int nSide : {16, 24, 32, 48}) {
        QPixmap pixmap(nSide, nSide);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(nSide / kGrid, nSide / kGrid);
        painter.setPen(QPen(color, kPen));
        draw(painter, kind);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}
