// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/cli/ComparisonPicture.h"

#include "platform/orvimage/RenderMap.h"
#include "workbench/cli/ResultComparison.h"
#include "workbench/cli/SpectrumPlot.h"
#include "workbench/cli/TextTable.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

// Longer side of a map in the picture.
constexpr int mapSide = 320;
constexpr int labelWidth = 44;
constexpr int plotHeight = 260;
constexpr int legendHeight = 36;

QColor rowColor(int nRow)
{
    static const QColor colors[] = {QColor(170, 170, 170), QColor(31, 119, 180),  QColor(214, 39, 40),
                                    QColor(44, 160, 44),   QColor(148, 103, 189), QColor(227, 137, 25)};
    return colors[nRow % 6];
}

// The reference lies under the others as a broad line.
double rowLine(int nRow)
{
    return nRow == 0 ? 6.0 : 2.0;
}

QString titleOf(const ResultComparison& comparison, int nRow, int nColumn)
{
    const ComparedComponent& component = comparison.at(nRow, nColumn);
    if (nRow == 0 || std::isnan(component.correlation))
        return component.name;
    return QStringLiteral("%1: correlation %2").arg(component.name, QString::number(component.correlation, 'f', 3));
}

// Large maps are brought down, small ones enlarged by whole pixels.
QImage renderCell(const ComparedComponent& component, const QString& strTitle, const orvimage::ValueRange& range,
                  const ComparisonStyle& style)
{
    CILImage map = component.map;
    const long side = std::max(map.m_lWidth, map.m_lHeight);
    if (side > mapSide)
        map.downSample(static_cast<int>(map.m_lWidth * mapSide / side),
                       static_cast<int>(map.m_lHeight * mapSide / side), IL_RESAMPLE_AREA);
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
    return orvimage::renderMapOverPhotograph(map, style.photograph, options);
}

// The range of the uppermost map that there is.
orvimage::ValueRange rangeOfColumn(const ResultComparison& comparison, int nColumn)
{
    for (int i = 0; i < comparison.rowCount(); ++i)
        if (comparison.at(i, nColumn).present)
            return orvimage::robustRange(comparison.at(i, nColumn).map);
    return {};
}

SpectrumPlot plotOfColumn(const ResultComparison& comparison, int nColumn)
{
    SpectrumPlot plot(QString(), QStringLiteral("image"), QStringLiteral("spectrum"));
    plot.setWholeX(true);
    plot.setLegend(false);
    for (int i = 0; i < comparison.rowCount(); ++i) {
        const ComparedComponent& component = comparison.at(i, nColumn);
        if (!component.present)
            continue;
        PlotCurve curve;
        curve.label = comparison.rowNames().at(i);
        curve.color = rowColor(i);
        curve.width = rowLine(i);
        curve.markers = i > 0;
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
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(18);
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

void drawLegend(QPainter& painter, const QRect& area, const QStringList& names)
{
    painter.setFont(labelFont());
    int x = area.left() + 16;
    for (int i = 0; i < names.size(); ++i) {
        painter.setPen(QPen(rowColor(i), rowLine(i)));
        painter.drawLine(x, area.center().y(), x + 36, area.center().y());
        painter.setPen(Qt::black);
        const int width = painter.fontMetrics().horizontalAdvance(names[i]);
        painter.drawText(QRect(x + 44, area.top(), width + 4, area.height()), Qt::AlignVCenter | Qt::AlignLeft,
                         names[i]);
        x += 44 + width + 40;
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
                                ? renderCell(component, titleOf(comparison, i, j), rangeOfColumn(comparison, j), style)
                                : QImage());
            cell = cell.expandedTo(cells.back().size());
        }
    }
    QImage sheet(labelWidth + columns * cell.width(), rows * cell.height() + plotHeight + legendHeight,
                 QImage::Format_RGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    for (int i = 0; i < rows; ++i) {
        drawSideways(painter, QRect(0, i * cell.height(), labelWidth, cell.height()), comparison.rowNames().at(i),
                     i == 0 ? QColor(Qt::black) : rowColor(i));
        for (int j = 0; j < columns; ++j)
            painter.drawImage(
                labelWidth + j * cell.width(), i * cell.height(),
                cells[static_cast<std::size_t>(i) * static_cast<std::size_t>(columns) + static_cast<std::size_t>(j)]);
    }
    const int top = rows * cell.height();
    drawSideways(painter, QRect(0, top, labelWidth, plotHeight), QStringLiteral("spectra"), Qt::black);
    for (int j = 0; j < columns; ++j)
        painter.drawImage(labelWidth + j * cell.width(), top,
                          plotOfColumn(comparison, j).toImage(QSize(cell.width() - 12, plotHeight)));
    drawLegend(painter, QRect(labelWidth, top + plotHeight, sheet.width() - labelWidth, legendHeight),
               comparison.rowNames());
    painter.end();
    return sheet;
}
