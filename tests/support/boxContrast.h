// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStyleOptionViewItem>

#include <algorithm>
#include <cmath>

// Boxes for ticks as a style draws them, and how far they stand off what is around them.
namespace boxcontrast {

inline constexpr int kSide = 13;
inline constexpr int kRoom = 21;
// W3C, Web Content Accessibility Guidelines 2.1, 1.4.11: of controls against what is around them.
inline constexpr double kLegible = 3.0;

// Relative luminance, as the guidelines define it.
inline double luminance(const QColor& color)
{
    const auto linear = [](double v) { return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

inline double contrast(const QColor& a, const QColor& b)
{
    const double first = luminance(a) + 0.05;
    const double second = luminance(b) + 0.05;
    return std::max(first / second, second / first);
}

// The box in the middle of a piece of window.
inline QImage drawn(const QStyle& style, QStyle::PrimitiveElement eBox, QStyle::State state, const QPalette& palette)
{
    QImage image(kRoom, kRoom, QImage::Format_RGB32);
    image.fill(palette.color(QPalette::Window));
    QPainter painter(&image);
    const auto draw = [&](QStyleOption& option) {
        option.palette = palette;
        option.state = state;
        const int margin = (kRoom - kSide) / 2;
        option.rect = QRect(margin, margin, kSide, kSide);
        style.drawPrimitive(eBox, &option, &painter);
    };
    if (eBox == QStyle::PE_IndicatorItemViewItemCheck) {
        QStyleOptionViewItem option;
        draw(option);
    } else {
        QStyleOptionButton option;
        draw(option);
    }
    return image;
}

// Of the outline against the window: the best that a line of pixels from the left meets on its way into the box.
inline double ofOutline(const QImage& image, const QPalette& palette)
{
    double best = 1.0;
    for (int x = 0; x < kRoom / 2 - 2; ++x) {
        best = std::max(best, contrast(image.pixelColor(x, kRoom / 2), palette.color(QPalette::Window)));
    }
    return best;
}

} // namespace boxcontrast
