// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QColor>
#include <QPointF>
#include <QString>
#include <QVector>

namespace orv {

// A line's points, as many x as y.
struct PlotLine
{
    QString m_strKey;
    QString m_strLabel;
    QVector<double> m_x;
    QVector<double> m_y;
};

// The pieces of a line that are drawn in one go: a new one begins where x runs backwards, as it does when the same
// emissions were taken with several excitations, and behind points that are no finite numbers, which are left out.
QVector<QVector<QPointF>> plotSegments(const QVector<double>& x, const QVector<double>& y);

// What the finite points of lines cover.
struct PlotExtent
{
    double m_dXLow = 0.0;
    double m_dXHigh = 1.0;
    double m_dYLow = 0.0;
    double m_dYHigh = 1.0;
};

// From 0 to 1 on both axes when there is no finite point.
PlotExtent plotExtent(const QVector<PlotLine>& lines);

// The table of all lines, as CORVGLXYPlot1::saveData() writes it.
QByteArray plotTable(const QString& strXLabel, const QVector<PlotLine>& lines, char cSeparator);

// The colour as it is drawn on `base`: on a dark one mixed with `text` as far as it takes to stand off it. On a light
// base the colour stays.
QColor legibleColor(const QColor& color, const QColor& base, const QColor& text);

} // namespace orv
