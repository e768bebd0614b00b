// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/PlotChart.h"

#include "platform/orvwidgets/PlotLegend.h"
#include "platform/orvwidgets/PlotView.h"

#include <QGraphicsLayout>
#include <QGraphicsSimpleTextItem>
#include <QLabel>
#include <QLegend>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace orv {

using QtCharts::QChart;
using QtCharts::QLineSeries;
using QtCharts::QValueAxis;

namespace {

// Numbers from 0.1 to below 1000 are told in full, on the x axis, with its wavelengths and seconds, up to a million.
constexpr double smallestPlainY = 0.1;
constexpr double limitOfPlainY = 1e3;
constexpr double smallestPlainX = 1e-3;
constexpr double limitOfPlainX = 1e6;

// Labels of axes and titles are read as markup by the chart.
QString asShown(const QString& strText)
{
    return strText.toHtmlEscaped();
}

QString elided(const QString& strText, int nMost)
{
    return strText.size() <= nMost ? strText : strText.left(nMost - 1) + QChar(0x2026);
}

} // namespace

PlotChart::PlotChart(PlotView* pView, PlotLegend* pLegend, const QString& strTitle)
    : m_pView(pView), m_pLegend(pLegend), m_pChart(pView->chart()), m_pX(new QValueAxis), m_pY(new QValueAxis),
      m_strTitle(strTitle)
{
    m_pChart->setMargins(QMargins(0, 0, 0, 0));
    m_pChart->layout()->setContentsMargins(0, 0, 0, 0);
    m_pChart->setBackgroundRoundness(0.0);
    m_pChart->legend()->hide();
    for (QValueAxis* pAxis : {m_pX, m_pY}) {
        pAxis->setTickType(QValueAxis::TicksDynamic);
        pAxis->setTickAnchor(0.0);
    }
    m_pChart->addAxis(m_pX, Qt::AlignBottom);
    m_pChart->addAxis(m_pY, Qt::AlignLeft);
    m_pPower = new QGraphicsSimpleTextItem(m_pChart);

    m_pReadOut = new QLabel(m_pView);
    m_pReadOut->setObjectName(QStringLiteral("readOut"));
    m_pReadOut->setTextFormat(Qt::PlainText);
    m_pReadOut->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_pReadOut->setAutoFillBackground(true);
    m_pReadOut->setMargin(3);
    m_pReadOut->hide();

    connect(m_pChart, &QChart::plotAreaChanged, this, [this] { updatePowerText(); });
    connect(m_pView, &PlotView::rectangleDrawn, this, &PlotChart::applyZoom);
    connect(m_pView, &PlotView::doubleClicked, this, [this] { setZoom(QRectF()); });
    connect(m_pView, &PlotView::pointed, this, &PlotChart::showReadOut);
    connect(m_pView, &PlotView::left, m_pReadOut, &QLabel::hide);
    connect(m_pView, &PlotView::resized, this, &PlotChart::takeRoom);
    takeRoom();
}

PlotChart::~PlotChart() = default;

void PlotChart::setYDecimals(const QString& strFormat)
{
    m_nYDecimals = formatDecimals(strFormat);
    updateScales();
}

void PlotChart::setColors(const QPalette& palette)
{
    m_palette = palette;
    const QColor base = palette.color(QPalette::Base);
    const QColor text = palette.color(QPalette::Text);
    QColor faint = text;
    faint.setAlpha(50);
    m_pView->setBackgroundBrush(base);
    m_pChart->setBackgroundBrush(base);
    m_pChart->setTitleBrush(text);
    m_pPower->setBrush(text);
    for (QValueAxis* pAxis : {m_pX, m_pY}) {
        pAxis->setLabelsColor(text);
        pAxis->setTitleBrush(text);
        pAxis->setLinePenColor(text);
        pAxis->setGridLineColor(faint);
    }
    m_pReadOut->setPalette(QToolTip::palette());
    for (auto line = m_series.constBegin(); line != m_series.constEnd(); ++line) {
        applyPen(line.key());
    }
    updateLegend();
}

void PlotChart::setFonts()
{
    const QSize room = m_pView->size();
    QFont font = m_pView->font();
    font.setPointSizeF(room.width() < 400 ? 7.0 : 8.0);
    m_pX->setLabelsFont(font);
    m_pY->setLabelsFont(font);
    m_pX->setTitleFont(font);
    m_pLegend->setFont(font);
    m_pPower->setFont(font);
    font.setBold(true);
    m_pChart->setTitleFont(font);
    // In a low plot the title would take the room of a mark.
    constexpr int roomForTitle = 260;
    m_pChart->setTitle(room.height() < roomForTitle ? QString() : asShown(m_strTitle));
}

void PlotChart::takeRoom()
{
    setFonts();
    updateScales();
}

void PlotChart::setDisplaySettings(const QString& strKey, const SPlotDisplaySettings& settings)
{
    m_settings.insert(strKey, settings);
    applyPen(strKey);
    updateLegend();
}

void PlotChart::setChanged(const QString& strKey)
{
    m_changed.insert(strKey);
}

void PlotChart::remove(const QString& strKey)
{
    for (QLineSeries* pSeries : m_series.take(strKey)) {
        m_pChart->removeSeries(pSeries);
        delete pSeries;
    }
    m_settings.remove(strKey);
    m_changed.remove(strKey);
    const auto isThis = [&strKey](const PlotLine& line) { return line.m_strKey == strKey; };
    m_lines.erase(std::remove_if(m_lines.begin(), m_lines.end(), isThis), m_lines.end());
    m_pReadOut->hide();
    updateLegend();
}

void PlotChart::clear()
{
    m_pChart->removeAllSeries();
    m_series.clear();
    m_settings.clear();
    m_changed.clear();
    m_lines.clear();
    m_pReadOut->hide();
    updateLegend();
}

void PlotChart::show(const QVector<PlotLine>& lines, const QString& strXLabel)
{
    m_lines = lines;
    const PlotExtent extent = plotExtent(lines);
    if (extent.m_dXLow != m_extent.m_dXLow || extent.m_dXHigh != m_extent.m_dXHigh) {
        m_zoom = QRectF();
    }
    m_extent = extent;
    m_pX->setTitleText(asShown(strXLabel));
    m_pX->setTitleVisible(!strXLabel.isEmpty());
    updateScales();
    for (const PlotLine& line : lines) {
        if (m_changed.contains(line.m_strKey) || !m_series.contains(line.m_strKey)) {
            updateSeries(line);
        }
    }
    m_changed.clear();
    updateLegend();
}

void PlotChart::updateLegend()
{
    QVector<PlotLegend::Entry> entries;
    for (const PlotLine& line : qAsConst(m_lines)) {
        entries.append({line.m_strLabel, shownColor(line.m_strKey)});
    }
    m_pLegend->setEntries(entries);
}

// The axes for what is shown. When a power changes, so do all mantissas.
void PlotChart::updateScales()
{
    const bool bZoomed = !m_zoom.isNull();
    const PlotExtent part =
        bZoomed ? PlotExtent{m_zoom.left(), m_zoom.right(), m_zoom.top(), m_zoom.bottom()} : m_extent;
    // Room for a number at each mark.
    const int nXMarks = std::clamp(m_pView->width() / 60, 2, 10);
    const int nYMarks = std::clamp(m_pView->height() / 45, 2, 8);
    const AxisScale x = axisScale(part.m_dXLow, part.m_dXHigh, nXMarks, 0, false, smallestPlainX, limitOfPlainX);
    const AxisScale y =
        axisScale(part.m_dYLow, part.m_dYHigh, nYMarks, m_nYDecimals, !bZoomed, smallestPlainY, limitOfPlainY);
    const bool bOtherPower = x.m_nPower != m_xScale.m_nPower || y.m_nPower != m_yScale.m_nPower;
    m_xScale = x;
    m_yScale = y;
    updateAxis(m_pX, x);
    updateAxis(m_pY, y);
    if (bOtherPower) {
        for (const PlotLine& line : qAsConst(m_lines)) {
            updateSeries(line);
        }
    }
    const QString power = powerText(y.m_nPower);
    m_pPower->setText(power);
    // The power of x, where there is one, goes with the label's line.
    const int nTop = power.isEmpty() ? 2 : static_cast<int>(std::ceil(m_pPower->boundingRect().height()));
    m_pChart->setMargins(QMargins(0, nTop, 4, 0));
    updatePowerText();
}

void PlotChart::updateAxis(QValueAxis* pAxis, const AxisScale& scale)
{
    // Few steps first: between the old step and the new range there may be millions of marks.
    const double dExtent = scale.m_dHigh - scale.m_dLow;
    pAxis->setTickInterval(std::max(scale.m_dStep, (pAxis->max() - pAxis->min()) / 10.0));
    pAxis->setRange(scale.m_dLow, scale.m_dHigh);
    pAxis->setTickInterval(std::min(scale.m_dStep, dExtent));
    const QString power = pAxis == m_pX ? powerText(scale.m_nPower) : QString();
    pAxis->setLabelFormat(QStringLiteral("%.%1f").arg(scale.m_nDecimals) + power);
}

void PlotChart::updateSeries(const PlotLine& line)
{
    for (QLineSeries* pSeries : m_series.take(line.m_strKey)) {
        m_pChart->removeSeries(pSeries);
        delete pSeries;
    }
    QVector<QLineSeries*>& all = m_series[line.m_strKey];
    for (const auto& segment : plotSegments(line.m_x, line.m_y)) {
        auto* pSeries = new QLineSeries;
        QVector<QPointF> points;
        for (const QPointF& point : segment) {
            points.append({mantissa(point.x(), m_xScale.m_nPower), mantissa(point.y(), m_yScale.m_nPower)});
        }
        pSeries->replace(points);
        m_pChart->addSeries(pSeries);
        pSeries->attachAxis(m_pX);
        pSeries->attachAxis(m_pY);
        all.append(pSeries);
    }
    applyPen(line.m_strKey);
}

QColor PlotChart::shownColor(const QString& strKey) const
{
    const QColor text = m_palette.color(QPalette::Text);
    const QColor wish = m_settings.value(strKey).color;
    return wish.isValid() ? legibleColor(wish, m_palette.color(QPalette::Base), text) : text;
}

// To be called behind addSeries(), which gives a series with a black pen a colour of its theme.
void PlotChart::applyPen(const QString& strKey)
{
    const SPlotDisplaySettings settings = m_settings.value(strKey);
    QPen pen(shownColor(strKey), settings.width, settings.dashed ? Qt::DashLine : Qt::SolidLine);
    pen.setCosmetic(true);
    for (QLineSeries* pSeries : m_series.value(strKey)) {
        pSeries->setPen(pen);
        pSeries->setPointsVisible(settings.showPoints || pSeries->count() == 1);
    }
}

void PlotChart::updatePowerText()
{
    const QRectF area = m_pChart->plotArea();
    m_pPower->setPos(area.left() - m_pPower->boundingRect().width() / 2.0,
                     std::max(0.0, area.top() - m_pPower->boundingRect().height() - 3.0));
}

void PlotChart::setZoom(const QRectF& part)
{
    m_zoom = part.normalized();
    m_pReadOut->hide();
    updateScales();
}

void PlotChart::applyZoom(const QRect& rect)
{
    const QRectF inside = QRectF(rect).intersected(m_pChart->plotArea());
    if (inside.isEmpty() || m_lines.isEmpty()) {
        return;
    }
    const QPointF a = m_pChart->mapToValue(inside.topLeft());
    const QPointF b = m_pChart->mapToValue(inside.bottomRight());
    const auto x = [this](double dMantissa) { return fromMantissa(dMantissa, m_xScale.m_nPower); };
    const auto y = [this](double dMantissa) { return fromMantissa(dMantissa, m_yScale.m_nPower); };
    const QRectF part = QRectF(QPointF(x(a.x()), y(b.y())), QPointF(x(b.x()), y(a.y()))).normalized();
    // Further in, marks could no longer be told from each other.
    constexpr double deepest = 1e-6;
    if (part.width() > deepest * (m_extent.m_dXHigh - m_extent.m_dXLow) &&
        part.height() > deepest * (m_extent.m_dYHigh - m_extent.m_dYLow)) {
        setZoom(part);
    }
}

QString PlotChart::readOut(const QPoint& place) const
{
    constexpr double reach = 12.0; // pixels
    double dNearest = reach;
    QString text;
    for (const PlotLine& line : m_lines) {
        for (int i = 0; i < line.m_x.size(); ++i) {
            if (!std::isfinite(line.m_x[i]) || !std::isfinite(line.m_y[i])) {
                continue;
            }
            const QPointF point(mantissa(line.m_x[i], m_xScale.m_nPower), mantissa(line.m_y[i], m_yScale.m_nPower));
            const QPointF shown = m_pChart->mapToPosition(point);
            const double dAway = std::hypot(shown.x() - place.x(), shown.y() - place.y());
            if (dAway < dNearest) {
                dNearest = dAway;
                constexpr int digits = 6;
                text = elided(line.m_strLabel, 40) + QLatin1Char('\n') + QString::number(line.m_x[i], 'g', digits) +
                       QLatin1String(", ") + QString::number(line.m_y[i], 'g', digits);
            }
        }
    }
    return text;
}

void PlotChart::showReadOut(const QPoint& place)
{
    const QString text = readOut(place);
    m_pReadOut->setVisible(!text.isEmpty());
    if (text.isEmpty()) {
        return;
    }
    m_pReadOut->setText(text);
    m_pReadOut->adjustSize();
    // Beside the pointer and inside the view.
    const int nRight = place.x() + 12;
    const bool bFits = nRight + m_pReadOut->width() <= m_pView->width();
    const int nLeft = bFits ? nRight : std::max(0, place.x() - 12 - m_pReadOut->width());
    const int nTop =
        std::clamp(place.y() - m_pReadOut->height() / 2, 0, std::max(0, m_pView->height() - m_pReadOut->height()));
    m_pReadOut->move(nLeft, nTop);
}

} // namespace orv
