// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/StackedColorBar.h"
#include "platform/orvimage/PictureFont.h"
#include "platform/orvimage/TickMarks.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace orvimage {

namespace {

constexpr int kSmallestFont = 6;
constexpr int kDigits = 4;
// Powers of ten of the numbers that are written without one.
constexpr int kSmallestPlain = -3;
constexpr int kLargestPlain = 4;
constexpr int kThickness = 2; // of the bar, in ems
// Height of a number's box in font heights, and the way from it to the first line of the unit.
constexpr double kNumberBox = 1.25;
constexpr double kUnitGap = 0.5;

QString withoutTrailingZeros(QString number)
{
    if (number.contains(QLatin1Char('.'))) {
        while (number.endsWith(QLatin1Char('0'))) {
            number.chop(1);
        }
        if (number.endsWith(QLatin1Char('.'))) {
            number.chop(1);
        }
    }
    return number;
}

// The texts around a bar with their sizes.
struct TextLayout
{
    QString maximum;
    QString minimum;
    int lineHeight = 0;
    int ascent = 0;
    int descent = 0;
    int width = 0;
    int below = 0; // pixels under the bar
};

TextLayout layOut(double minimum, double maximum, const QFontMetrics& metrics, const QList<ColorBarTextLine>& lines)
{
    TextLayout layout;
    layout.maximum = colorBarNumber(maximum);
    layout.minimum = colorBarNumber(minimum);
    layout.lineHeight = metrics.height();
    layout.ascent = metrics.ascent();
    layout.descent = metrics.descent();
    layout.width = std::max(metrics.horizontalAdvance(layout.maximum), metrics.horizontalAdvance(layout.minimum));
    double lowest = -kUnitGap; // baseline of the lowest line from that of the first, or the end of the minimum's box
    for (const ColorBarTextLine& line : lines) {
        layout.width = std::max(layout.width, metrics.horizontalAdvance(line.text));
        lowest = std::max(lowest, line.offset);
    }
    const int hanging = lines.isEmpty() ? 0 : layout.descent;
    layout.below = static_cast<int>(std::ceil((kNumberBox + kUnitGap + lowest) * layout.lineHeight)) + hanging;
    return layout;
}

} // namespace

QImage colorBarStrip(const CILPalette& palette, int width, int height)
{
    QImage strip(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < strip.height(); ++y) {
        const QRgb color = palette.colorAt(height > 1 ? (height - 1.0 - y) / (height - 1.0) : 0.0);
        auto* line = reinterpret_cast<QRgb*>(strip.scanLine(y));
        std::fill(line, line + width, color);
    }
    return strip;
}

QString colorBarNumber(double value)
{
    if (!std::isfinite(value)) {
        return QStringLiteral("-");
    }
    const QString text = QString::number(value, 'e', kDigits - 1);
    const int split = text.indexOf(QLatin1Char('e'));
    const int exponent = text.mid(split + 1).toInt();
    if (exponent >= kSmallestPlain && exponent <= kLargestPlain) {
        return withoutTrailingZeros(QString::number(value, 'f', std::max(0, kDigits - 1 - exponent)));
    }
    return withoutTrailingZeros(text.left(split)) + exponentText(exponent);
}

QImage drawStackedColorBar(const CILPalette& palette, double minimum, double maximum, int height,
                           const StackedColorBarOptions& options)
{
    const bool texts = canDrawText();
    const int em = std::max(kSmallestFont, options.fontPixels);
    const int length = std::max(2, height);
    const int thickness = em * kThickness;
    const QFont font = pictureFont(em);
    TextLayout layout;
    if (texts) {
        layout = layOut(minimum, maximum, QFontMetrics(font), options.lines);
    }
    const int margin = em / 2;
    const int top = margin + layout.lineHeight;
    const int bottom = top + length; // the first row under the bar
    QImage image(2 * margin + std::max(thickness, layout.width), bottom + layout.below + margin, QImage::Format_ARGB32);
    image.fill(options.background);

    QPainter painter(&image);
    painter.drawImage(margin, top, colorBarStrip(palette, thickness, length));
    painter.setPen(options.text);
    painter.drawRect(margin - 1, top - 1, thickness + 1, length + 1);
    if (!texts) {
        return image;
    }
    painter.setFont(font);
    painter.drawText(margin, top - layout.descent, layout.maximum);
    painter.drawText(margin, bottom + layout.ascent, layout.minimum);
    const double first = bottom + (kNumberBox + kUnitGap) * layout.lineHeight;
    for (const ColorBarTextLine& line : options.lines) {
        painter.drawText(QPointF(margin, first + line.offset * layout.lineHeight), line.text);
    }
    return image;
}

} // namespace orvimage
