// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/pictures/SpectrumPlot.h"

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

QString tickText(double value)
{
    return QString::number(value, 'g', 6);
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

void drawAxes(QPainter& painter, const Frame& frame, const QVector<double>& xValues, const QString& strXLabel,
              const QString& strYLabel)
{
    const QFontMetricsF metrics(painter.font());
    const double height = metrics.height();
    for (const double v : xValues) {
        const auto p = frame.place(v, frame.y.low);
        painter.setPen(QPen(QColor(225, 225, 225), 1));
        painter.drawLine(QPointF(p.x(), frame.area.top()), p);
        painter.setPen(Qt::black);
        painter.drawText(QRectF(p.x() - 60, p.y() + 4, 120, height), Qt::AlignHCenter | Qt::AlignTop, tickText(v));
    }
    const auto yValues = frame.logarithmic ? SpectrumPlot::decades(frame.y.low, frame.y.high)
                                           : SpectrumPlot::ticks(frame.y.low, frame.y.high);
    for (const double v : yValues) {
        const auto p = frame.place(frame.x.low, frame.height(v));
        painter.setPen(QPen(QColor(225, 225, 225), 1));
        painter.drawLine(p, QPointF(frame.area.right(), p.y()));
        painter.setPen(Qt::black);
        painter.drawText(QRectF(0, p.y() - height / 2, p.x() - 6, height), Qt::AlignRight | Qt::AlignVCenter,
                         tickText(v));
    }
    painter.setPen(QPen(Qt::black, 1));
    painter.drawRect(frame.area);
    painter.drawText(QRectF(frame.area.left(), frame.area.bottom() + height + 8, frame.area.width(), height),
                     Qt::AlignHCenter | Qt::AlignTop, strXLabel);
    painter.save();
    painter.translate(height * 0.4, frame.area.center().y());
    painter.rotate(-90);
    painter.drawText(QRectF(-frame.area.height() / 2, 0, frame.area.height(), height), Qt::AlignHCenter | Qt::AlignTop,
                     strYLabel);
    painter.restore();
}

QPen curvePen(const PlotCurve& curve)
{
    return QPen(curve.color, curve.width, curve.style, Qt::RoundCap, Qt::RoundJoin);
}

void drawCurve(QPainter& painter, const Frame& frame, const PlotCurve& curve)
{
    QPainterPath path;
    bool drawing = false;
    painter.setPen(Qt::NoPen);
    painter.setBrush(curve.color);
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
        if (curve.markers) {
            painter.drawEllipse(p, 3.0, 3.0);
        }
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(curvePen(curve));
    painter.drawPath(path);
}

void drawLegend(QPainter& painter, const QRectF& area, const QList<PlotCurve>& curves)
{
    const QFontMetricsF metrics(painter.font());
    const double step = metrics.height() * 1.4;
    double y = area.top() + step / 2;
    for (const auto& curve : curves) {
        if (y > area.bottom()) {
            return;
        }
        painter.setPen(curvePen(curve));
        painter.drawLine(QPointF(area.left(), y), QPointF(area.left() + 24, y));
        painter.setPen(Qt::black);
        const double width = area.width() - 32;
        painter.drawText(QRectF(area.left() + 32, y - step / 2, width, step), Qt::AlignLeft | Qt::AlignVCenter,
                         metrics.elidedText(curve.label, Qt::ElideRight, width));
        y += step;
    }
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

void SpectrumPlot::draw(QPainter& painter, const QSize& size) const
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(QRect(QPoint(0, 0), size), Qt::white);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(std::max(11, size.height() / 36));
    painter.setFont(font);
    const double unit = QFontMetricsF(font).height();

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
    const double legendWidth = m_curves.isEmpty() || !m_bLegend ? 10.0 : size.width() * 0.24;
    frame.area = QRectF(5.0 * unit, 2.2 * unit, size.width() - 6.0 * unit - legendWidth, size.height() - 5.4 * unit);

    painter.setPen(Qt::black);
    painter.drawText(QRectF(frame.area.left(), 0.4 * unit, frame.area.width(), 1.5 * unit),
                     Qt::AlignHCenter | Qt::AlignTop, m_strTitle);
    drawAxes(painter, frame, xTicks(frame.x, m_bWholeX), m_strXLabel, m_strYLabel);
    for (const auto& curve : m_curves) {
        drawCurve(painter, frame, curve);
    }
    if (m_bLegend) {
        drawLegend(painter,
                   QRectF(frame.area.right() + unit, frame.area.top(), legendWidth - unit, frame.area.height()),
                   m_curves);
    }
}

QImage SpectrumPlot::toImage(const QSize& size) const
{
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    draw(painter, size);
    return image;
}

QByteArray SpectrumPlot::toSvg(const QSize& size) const
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setSize(size);
    generator.setViewBox(QRect(QPoint(0, 0), size));
    generator.setTitle(m_strTitle);
    QPainter painter(&generator);
    draw(painter, size);
    painter.end();
    return bytes;
}
