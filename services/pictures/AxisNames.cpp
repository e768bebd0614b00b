// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/pictures/AxisNames.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr double gap = 4.0;       // between the axis and the names, in pixels
constexpr double mostLines = 7.0; // depth of upright names, in heights of a line

} // namespace

AxisNames::AxisNames(const QVector<PlotName>& names, const QFontMetricsF& metrics, double dWidth)
{
    if (names.isEmpty()) {
        return;
    }
    double widest = 0.0;
    for (const PlotName& name : names) {
        widest = std::max(widest, metrics.horizontalAdvance(name.text));
    }
    const double room = dWidth / names.size();
    m_bUpright = widest + metrics.averageCharWidth() > room;
    m_dDepth = m_bUpright ? std::min(widest, metrics.height() * mostLines) : metrics.height();
    m_nStep = m_bUpright ? std::max(1, static_cast<int>(std::ceil(metrics.height() / room))) : 1;
}

void AxisNames::draw(QPainter& painter, const QPointF& place, const QString& strText) const
{
    const QFontMetricsF metrics(painter.font());
    if (!m_bUpright) {
        constexpr double half = 200.0; // wider than any that stands here
        painter.drawText(QRectF(place.x() - half, place.y() + gap, 2.0 * half, metrics.height()),
                         Qt::AlignHCenter | Qt::AlignTop, strText);
        return;
    }
    painter.save();
    painter.translate(place.x(), place.y() + gap);
    painter.rotate(-90);
    painter.drawText(QRectF(-m_dDepth, -metrics.height() / 2, m_dDepth, metrics.height()),
                     Qt::AlignRight | Qt::AlignVCenter, metrics.elidedText(strText, Qt::ElideRight, m_dDepth));
    painter.restore();
}
