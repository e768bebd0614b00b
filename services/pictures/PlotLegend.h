// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/pictures/PlotCurve.h"

#include <QFont>
#include <QList>
#include <QRectF>
#include <QStringList>

class QPainter;

// The labels of a plot's curves, each behind a piece of its line. A label that is too long for its column goes on in
// the next line, and none is left out: whoever draws the legend asks for its height first.
class PlotLegend
{
public:
    PlotLegend(const QList<PlotCurve>& curves, const QFont& font);

    bool isEmpty() const { return m_curves.isEmpty(); }
    // Columns of equal width that hold the longest label in a line; 1 at least.
    int columnsIn(double dWidth) const;
    // Of all entries in so many columns.
    double height(double dWidth, int nColumns) const;
    // Row by row, from the upper left corner of the area; only its width counts.
    void draw(QPainter& painter, const QRectF& area, int nColumns) const;

private:
    struct Entry
    {
        QRectF place;
        QStringList lines;
    };
    QList<Entry> entries(const QRectF& area, int nColumns) const;

    QList<PlotCurve> m_curves; // those with a label
    QFont m_font;
};

// A curve's marker around a point, and its line as a pen.
void drawMarker(QPainter& painter, const PlotCurve& curve, const QPointF& point);
QPen curvePen(const PlotCurve& curve);
