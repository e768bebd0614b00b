// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/ColorBar.h"
#include "platform/orvimage/PictureFont.h"
#include "platform/orvimage/TickMarks.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <cmath>

namespace orvimage {

namespace {

// The bar itself, `length` by `thickness`, from the lower end at the left or at the bottom.
QImage gradientStrip(const CILPalette& palette, int length, int thickness, bool vertical)
{
    CILPalette even = palette;
    even.setLogScale(0);
    QImage strip(vertical ? thickness : length, vertical ? length : thickness, QImage::Format_ARGB32);
    for (int y = 0; y < strip.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(strip.scanLine(y));
        for (int x = 0; x < strip.width(); ++x) {
            const int place = vertical ? length - 1 - y : x;
            line[x] = even.colorAt(length > 1 ? place / (length - 1.0) : 0.0);
        }
    }
    return strip;
}

// Ticks of a bar with their texts and sizes.
struct Scale
{
    std::vector<double> values;
    TickLabels labels;
    QString caption; // the power of ten
    QString unit;
    int widest = 0;
};

Scale makeScale(double minimum, double maximum, int most, const QFontMetrics* metrics, const QStringList& unitLines)
{
    Scale scale;
    scale.values = tickValues(minimum, maximum, most);
    scale.labels = tickLabels(scale.values);
    scale.caption = exponentText(scale.labels.exponent);
    scale.unit = unitLines.join(QStringLiteral(", "));
    if (metrics != nullptr) {
        for (const QString& text : scale.labels.texts) {
            scale.widest = std::max(scale.widest, metrics->horizontalAdvance(text));
        }
    }
    return scale;
}

constexpr int kPaddingParts = 3; // of a line's height, between ticks and their texts

int barThickness(int em)
{
    return em * 5 / 4;
}

int tickLength(int em)
{
    return em * 2 / 5;
}

// Of the triangle beyond an end.
int tipLength(int em)
{
    return em * 4 / 5;
}

QRgb endColor(const CILPalette& palette, bool upper)
{
    CILPalette even = palette;
    even.setLogScale(0);
    return even.colorAt(upper ? 1.0 : 0.0);
}

void drawTip(QPainter& painter, const QPolygonF& triangle, QRgb color)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(QColor(color));
    painter.drawPolygon(triangle);
    painter.restore();
}

class HorizontalColorBar
{
public:
    HorizontalColorBar(const CILPalette& palette, double minimum, double maximum, int length,
                       const ColorBarOptions& options)
        : m_palette(palette), m_minimum(minimum), m_maximum(maximum), m_length(std::max(2, length)), m_options(options),
          m_font(pictureFont(options.fontPixels)), m_em(std::max(6, options.fontPixels))
    {
    }

    QImage picture() const;

private:
    int place(double value) const
    {
        return static_cast<int>(std::lround(colorBarPosition(m_palette, value, m_minimum, m_maximum) * (m_length - 1)));
    }
    void drawTips(QPainter& painter, int left) const;

    const CILPalette& m_palette;
    const double m_minimum, m_maximum;
    const int m_length;
    const ColorBarOptions& m_options;
    const QFont m_font;
    const int m_em;
};

void HorizontalColorBar::drawTips(QPainter& painter, int left) const
{
    const double bar = barThickness(m_em);
    const double tip = tipLength(m_em);
    const double right = left + m_length - 1;
    if (m_options.above) {
        drawTip(painter, QPolygonF({QPointF(right, 0), QPointF(right + tip, bar / 2), QPointF(right, bar)}),
                endColor(m_palette, true));
    }
    if (m_options.below) {
        drawTip(painter, QPolygonF({QPointF(left, 0), QPointF(left - tip, bar / 2), QPointF(left, bar)}),
                endColor(m_palette, false));
    }
}

QImage HorizontalColorBar::picture() const
{
    const bool texts = canDrawText();
    const QFontMetrics metrics(m_font);
    const Scale rough = makeScale(m_minimum, m_maximum, 4, texts ? &metrics : nullptr, m_options.unitLines);
    const int most = std::clamp(m_length / (2 * std::max(rough.widest, m_em)), 2, 9);
    const Scale scale = makeScale(m_minimum, m_maximum, most, texts ? &metrics : nullptr, m_options.unitLines);
    const int bar = barThickness(m_em);
    const int tick = tickLength(m_em);
    const bool tips = m_options.above || m_options.below;
    // A label may reach over the bar's end by half.
    const int beside = std::max(scale.widest / 2, tips ? tipLength(m_em) : 0) + 1;
    const int captionWidth = texts && !scale.caption.isEmpty() ? metrics.horizontalAdvance(scale.caption) + m_em : 0;
    const int captionPlace = captionWidth > 0 && m_options.above ? tipLength(m_em) : 0;
    const int width = beside + m_length + std::max(beside, captionWidth + captionPlace + m_em / 2);
    const int labels = bar + tick;
    const int unitTop = labels + (texts ? metrics.height() : 0);
    const int height = unitTop + (texts && !scale.unit.isEmpty() ? metrics.height() : 0) + 1;

    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(m_options.background);
    QPainter painter(&image);
    painter.drawImage(beside, 0, gradientStrip(m_palette, m_length, bar, false));
    painter.setPen(m_options.text);
    painter.drawRect(beside, 0, m_length - 1, bar);
    drawTips(painter, beside);
    painter.setFont(m_font);
    for (std::size_t i = 0; i < scale.values.size(); ++i) {
        const int x = beside + place(scale.values[i]);
        painter.drawLine(x, bar, x, bar + tick);
        if (texts) {
            painter.drawText(QRect(x - 2 * beside, labels, 4 * beside, metrics.height()), Qt::AlignCenter,
                             scale.labels.texts[static_cast<int>(i)]);
        }
    }
    if (texts) {
        painter.drawText(beside + m_length + m_em / 2 + (m_options.above ? tipLength(m_em) : 0),
                         (bar + metrics.ascent()) / 2, scale.caption);
        painter.drawText(QRect(beside, unitTop, m_length, metrics.height()), Qt::AlignCenter,
                         metrics.elidedText(scale.unit, Qt::ElideRight, m_length));
    }
    return image;
}

} // namespace

double colorBarPosition(const CILPalette& palette, double value, double minimum, double maximum)
{
    if (!(maximum > minimum) || std::isnan(value)) {
        return 0.0;
    }
    const double fraction = std::clamp((value - minimum) / (maximum - minimum), 0.0, 1.0);
    return palette.isLogScale() ? std::log10(1.0 + 9.0 * fraction) : fraction;
}

VerticalColorBar::VerticalColorBar(const CILPalette& palette, double minimum, double maximum, int length,
                                   const ColorBarOptions& options)
    : m_palette(palette), m_minimum(minimum), m_maximum(maximum), m_length(std::max(2, length)), m_options(options),
      m_em(std::max(6, options.fontPixels))
{
    const bool texts = canDrawText();
    const QFontMetrics metrics(pictureFont(options.fontPixels));
    const int most = std::clamp(m_length / (3 * m_em), 2, 9);
    const Scale scale = makeScale(minimum, maximum, most, texts ? &metrics : nullptr, options.unitLines);
    m_values = scale.values;
    m_labels = scale.labels;
    m_widest = scale.widest;
    m_text = barThickness(m_em) + tickLength(m_em) + m_em / kPaddingParts;
    const int captionWidth = texts ? metrics.horizontalAdvance(scale.caption) : 0;
    m_unit = std::max(m_text + scale.widest, captionWidth) + m_em / kPaddingParts;
    // Half a line of text over and under the bar, and a line more for the power of ten.
    const int end = m_em * 2 / 3;
    m_top = std::max(end, options.above ? tipLength(m_em) + 1 : 0) + (scale.caption.isEmpty() ? 0 : metrics.height());
    m_size = QSize(m_unit + (texts && !scale.unit.isEmpty() ? metrics.height() : 0),
                   m_top + m_length + std::max(end, options.below ? tipLength(m_em) + 1 : 0));
}

void VerticalColorBar::drawTips(QPainter& painter) const
{
    const double bar = barThickness(m_em);
    const double tip = tipLength(m_em);
    const double bottom = m_top + m_length - 1;
    if (m_options.above) {
        drawTip(painter, QPolygonF({QPointF(0, m_top), QPointF(bar / 2, m_top - tip), QPointF(bar, m_top)}),
                endColor(m_palette, true));
    }
    if (m_options.below) {
        drawTip(painter, QPolygonF({QPointF(0, bottom), QPointF(bar / 2, bottom + tip), QPointF(bar, bottom)}),
                endColor(m_palette, false));
    }
}

void VerticalColorBar::drawTicks(QPainter& painter) const
{
    const int bar = barThickness(m_em);
    for (std::size_t i = 0; i < m_values.size(); ++i) {
        const double part = colorBarPosition(m_palette, m_values[i], m_minimum, m_maximum);
        const int y = m_top + m_length - 1 - static_cast<int>(std::lround(part * (m_length - 1)));
        painter.drawLine(bar, y, bar + tickLength(m_em), y);
        if (canDrawText()) {
            painter.drawText(QRect(m_text, y - m_em, m_widest, 2 * m_em), Qt::AlignRight | Qt::AlignVCenter,
                             m_labels.texts[static_cast<int>(i)]);
        }
    }
}

void VerticalColorBar::draw(QPainter& painter) const
{
    const int bar = barThickness(m_em);
    const QFont font = pictureFont(m_options.fontPixels);
    const QFontMetrics metrics(font);
    painter.save();
    painter.drawImage(0, m_top, gradientStrip(m_palette, m_length, bar, true));
    painter.setPen(m_options.text);
    painter.drawRect(0, m_top, bar, m_length - 1);
    drawTips(painter);
    painter.setFont(font);
    drawTicks(painter);
    if (canDrawText()) {
        painter.drawText(0, metrics.ascent(), exponentText(m_labels.exponent));
        painter.translate(m_unit, m_top + m_length);
        painter.rotate(-90.0);
        painter.drawText(QRect(0, 0, m_length, metrics.height()), Qt::AlignCenter,
                         metrics.elidedText(m_options.unitLines.join(QStringLiteral(", ")), Qt::ElideRight, m_length));
    }
    painter.restore();
}

QImage drawColorBar(const CILPalette& palette, double minimum, double maximum, int length,
                    const ColorBarOptions& options)
{
    if (options.orientation == Qt::Horizontal) {
        return HorizontalColorBar(palette, minimum, maximum, length, options).picture();
    }
    const VerticalColorBar bar(palette, minimum, maximum, length, options);
    QImage image(bar.size(), QImage::Format_ARGB32);
    image.fill(options.background);
    QPainter painter(&image);
    bar.draw(painter);
    return image;
}

QImage withColorBar(const QImage& picture, const CILPalette& palette, double minimum, double maximum,
                    const ColorBarOptions& options)
{
    if (picture.isNull()) {
        return {};
    }
    const bool vertical = options.orientation == Qt::Vertical;
    const int em = std::max(6, options.fontPixels);
    const int length = vertical ? picture.height() - 3 * em : picture.width() * 4 / 5;
    const QImage bar = drawColorBar(palette, minimum, maximum, std::max(length, 4 * em), options);
    const int gap = em;
    const QSize size = vertical ? QSize(picture.width() + gap + bar.width(), std::max(picture.height(), bar.height()))
                                : QSize(std::max(picture.width(), bar.width()), picture.height() + gap + bar.height());
    QImage page(size, QImage::Format_ARGB32);
    page.fill(options.background);
    QPainter painter(&page);
    painter.drawImage(vertical ? 0 : (size.width() - picture.width()) / 2, 0, picture);
    if (vertical) {
        painter.drawImage(picture.width() + gap, std::max(0, (size.height() - bar.height()) / 2), bar);
    } else {
        painter.drawImage((size.width() - bar.width()) / 2, picture.height() + gap, bar);
    }
    return page;
}

} // namespace orvimage
