// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/HistogramView.h"

#include "host/CILHistogram.h"
#include "host/CILImage.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kBins = 128;
constexpr int kHeight = 72;

} // namespace

HistogramView::HistogramView(QWidget* pParent) : QWidget(pParent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleName(tr("Histogram"));
    setToolTip(tr("Number of pixels by value, on a logarithmic scale"));
}

void HistogramView::setImage(const CILImage& image, const DisplayRange& whole)
{
    m_whole = whole;
    m_heights.clear();
    if (!image.isEmpty() && !whole.isEmpty()) {
        CILHistogram histogram;
        histogram.setMaxBins(kBins);
        histogram.setImageMin(whole.minimum);
        histogram.setImageMax(whole.maximum);
        image.Histogram(histogram);
        const double most = *std::max_element(histogram.bins().begin(), histogram.bins().end());
        for (const double count : histogram.bins()) {
            m_heights.push_back(most > 0.0 ? std::log1p(count) / std::log1p(most) : 0.0);
        }
    }
    update();
}

void HistogramView::clearImage()
{
    m_heights.clear();
    update();
}

void HistogramView::setRange(const CILPalette& palette, const DisplayRange& range)
{
    m_colors = palette;
    m_range = range;
    update();
}

QSize HistogramView::sizeHint() const
{
    return {2 * kBins, kHeight};
}

QSize HistogramView::minimumSizeHint() const
{
    return {kBins, kHeight};
}

void HistogramView::paintEvent(QPaintEvent* /*pEvent*/)
{
    QPainter painter(this);
    const QColor ink = palette().color(QPalette::Text);
    painter.fillRect(rect(), palette().color(QPalette::Base));
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    if (m_heights.empty() || !isEnabled()) {
        return;
    }
    const QRectF room = QRectF(rect()).adjusted(1.0, 4.0, -1.0, -1.0);
    const double width = room.width() / static_cast<double>(m_heights.size());
    QColor bars = ink;
    bars.setAlphaF(0.55);
    for (std::size_t i = 0; i < m_heights.size(); ++i) {
        const double height = m_heights[i] * (room.height() - 5.0);
        painter.fillRect(
            QRectF(room.left() + width * static_cast<double>(i), room.bottom() - 5.0 - height, width, height), bars);
    }
    // Along the lower edge the colours, as the values have them.
    const RangeScale scale(m_whole);
    const auto steps = static_cast<int>(std::ceil(room.width()));
    for (int x = 0; x < steps; ++x) {
        const double value = scale.value(static_cast<int>(std::lround(1.0 * RangeScale::kSteps * x / steps)));
        painter.fillRect(QRectF(room.left() + x, room.bottom() - 4.0, 1.0, 4.0),
                         QColor(m_colors.map(value, m_range.minimum, m_range.maximum)));
    }
    painter.setPen(QPen(ink, 1.0));
    for (const double end : {m_range.minimum, m_range.maximum}) {
        const double x = room.left() + scale.step(end) * (room.width() - 1.0) / RangeScale::kSteps;
        painter.drawLine(QPointF(x, room.top()), QPointF(x, room.bottom()));
    }
}
