// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QString>
#include <QVector>

// What stands at the points of a curve. Shapes tell curves apart where colours cannot: in grey print, and to the
// colour-blind.
enum class PlotMarker
{
    None,
    Circle,
    Square,
    Triangle,
    Diamond,
    Cross,
    Star
};

// One curve of a plot: points in the order in which they are joined. One without points only has its place in the
// legend, one without a label only its place in the plot.
struct PlotCurve
{
    QString label;
    QColor color;
    QVector<double> x;
    QVector<double> y;
    Qt::PenStyle style = Qt::SolidLine;
    PlotMarker marker = PlotMarker::Circle;
    double width = 2.0; // of the line, in pixels
};
