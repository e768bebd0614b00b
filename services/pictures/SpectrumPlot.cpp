// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/pictures/SpectrumPlot.h"

#include "platform/orvimage/PictureFont.h"
#include "platform/orvimage/TickMarks.h"
#include "services/pictures/PlotLegend.h"

#include <QBuffer>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QSvgGenerator>

#include <algorithm>
#include <cmath>

namespace {

struct Range
{
    double low = 0.0;
    double high = 1.0;
    double fraction(double v) const { return (v - low) / (high - low); }
};

// From plot coordinates to the page. Up a logarithmic axis the range is that of the logarithms.
struct Frame
{
    QRectF area;
    Range x;
    Range y;
    bool logarithmic = false;
    double height(double vy) const { return logarithmic ? std::log10(vy) : vy; }
    QPointF place(double vx, double h) const
    {
        return {area.left() + x.fraction(vx) * area.width(), area.bottom() - y.fraction(h) * area.height()};
    }
    bool shows(const PlotCurve& curve, int i) const
    {
        return std::isfinite(curve.x[i]) && std::isfinite(height(curve.y[i]));
    }
};

Range rangeOf(const QList<PlotCurve>& curves, const Frame& frame, bool ofX)
{
    Range range{HUGE_VAL, -HUGE_VAL};
    for (const auto& curve : curves) {
        for (int i = 0; i < std::min(curve.x.size(), curve.y.size()); ++i) {
            if (!frame.shows(curve, i)) {
                continue;
            }
            const double v = ofX ? curve.x[i] : frame.height(curve.y[i]);
            range.low = std::min(range.low, v);
            range.high = std::max(range.high, v);
        }
    }
    if (!(range.low <= range.high)) {
        return Range{};
    }
    if (range.low == range.high) {
        const double half = range.low == 0.0 ? 1.0 : std::abs(range.low) * 0.5;
        range = Range{range.low - half, range.high + half};
    }
    return range;
}

// A tick a text: powers of ten each by itself, other values with the same number of decimals and a common power of ten.
orvimage::TickLabels labelsOf(const QVector<double>& values, bool bLogarithmic)
{
    orvimage::TickLabels labels;
    if (!bLogarithmic) {
        return orvimage::tickLabels(std::vector<double>(values.begin(), values.end()));
    }
    for (const double value : values) {
        labels.texts.append(QString::number(value, 'g', 6));
    }
    return labels;
}

QVector<double> xTicks(const Range& range, bool bWhole)
{
    QVector<double> values = SpectrumPlot::ticks(range.low, range.high);
    if (bWhole) {
        values.erase(
            std::remove_if(values.begin(), values.end(), [](double v) { return std::abs(v - std::round(v)) > 1e-9; }),
            values.end());
    }
    return values;
}

void drawXTicks(QPainter& painter, const Frame& frame, const QVector<double>& values)
{
    const double height = QFontMetricsF(painter.font()).height();
    const orvimage::TickLabels labels = labelsOf(values, false);
    for (int i = 0; i < values.size(); ++i) {
        const auto p = frame.place(values[i], frame.y.low);
        painter.setPen(QPen(QColor(225, 225, 225), 1));
        painter.drawLine(QPointF(p.x(), frame.area.top()), p);
        painter.setPen(Qt::black);
        painter.drawText(QRectF(p.x() - 60, p.y() + 4, 120, height), Qt::AlignHCenter | Qt::AlignTop, labels.texts[i]);
    }
    painter.drawText(QRectF(frame.area.right() - 120, frame.area.bottom() + height + 8, 120, height),
                     Qt::AlignRight | Qt::AlignTop, orvimage::exponentText(labels.exponent));
}

void drawXNames(QPainter& painter, const Frame& frame, const QVector<PlotName>& names)
{
    const AxisNames texts(names, QFontMetricsF(painter.font()), frame.area.width());
    for (int i = 0; i < names.size(); i += texts.step()) {
        const auto p = frame.place(names[i].x, frame.y.low);
        painter.setPen(QPen(QColor(225, 225, 225), 1));
        painter.drawLine(QPointF(p.x(), frame.area.top()), p);
        painter.setPen(Qt::black);
        texts.draw(painter, p, names[i].text);
    }
}

void drawYTicks(QPainter& painter, const Frame& frame)
{
    const double height = QFontMetricsF(painter.font()).height();
    const auto values = frame.logarithmic ? SpectrumPlot::decades(frame.y.low, frame.y.high)
                                          : SpectrumPlot::ticks(frame.y.low, frame.y.high);
    const orvimage::TickLabels labels = labelsOf(values, frame.logarithmic);
    for (int i = 0; i < values.size(); ++i) {
        const auto p = frame.place(frame.x.low, frame.height(values[i]));
        painter.setPen(QPen(QColor(225, 225, 225), 1));
        painter.drawLine(p, QPointF(frame.area.right(), p.y()));
        painter.setPen(Qt::black);
        painter.drawText(QRectF(0, p.y() - height / 2, p.x() - 6, height), Qt::AlignRight | Qt::AlignVCenter,
                         labels.texts[i]);
    }
    painter.drawText(QRectF(frame.area.left() - 3 * height, frame.area.top() - height * 1.4, 6 * height, height),
                     Qt::AlignLeft | Qt::AlignVCenter, orvimage::exponentText(labels.exponent));
}

// `dBelow`: the height of what stands along the lower axis.
void drawAxes(QPainter& painter, const Frame& frame, double dBelow, const QString& strXLabel, const QString& strYLabel)
{
    const double height = QFontMetricsF(painter.font()).height();
    drawYTicks(painter, frame);
    painter.setPen(QPen(Qt::black, 1));
    painter.drawRect(frame.area);
    painter.drawText(QRectF(frame.area.left(), frame.area.bottom() + dBelow + 8, frame.area.width(), height),
                     Qt::AlignHCenter | Qt::AlignTop, strXLabel);
    painter.save();
    painter.translate(height * 0.4, frame.area.center().y());
    painter.rotate(-90);
    painter.drawText(QRectF(-frame.area.height() / 2, 0, frame.area.height(), height), Qt::AlignHCenter | Qt::AlignTop,
                     strYLabel);
    painter.restore();
}

void drawCurve(QPainter& painter, const Frame& frame, const PlotCurve& curve)
{
    QPainterPath path;
    bool drawing = false;
    for (int i = 0; i < std::min(curve.x.size(), curve.y.size()); ++i) {
        if (!frame.shows(curve, i)) {
            drawing = false;
            continue;
        }
        const auto p = frame.place(curve.x[i], frame.height(curve.y[i]));
        if (drawing) {
            path.lineTo(p);
        } else {
            path.moveTo(p);
        }
        drawing = true;
        drawMarker(painter, curve, p);
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(curvePen(curve));
    painter.drawPath(path);
}

} // namespace

SpectrumPlot::SpectrumPlot(const QString& strTitle, const QString& strXLabel, const QString& strYLabel)
    : m_strTitle(strTitle), m_strXLabel(strXLabel), m_strYLabel(strYLabel)
{
}

QVector<double> SpectrumPlot::ticks(double minimum, double maximum)
{
    const double span = maximum - minimum;
    if (!(span > 0.0) || !std::isfinite(span)) {
        return {};
    }
    const double decade = std::pow(10.0, std::floor(std::log10(span)));
    double step = decade * 0.2;
    for (const double factor : {2.0, 1.0, 0.5}) {
        if (span / (decade * factor) >= 4.0) {
            step = decade * factor;
            break;
        }
    }
    QVector<double> values;
    const double first = std::ceil(minimum / step - 1e-9);
    const double last = std::floor(maximum / step + 1e-9);
    // A span of denormal numbers has no step.
    if (!(last - first < 100.0)) {
        return values;
    }
    const int count = static_cast<int>(std::lround(last - first)) + 1;
    for (int k = 0; k < count; ++k) {
        values.append((first + k) * step + 0.0); // no -0
    }
    return values;
}

QVector<double> SpectrumPlot::decades(double minimum, double maximum)
{
    constexpr int most = 8;
    // Logarithms of what a double can hold.
    constexpr double farthest = 400.0;
    if (!(maximum > minimum) || !(minimum > -farthest) || !(maximum < farthest)) {
        return {};
    }
    const int first = static_cast<int>(std::ceil(minimum - 1e-9));
    const int last = static_cast<int>(std::floor(maximum + 1e-9));
    const int step = std::max(1, (last - first + most) / most);
    QVector<double> values;
    for (int k = first; k <= last; k += step) {
        values.append(std::pow(10.0, k));
    }
    return values;
}

// Where what stands on the page.
struct SpectrumPlot::Layout
{
    QSize page;
    QFont font;
    double unit = 0.0;     // height of a line of text
    double below = 0.0;    // height of what stands along the lower axis
    QRectF area;           // of the curves
    QRectF legend;         // its width counts
    int legendColumns = 0; // 0: without one
};

// Names below the axis take from the height of the curves.
SpectrumPlot::Layout SpectrumPlot::layoutOf(const QSize& least) const
{
    Layout layout = layoutWithoutNames(least);
    const AxisNames names(m_xNames, QFontMetricsF(layout.font), layout.area.width());
    layout.below = std::max(layout.unit, names.depth());
    layout.area.setHeight(layout.area.height() - (layout.below - layout.unit));
    return layout;
}

SpectrumPlot::Layout SpectrumPlot::layoutWithoutNames(const QSize& least) const
{
    Layout layout;
    layout.page = least;
    layout.font = orvimage::pictureFont(std::max(11, least.height() / 36));
    const double unit = QFontMetricsF(layout.font).height();
    layout.unit = unit;
    layout.area = QRectF(5.0 * unit, 2.2 * unit, least.width() - 6.0 * unit - 10.0, least.height() - 5.4 * unit);
    const PlotLegend legend(m_curves, layout.font);
    if (!m_bLegend || legend.isEmpty()) {
        return layout;
    }
    const double beside = least.width() * 0.24;
    if (legend.height(beside - unit, 1) <= layout.area.height()) {
        layout.legendColumns = 1;
        layout.area.setWidth(least.width() - 6.0 * unit - beside);
        layout.legend = QRectF(layout.area.right() + unit, layout.area.top(), beside - unit, layout.area.height());
        return layout;
    }
    const double width = least.width() - 2.0 * unit;
    layout.legendColumns = legend.columnsIn(width);
    const double height = std::ceil(legend.height(width, layout.legendColumns) + unit / 2.0);
    layout.legend = QRectF(unit, least.height(), width, height);
    layout.page.setHeight(least.height() + static_cast<int>(height));
    return layout;
}

QSize SpectrumPlot::pageSize(const QSize& least) const
{
    return layoutOf(least).page;
}

void SpectrumPlot::draw(QPainter& painter, const QSize& least) const
{
    const Layout layout = layoutOf(least);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(QRect(QPoint(0, 0), layout.page), Qt::white);
    painter.setFont(layout.font);

    Frame frame;
    frame.logarithmic = m_bLogarithmicY;
    frame.x = rangeOf(m_curves, frame, true);
    frame.y = rangeOf(m_curves, frame, false);
    if (m_bLogarithmicY) {
        frame.y = Range{std::floor(frame.y.low), std::max(std::ceil(frame.y.high), std::floor(frame.y.low) + 1.0)};
    } else {
        frame.y.low = std::min(0.0, frame.y.low);
    }
    const double margin = (frame.x.high - frame.x.low) * 0.02;
    frame.x = Range{frame.x.low - margin, frame.x.high + margin};
    frame.y.high += (frame.y.high - frame.y.low) * 0.04;
    frame.area = layout.area;

    painter.setPen(Qt::black);
    painter.drawText(QRectF(frame.area.left(), 0.4 * layout.unit, frame.area.width(), 1.5 * layout.unit),
                     Qt::AlignHCenter | Qt::AlignTop, m_strTitle);
    if (m_xNames.isEmpty()) {
        drawXTicks(painter, frame, xTicks(frame.x, m_bWholeX));
    } else {
        drawXNames(painter, frame, m_xNames);
    }
    drawAxes(painter, frame, layout.below, m_strXLabel, m_strYLabel);
    for (const auto& curve : m_curves) {
        drawCurve(painter, frame, curve);
    }
    if (layout.legendColumns > 0) {
        PlotLegend(m_curves, layout.font).draw(painter, layout.legend, layout.legendColumns);
    }
}

QImage SpectrumPlot::toImage(const QSize& least) const
{
    QImage image(pageSize(least), QImage::Format_RGB32);
    QPainter painter(&image);
    draw(painter, least);
    return image;
}

QByteArray SpectrumPlot::toSvg(const QSize& least) const
{
    const QSize page = pageSize(least);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setSize(page);
    generator.setViewBox(QRect(QPoint(0, 0), page));
    generator.setTitle(m_strTitle);
    QPainter painter(&generator);
    draw(painter, least);
    painter.end();
    return bytes;
}
