// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/SPlotDisplaySettings.h"

#include <QPointF>
#include <QRectF>
#include <QString>
#include <QStringList>
#include <QVector>
#include <QWidget>

#include <memory>

// A plot of lines over a common x axis. Lines have keys of their own, so that labels, which are only shown, may be
// alike. A line is broken where its x runs backwards and around points that are no numbers; those are not shown. Values
// of any magnitude share a power of ten, which stands at the axis.
//
// The user zooms in by drawing a rectangle, back by a double click, and reads the values of the point at the pointer.
// Colours follow the palette; a colour that would not stand off a dark background is drawn lighter.
class CORVGLXYPlot1 : public QWidget
{
    Q_OBJECT

public:
    explicit CORVGLXYPlot1(QWidget* pParent = nullptr, const QString& strTitle = QString());
    ~CORVGLXYPlot1() override;

    // Builds the chart, which takes a while; plotData() does so when nobody has.
    void initInstance();

    // As for printf(), of one double: "%.2f". Numbers of another form than "%.<n>f" are shown with two decimals.
    void setYLabelFormat(const QString& strFormat);
    void setXAxisLabel(const QString& strLabel);
    void setLegendVisible(bool bVisible);
    bool isLegendVisible() const;

    // Takes away all lines and the label of the x axis.
    void clear();
    // Adds a line at the end, or puts it in the place of the one with that key. False, and nothing changed, when x and
    // y differ in length.
    bool addDataLine(const QString& strKey, const QString& strLabel, const QVector<double>& x,
                     const QVector<double>& y);
    // A line whose label is its key.
    bool addDataLine(const QString& strLabel, const QVector<double>& x, const QVector<double>& y);
    // Nothing for a key that no line has.
    void removeDataLine(const QString& strKey);
    void setDisplaySettings(const QString& strKey, const SPlotDisplaySettings& settings);
    // Keys, in the order in which the lines were added.
    QStringList dataLines() const;
    // Shows what was changed. A zoom is kept as long as the lines cover the same x.
    void plotData();

    // Writes all lines as a table: a heading with the x label and the labels of the lines (in quotes where they hold
    // the separator, a quote or a line feed), then one row a point, in the C locale with 17 digits. Lines over
    // different x have empty cells where they have no point. The path is in the encoding of the file system; `nFlag`
    // must be 0. The file appears whole or not at all; false on failure.
    bool saveData(const char* pPath, int nFlag, char cSeparator) const;

    // Part of the plot, in the units of the data, that fills the chart; without a zoom a null rectangle.
    QRectF zoom() const;
    void setZoom(const QRectF& part);

protected:
    void changeEvent(QEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;

private:
    struct Private;
    std::unique_ptr<Private> m_p;
};
