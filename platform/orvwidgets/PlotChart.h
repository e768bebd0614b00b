// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/SPlotDisplaySettings.h"
#include "platform/orvwidgets/plotLines.h"
#include "platform/orvwidgets/plotScale.h"

#include <QChart>
#include <QHash>
#include <QLineSeries>
#include <QObject>
#include <QPalette>
#include <QSet>
#include <QValueAxis>

class QGraphicsSimpleTextItem;
class QLabel;

namespace orv {

class PlotLegend;
class PlotView;

// The chart behind CORVGLXYPlot1: series, axes, legend, zoom and read-out. The series hold mantissas (see plotScale.h),
// everything that goes in and out is in the units of the data.
class PlotChart : public QObject
{
    Q_OBJECT

public:
    // View and legend are borrowed and must outlive this object; the view owns the chart.
    PlotChart(PlotView* pView, PlotLegend* pLegend, const QString& strTitle);
    ~PlotChart() override;

    void setYDecimals(const QString& strFormat);
    void setColors(const QPalette& palette);
    // The view has another size.
    void takeRoom();
    void setDisplaySettings(const QString& strKey, const SPlotDisplaySettings& settings);
    // The line has other points at the next show().
    void setChanged(const QString& strKey);
    void remove(const QString& strKey);
    void clear();
    void show(const QVector<PlotLine>& lines, const QString& strXLabel);

    QRectF zoom() const { return m_zoom; }
    void setZoom(const QRectF& part);

private:
    void applyZoom(const QRect& rect);
    void updateScales();
    void updateAxis(QtCharts::QValueAxis* pAxis, const AxisScale& scale);
    void updateSeries(const PlotLine& line);
    void applyPen(const QString& strKey);
    void updatePowerText();
    void showReadOut(const QPoint& place);
    QString readOut(const QPoint& place) const;
    void setFonts();
    void updateLegend();
    QColor shownColor(const QString& strKey) const;

    PlotView* m_pView;
    PlotLegend* m_pLegend;
    QtCharts::QChart* m_pChart;
    QtCharts::QValueAxis* m_pX;
    QtCharts::QValueAxis* m_pY;
    QGraphicsSimpleTextItem* m_pPower;
    QLabel* m_pReadOut;
    QString m_strTitle;
    int m_nYDecimals = 2;
    QPalette m_palette;
    QVector<PlotLine> m_lines; // as shown
    QHash<QString, SPlotDisplaySettings> m_settings;
    QHash<QString, QVector<QtCharts::QLineSeries*>> m_series;
    QSet<QString> m_changed;
    PlotExtent m_extent;
    QRectF m_zoom; // null without one
    AxisScale m_xScale;
    AxisScale m_yScale;
};

} // namespace orv
