// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFontMetricsF>
#include <QPointF>
#include <QString>
#include <QVector>

class QPainter;

// What stands at a place along an axis in place of its number.
struct PlotName
{
    double x = 0.0;
    QString text;
};

// Names below the axis of a plot: side by side where the widest has room between its neighbours, else upright, then
// cut to the room below and, of more than lines fit beside each other, every n-th.
class AxisNames
{
public:
    // For an axis `dWidth` long.
    AxisNames(const QVector<PlotName>& names, const QFontMetricsF& metrics, double dWidth);

    // The n of every n-th that is drawn.
    int step() const { return m_nStep; }
    // Height that they take.
    double depth() const { return m_dDepth; }
    // With the upper end at that place of the axis.
    void draw(QPainter& painter, const QPointF& place, const QString& strText) const;

private:
    bool m_bUpright = false;
    int m_nStep = 1;
    double m_dDepth = 0.0;
};
