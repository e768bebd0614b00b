// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/pictures/AxisNames.h"
#include "services/pictures/PlotCurve.h"

#include <QList>
#include <QSize>
#include <QString>
#include <QVector>

class QPainter;
class QImage;

// A plot of spectra or time courses on a white ground: axes with round ticks, curves with markers, a legend on the
// right, or beneath it where the legend is higher than the plot. Draws on any painter, so the same plot is written as
// PNG and as SVG. Points that are not finite are left out. Sizes are those that the plot has at least: a legend beneath
// it makes the page higher.
class SpectrumPlot
{
public:
    SpectrumPlot(const QString& strTitle, const QString& strXLabel, const QString& strYLabel);

    void addCurve(const PlotCurve& curve) { m_curves.append(curve); }
    const QList<PlotCurve>& curves() const { return m_curves; }
    const QString& xLabel() const { return m_strXLabel; }
    // Powers of ten up the axis; points that are not above 0 are then left out.
    void setLogarithmicY(bool bLogarithmic) { m_bLogarithmicY = bLogarithmic; }
    // Numbers of things along the axis: every tick is a whole number.
    void setWholeX(bool bWhole) { m_bWholeX = bWhole; }
    // Names along the axis in place of numbers.
    void setXNames(const QVector<PlotName>& names) { m_xNames = names; }
    void setLegend(bool bShown) { m_bLegend = bShown; }

    // The page that draw() fills.
    QSize pageSize(const QSize& least) const;
    void draw(QPainter& painter, const QSize& least) const;
    QImage toImage(const QSize& least) const;
    // The SVG document.
    QByteArray toSvg(const QSize& least) const;

    // Round numbers inside the range, 4 to 10 of them, 1, 2 or 5 times a power of ten apart; none without a range.
    static QVector<double> ticks(double minimum, double maximum);
    // Powers of ten inside the range of logarithms, every n-th so that there are 8 at most; none without a range.
    static QVector<double> decades(double minimum, double maximum);

private:
    struct Layout;
    Layout layoutOf(const QSize& least) const;
    Layout layoutWithoutNames(const QSize& least) const;

    QString m_strTitle;
    QString m_strXLabel;
    QString m_strYLabel;
    QList<PlotCurve> m_curves;
    QVector<PlotName> m_xNames;
    bool m_bLogarithmicY = false;
    bool m_bWholeX = false;
    bool m_bLegend = true;
};
