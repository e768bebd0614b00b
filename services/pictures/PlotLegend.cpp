// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/pictures/PlotLegend.h"

#include "platform/orvimage/TextLines.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <cmath>

namespace {

constexpr double lineLength = 34.0; // of a curve's piece
constexpr double textIndent = 42.0;
constexpr double columnGap = 18.0;
constexpr double entryGap = 0.35;  // between entries, of a line's height
constexpr double reach = 3.6;      // of a marker around its point, in pixels
constexpr double equalArea = 0.89; // half the side of a square that looks as large as a circle
constexpr double thinPen = 1.6;

QPolygonF triangle(const QPointF& p)
{
    const double r = reach * 1.25;
    return QPolygonF({p + QPointF(0, -r), p + QPointF(r * 0.9, r * 0.65), p + QPointF(-r * 0.9, r * 0.65)});
}

QPolygonF diamond(const QPointF& p)
{
    const double r = reach * 1.25;
    return QPolygonF({p + QPointF(0, -r), p + QPointF(r, 0), p + QPointF(0, r), p + QPointF(-r, 0)});
}

// Rays from a point, the first at `dFrom` degrees.
void drawRays(QPainter& painter, const QPointF& p, int nRays, double dFrom)
{
    constexpr double degree = 3.14159265358979323846 / 180.0;
    for (int i = 0; i < nRays; ++i) {
        const double angle = (dFrom + i * 360.0 / nRays) * degree;
        painter.drawLine(p, p + QPointF(std::cos(angle), std::sin(angle)) * reach * 1.25);
    }
}

} // namespace

QPen curvePen(const PlotCurve& curve)
{
    return QPen(curve.color, curve.width, curve.style, Qt::RoundCap, Qt::RoundJoin);
}

void drawMarker(QPainter& painter, const PlotCurve& curve, const QPointF& point)
{
    const bool rays = curve.marker == PlotMarker::Cross || curve.marker == PlotMarker::Star;
    painter.setPen(rays ? QPen(curve.color, thinPen) : QPen(Qt::NoPen));
    painter.setBrush(rays ? QBrush(Qt::NoBrush) : QBrush(curve.color));
    const double half = reach * equalArea;
    switch (curve.marker) {
    case PlotMarker::None:
        break;
    case PlotMarker::Circle:
        painter.drawEllipse(point, reach, reach);
        break;
    case PlotMarker::Square:
        painter.drawRect(QRectF(point.x() - half, point.y() - half, 2.0 * half, 2.0 * half));
        break;
    case PlotMarker::Triangle:
        painter.drawPolygon(triangle(point));
        break;
    case PlotMarker::Diamond:
        painter.drawPolygon(diamond(point));
        break;
    case PlotMarker::Cross:
        drawRays(painter, point, 4, 45.0);
        break;
    case PlotMarker::Star:
        drawRays(painter, point, 6, 90.0);
        break;
    }
}

PlotLegend::PlotLegend(const QList<PlotCurve>& curves, const QFont& font) : m_font(font)
{
    for (const PlotCurve& curve : curves) {
        if (!curve.label.isEmpty()) {
            m_curves.append(curve);
        }
    }
}

int PlotLegend::columnsIn(double dWidth) const
{
    const QFontMetricsF metrics(m_font);
    double widest = 1.0;
    for (const PlotCurve& curve : m_curves) {
        widest = std::max(widest, metrics.horizontalAdvance(curve.label.simplified()));
    }
    const double column = textIndent + widest + columnGap;
    return std::clamp(static_cast<int>(dWidth / column), 1, std::max(1, m_curves.size()));
}

QList<PlotLegend::Entry> PlotLegend::entries(const QRectF& area, int nColumns) const
{
    const double line = QFontMetricsF(m_font).height();
    const double column = area.width() / std::max(1, nColumns);
    QList<Entry> placed;
    double top = area.top();
    double rowHeight = 0.0;
    for (int i = 0; i < m_curves.size(); ++i) {
        if (i > 0 && i % nColumns == 0) {
            top += rowHeight;
            rowHeight = 0.0;
        }
        const double room = column - textIndent - (nColumns > 1 ? columnGap : 0.0);
        const QStringList lines = orvimage::textLines(m_curves[i].label, m_font, std::max(room, line));
        const double height = line * (lines.size() + entryGap);
        placed.append({QRectF(area.left() + column * (i % nColumns), top, column, height), lines});
        rowHeight = std::max(rowHeight, height);
    }
    return placed;
}

double PlotLegend::height(double dWidth, int nColumns) const
{
    double bottom = 0.0;
    for (const Entry& entry : entries(QRectF(0, 0, dWidth, 0), nColumns)) {
        bottom = std::max(bottom, entry.place.bottom());
    }
    return bottom;
}

void PlotLegend::draw(QPainter& painter, const QRectF& area, int nColumns) const
{
    const QFontMetricsF metrics(m_font);
    const QList<Entry> placed = entries(area, nColumns);
    painter.setFont(m_font);
    for (int i = 0; i < placed.size(); ++i) {
        const QPointF corner = placed[i].place.topLeft();
        const double middle = corner.y() + metrics.height() / 2.0;
        painter.setPen(curvePen(m_curves[i]));
        painter.drawLine(QPointF(corner.x(), middle), QPointF(corner.x() + lineLength, middle));
        drawMarker(painter, m_curves[i], QPointF(corner.x() + lineLength / 2.0, middle));
        painter.setPen(Qt::black);
        double baseline = corner.y() + metrics.ascent();
        for (const QString& line : placed[i].lines) {
            painter.drawText(QPointF(corner.x() + textIndent, baseline), line);
            baseline += metrics.height();
        }
    }
    painter.setBrush(Qt::NoBrush);
}
