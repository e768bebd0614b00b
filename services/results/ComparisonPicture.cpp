// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ComparisonPicture.h"

#include "platform/orvimage/MapPicture.h"
#include "platform/orvimage/PictureFont.h"
#include "services/basis/TextTable.h"
#include "services/pictures/SpectrumPlot.h"
#include "services/results/ResultComparison.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

// Longer side of a map in the picture.
constexpr int mapSide = 320;
constexpr int labelWidth = 44;
constexpr int plotHeight = 260;
constexpr int legendHeight = 36; // of a line of the legend
constexpr int legendMargin = 16;
constexpr int legendLine = 44;
constexpr int legendGap = 40;

// References are pale; results have colours in turn, whatever the number of references.
QColor rowColor(const ResultComparison& comparison, int nRow)
{
    static const QColor references[] = {QColor(170, 170, 170), QColor(222, 203, 158)};
    static const QColor results[] = {QColor(31, 119, 180), QColor(214, 39, 40), QColor(44, 160, 44),
                                     QColor(148, 103, 189), QColor(227, 137, 25)};
    int before = 0;
    for (int i = 0; i < nRow; ++i) {
        before += comparison.isReference(i) == comparison.isReference(nRow) ? 1 : 0;
    }
    return comparison.isReference(nRow) ? references[before % 2] : results[before % 5];
}

// A reference lies under the others as a broad line.
double rowLine(const ResultComparison& comparison, int nRow)
{
    return comparison.isReference(nRow) ? 6.0 : 2.0;
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

SpectrumPlot plotOfColumn(const ResultComparison& comparison, int nColumn)
{
    SpectrumPlot plot(QString(), QStringLiteral("image"), QStringLiteral("spectrum"));
    plot.setWholeX(true);
    plot.setLegend(false);
    for (int i = 0; i < comparison.rowCount(); ++i) {
        const ComparedComponent& component = comparison.at(i, nColumn);
        if (!component.present) {
            continue;
        }
        PlotCurve curve;
        curve.label = comparison.rowNames().at(i);
        curve.color = rowColor(comparison, i);
        curve.width = rowLine(comparison, i);
        curve.marker = comparison.isReference(i) ? PlotMarker::None : PlotMarker::Circle;
        for (std::size_t j = 0; j < component.spectrum.size(); ++j) {
            curve.x.append(static_cast<double>(j) + 1.0);
            curve.y.append(component.spectrum[j]);
        }
        plot.addCurve(curve);
    }
    return plot;
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

// Where the entries of the legend begin in an area of that width: as many lines as it takes.
QList<QPoint> legendPlaces(const QStringList& names, int nWidth)
{
    const QFontMetrics metrics(labelFont());
    QList<QPoint> places;
    QPoint place(legendMargin, 0);
    for (const QString& name : names) {
        const int width = legendLine + metrics.horizontalAdvance(name);
        if (place.x() > legendMargin && place.x() + width > nWidth) {
            place = QPoint(legendMargin, place.y() + legendHeight);
        }
        places.append(place);
        place.rx() += width + legendGap;
    }
    return places;
}

void drawLegend(QPainter& painter, const QPoint& corner, const QList<QPoint>& places,
                const ResultComparison& comparison)
{
    painter.setFont(labelFont());
    for (int i = 0; i < places.size(); ++i) {
        const QPoint place = corner + places[i];
        const int middle = place.y() + legendHeight / 2;
        painter.setPen(QPen(rowColor(comparison, i), rowLine(comparison, i)));
        painter.drawLine(place.x(), middle, place.x() + legendLine - 8, middle);
        painter.setPen(Qt::black);
        const QString& name = comparison.rowNames().at(i);
        painter.drawText(
            QRect(place.x() + legendLine, place.y(), painter.fontMetrics().horizontalAdvance(name) + 4, legendHeight),
            Qt::AlignVCenter | Qt::AlignLeft, name);
    }
}

} // namespace

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
    const QList<QPoint> legend = legendPlaces(comparison.rowNames(), columns * cell.width());
    QImage sheet(labelWidth + columns * cell.width(),
                 rows * cell.height() + plotHeight + legend.last().y() + legendHeight, QImage::Format_RGB32);
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
                          plotOfColumn(comparison, j).toImage(QSize(cell.width() - 12, plotHeight)));
    }
    drawLegend(painter, QPoint(labelWidth, top + plotHeight), legend, comparison);
    painter.end();
    return sheet;
}
