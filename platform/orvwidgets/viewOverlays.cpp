// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/viewOverlays.h"

#include "platform/orvimage/ColorTables.h"
#include "platform/orvimage/TickMarks.h"
#include "platform/orvwidgets/CropGeometry.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

#include <algorithm>

namespace orvwidgets {

namespace {

// Lightness from which a text gets the dark outline. There the two of them differ least from the text: by 3.5 to 1.
constexpr double kLight = 0.58;
constexpr double kOutline = 3.0;   // pixels
constexpr double kTick = 4.0;      // pixels
constexpr int kSmallFont = 8;      // pixels of the legend's numbers
constexpr double kTickRoom = 40.0; // pixels that a number of the legend takes

void drawShape(QPainter& painter, const QRectF& crop, bool bEllipse)
{
    if (bEllipse) {
        painter.drawEllipse(crop);
    } else {
        painter.drawRect(crop);
    }
}

// A place for a number at `at`, moved into the extent.
double inside(double at, double room, double from, double to)
{
    return std::clamp(at - room / 2.0, from, std::max(from, to - room));
}

std::vector<double> ticksOf(int pixels, double side)
{
    return orvimage::tickValues(0.0, pixels, std::max(2, static_cast<int>(side / kTickRoom)));
}

} // namespace

namespace {

template <typename Draw>
void paintLines(QPainter& painter, Draw&& draw)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::black, 1.5));
    draw();
    QPen dashes(Qt::white, 1.5);
    dashes.setDashPattern({3.0, 3.0});
    painter.setPen(dashes);
    draw();
    painter.restore();
}

} // namespace

void paintOutline(QPainter& painter, const QRectF& shape, bool bEllipse)
{
    paintLines(painter, [&] { drawShape(painter, shape, bEllipse); });
}

void paintOutline(QPainter& painter, const QPolygonF& outline)
{
    paintLines(painter, [&] { painter.drawPolygon(outline); });
}

void paintLine(QPainter& painter, const QPolygonF& line)
{
    paintLines(painter, [&] { painter.drawPolyline(line); });
}

void paintHandles(QPainter& painter, const QPolygonF& points)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::black, 1.0));
    painter.setBrush(Qt::white);
    for (const QPointF& point : points) {
        painter.drawRect(CropGeometry::handle(point));
    }
    painter.restore();
}

void paintFrame(QPainter& painter, const QRectF& frame)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(255, 255, 255, 110), 1.0));
    painter.drawRect(frame);
    painter.restore();
}

void paintCrop(QPainter& painter, const QRectF& crop, bool bEllipse)
{
    paintOutline(painter, crop, bEllipse);
    if (bEllipse) {
        paintFrame(painter, crop); // that the handles belong to
    }
    paintHandles(painter, QPolygonF({crop.topLeft(), crop.topRight(), crop.bottomLeft(), crop.bottomRight()}));
}

void paintPixelLegend(QPainter& painter, const QRectF& shown, const QSize& picture, double width,
                      const QPalette& palette)
{
    if (shown.isEmpty() || picture.isEmpty()) {
        return;
    }
    painter.save();
    painter.setClipRect(shown, Qt::IntersectClip);
    QColor paper = palette.color(QPalette::Base);
    paper.setAlpha(200);
    const QRectF right(shown.right() - width, shown.top(), width, shown.height() - width);
    const QRectF lower(shown.left(), shown.bottom() - width, shown.width(), width);
    painter.fillRect(right, paper);
    painter.fillRect(lower, paper);
    painter.setPen(palette.color(QPalette::Text));
    QFont font = painter.font();
    font.setPixelSize(kSmallFont);
    painter.setFont(font);
    for (const double tick : ticksOf(picture.width(), shown.width())) {
        const double x = shown.left() + tick * shown.width() / picture.width();
        painter.drawLine(QPointF(x, lower.top()), QPointF(x, lower.top() + kTick));
        const double textWidth = painter.fontMetrics().horizontalAdvance(QString::number(tick)) + 2.0;
        painter.drawText(
            QRectF(inside(x, textWidth, lower.left(), lower.right()), lower.top() + kTick, textWidth, width - kTick),
            Qt::AlignCenter, QString::number(tick));
    }
    for (const double tick : ticksOf(picture.height(), shown.height())) {
        const double y = shown.top() + tick * shown.height() / picture.height();
        painter.drawLine(QPointF(right.left(), y), QPointF(right.left() + kTick, y));
        const double textHeight = painter.fontMetrics().height();
        painter.drawText(
            QRectF(right.left() + kTick, inside(y, textHeight, shown.top(), shown.bottom()), width - kTick, textHeight),
            Qt::AlignCenter, QString::number(tick));
    }
    painter.restore();
}

void paintRing(QPainter& painter, const QPointF& centre, double diameter)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::black, 1.0));
    painter.drawEllipse(centre, diameter / 2.0 + 1.0, diameter / 2.0 + 1.0);
    painter.setPen(QPen(Qt::white, 1.0));
    painter.drawEllipse(centre, diameter / 2.0, diameter / 2.0);
    painter.restore();
}

QColor outlineOf(const QColor& text)
{
    return orvimage::oklabLightness(text.rgb()) < kLight ? QColor(240, 240, 240) : QColor(0, 0, 0, 230);
}

void paintOutlinedText(QPainter& painter, const QPointF& at, const QString& text, const QFont& font,
                       const QColor& color)
{
    QPainterPath path;
    path.addText(at, font, text);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.strokePath(path, QPen(outlineOf(color), kOutline, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.fillPath(path, color);
    painter.restore();
}

} // namespace orvwidgets
