// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ComparisonPicture.h"

#include "platform/orvimage/MapPicture.h"
#include "platform/orvimage/PictureFont.h"
#include "services/pictures/PictureStyle.h"
#include "services/pictures/PlotLegend.h"
#include "services/results/ResultComparison.h"

#include <QFont>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

// Longer side of a map in the picture.
constexpr int mapSide = 320;
constexpr int labelWidth = 44;
constexpr int plotHeight = 260;
constexpr int legendMargin = 16;

// References are pale; results have colours in turn, whatever the number of references.
QColor rowColor(const ResultComparison& comparison, int nRow)
{
    static const QColor references[] = {QColor(170, 170, 170), QColor(222, 203, 158)};
    int before = 0;
    for (int i = 0; i < nRow; ++i) {
        before += comparison.isReference(i) == comparison.isReference(nRow) ? 1 : 0;
    }
    return comparison.isReference(nRow) ? references[before % 2] : componentColor(before);
}

// The values of a row in a plot; none where the column is -1.
ValuesOverImages valuesOfRow(const ResultComparison& comparison, int nRow, int nColumn)
{
    ValuesOverImages values;
    values.name = comparison.rowNames().at(nRow);
    values.color = rowColor(comparison, nRow);
    values.beneath = comparison.isReference(nRow);
    if (nColumn >= 0 && comparison.at(nRow, nColumn).present) {
        values.values = comparison.at(nRow, nColumn).spectrum;
    }
    return values;
}

QString titleOf(const ResultComparison& comparison, int nRow, int nColumn)
{
    const ComparedComponent& component = comparison.at(nRow, nColumn);
    if (comparison.isReference(nRow) || std::isnan(component.correlation)) {
        return component.name;
    }
    return QStringLiteral("%1: correlation %2").arg(component.name, QString::number(component.correlation, 'f', 3));
}

// Large maps are brought down, small ones enlarged by whole pixels.
QImage renderCell(const ComparedComponent& component, const QString& strTitle, const orvimage::ValueRange& range,
                  const ComparisonStyle& style)
{
    CILImage map = component.map;
    const long side = std::max(map.m_lWidth, map.m_lHeight);
    if (side > mapSide) {
        map.downSample(static_cast<int>(map.m_lWidth * mapSide / side),
                       static_cast<int>(map.m_lHeight * mapSide / side), IL_RESAMPLE_AREA);
    }
    orvimage::RenderMapOptions options;
    options.title = strTitle;
    options.unit = style.unit;
    options.colorTable = style.colorTable;
    options.reversed = style.reversed;
    options.scale =
        static_cast<int>(std::max(1L, std::lround(static_cast<double>(mapSide) / static_cast<double>(side))));
    options.hasRange = true;
    options.minimum = range.minimum;
    options.maximum = range.maximum;
    return orvimage::MapPicture(map, style.photograph, options).toImage();
}

// The range of the map that a row's is compared with; without one that of the uppermost map that there is.
orvimage::ValueRange rangeOf(const ResultComparison& comparison, int nRow, int nColumn)
{
    const ComparedComponent& reference = comparison.at(comparison.referenceOf(nRow), nColumn);
    if (reference.present) {
        return orvimage::robustRange(reference.map);
    }
    for (int i = 0; i < comparison.rowCount(); ++i) {
        if (comparison.at(i, nColumn).present) {
            return orvimage::robustRange(comparison.at(i, nColumn).map);
        }
    }
    return {};
}

QFont labelFont()
{
    QFont font = orvimage::pictureFont(18);
    font.setBold(true);
    return font;
}

void drawSideways(QPainter& painter, const QRect& area, const QString& strText, const QColor& color)
{
    painter.save();
    painter.translate(area.left(), area.bottom());
    painter.rotate(-90);
    painter.setFont(labelFont());
    painter.setPen(color);
    const QString shown = painter.fontMetrics().elidedText(strText, Qt::ElideMiddle, area.height() - 8);
    painter.drawText(QRect(0, 0, area.height(), area.width()), Qt::AlignCenter, shown);
    painter.restore();
}

PlotLegend legendOf(const ResultComparison& comparison, const PlottedImages& images)
{
    QList<PlotCurve> curves;
    for (int i = 0; i < comparison.rowCount(); ++i) {
        curves.append(curveInLegend(valuesOfRow(comparison, i, -1), i));
    }
    return PlotLegend(curves + linesInLegend(images), labelFont());
}

} // namespace

SpectrumPlot comparisonPlot(const ResultComparison& comparison, int nColumn, const PlottedImages& images)
{
    QList<ValuesOverImages> rows;
    for (int i = 0; i < comparison.rowCount(); ++i) {
        rows.append(valuesOfRow(comparison, i, nColumn));
    }
    SpectrumPlot plot = plotOverImages(images, QString(), QStringLiteral("spectrum"), rows);
    plot.setLegend(false);
    return plot;
}

QImage comparisonPicture(const ResultComparison& comparison, const ComparisonStyle& style)
{
    const int rows = comparison.rowCount();
    const int columns = comparison.columnCount();
    std::vector<QImage> cells;
    QSize cell;
    for (int i = 0; i < rows; ++i) {
        for (int j = 0; j < columns; ++j) {
            const ComparedComponent& component = comparison.at(i, j);
            cells.push_back(component.present
                                ? renderCell(component, titleOf(comparison, i, j), rangeOf(comparison, i, j), style)
                                : QImage());
            cell = cell.expandedTo(cells.back().size());
        }
    }
    const PlotLegend legend = legendOf(comparison, style.images);
    const double legendWidth = std::max(1, columns * cell.width() - 2 * legendMargin);
    const int legendColumns = legend.columnsIn(legendWidth);
    const int legendHeight = static_cast<int>(std::ceil(legend.height(legendWidth, legendColumns)));
    QImage sheet(labelWidth + columns * cell.width(), rows * cell.height() + plotHeight + legendHeight + legendMargin,
                 QImage::Format_RGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    for (int i = 0; i < rows; ++i) {
        drawSideways(painter, QRect(0, i * cell.height(), labelWidth, cell.height()), comparison.rowNames().at(i),
                     comparison.isReference(i) ? QColor(Qt::black) : rowColor(comparison, i));
        for (int j = 0; j < columns; ++j) {
            painter.drawImage(
                labelWidth + j * cell.width(), i * cell.height(),
                cells[static_cast<std::size_t>(i) * static_cast<std::size_t>(columns) + static_cast<std::size_t>(j)]);
        }
    }
    const int top = rows * cell.height();
    drawSideways(painter, QRect(0, top, labelWidth, plotHeight), QStringLiteral("spectra"), Qt::black);
    for (int j = 0; j < columns; ++j) {
        painter.drawImage(labelWidth + j * cell.width(), top,
                          comparisonPlot(comparison, j, style.images).toImage(QSize(cell.width() - 12, plotHeight)));
    }
    painter.setRenderHint(QPainter::Antialiasing);
    legend.draw(painter, QRectF(labelWidth + legendMargin, top + plotHeight, legendWidth, legendHeight), legendColumns);
    painter.end();
    return sheet;
}
