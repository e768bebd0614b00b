// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <algorithm>
#include <cmath>

// Pictures and blends pixel by pixel, each by the formula as it is told: what the fast paths are held against.
namespace plain {

inline int luma(QRgb color)
{
    return (299 * qRed(color) + 587 * qGreen(color) + 114 * qBlue(color) + 500) / 1000;
}

inline QRgb shown(QRgb color, unsigned format)
{
    if (format == 0x1908) {
        return color;
    }
    if (format == 0x1909) {
        return qRgb(luma(color), luma(color), luma(color));
    }
    return color | 0xff000000U;
}

// The picture of an image without colours of its own.
inline QImage pictureOf(const CILImage& image)
{
    const auto width = static_cast<int>(image.m_lWidth);
    const auto height = static_cast<int>(image.m_lHeight);
    double minimum = image.getPalette()->imageMin();
    double maximum = image.getPalette()->imageMax();
    if (!image.getPalette()->hasImageMinMax()) {
        bool any = false;
        minimum = maximum = 0.0;
        for (std::size_t i = 0; i < image.pixelCount(); ++i) {
            const double v = image.value(i);
            if (std::isfinite(v)) {
                minimum = any ? std::min(minimum, v) : v;
                maximum = any ? std::max(maximum, v) : v;
                any = true;
            }
        }
    }
    QImage picture(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double v = image.value(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                                         static_cast<std::size_t>(x));
            reinterpret_cast<QRgb*>(picture.scanLine(y))[x] =
                shown(image.getPalette()->map(v, minimum, maximum), image.getGLFormat());
        }
    }
    return picture;
}

// With the pixels below the limit of its palette taken out, as a foreground over a background is shown.
inline QImage pictureOverBackground(const CILImage& image)
{
    QImage picture = pictureOf(image);
    if (image.getGLFormat() != 0x1908 || !image.getPalette()->hasImageMinMax()) {
        return picture;
    }
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (image.value(static_cast<std::size_t>(y * picture.width() + x)) < image.getPalette()->imageMin()) {
                reinterpret_cast<QRgb*>(picture.scanLine(y))[x] = 0;
            }
        }
    }
    return picture;
}

// Colours scaled so that the brightest channel of what can be seen reaches `level`.
inline QImage brightened(QImage picture, int level)
{
    int brightest = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb c = picture.pixel(x, y);
            if (qAlpha(c) > 0) {
                brightest = std::max({brightest, qRed(c), qGreen(c), qBlue(c)});
            }
        }
    }
    if (level == 0 || brightest == 0) {
        return picture;
    }
    const auto scaled = [&](int c) { return std::min(255, (2 * c * level + brightest) / (2 * brightest)); };
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb c = picture.pixel(x, y);
            reinterpret_cast<QRgb*>(picture.scanLine(y))[x] =
                qRgba(scaled(qRed(c)), scaled(qGreen(c)), scaled(qBlue(c)), qAlpha(c));
        }
    }
    return picture;
}

inline QRgb over(QRgb upper, QRgb lower, double opacity)
{
    const double a = opacity * qAlpha(upper) / 255.0;
    const double b = (1.0 - a) * qAlpha(lower) / 255.0;
    const double total = a + b;
    if (total <= 0.0) {
        return 0;
    }
    const auto mix = [&](int u, int l) { return static_cast<int>(std::lround(std::fma(a, u, b * l) / total)); };
    return qRgba(mix(qRed(upper), qRed(lower)), mix(qGreen(upper), qGreen(lower)), mix(qBlue(upper), qBlue(lower)),
                 static_cast<int>(std::lround(255.0 * total)));
}

// Either may be null, not both.
inline QImage blendOf(const QImage& background, const QImage& foreground, float opacity, bool smooth)
{
    const QImage& base = background.isNull() ? foreground : background;
    const double share = std::isnan(opacity) ? 0.0 : std::clamp(static_cast<double>(opacity), 0.0, 1.0);
    QImage upper = foreground;
    if (!upper.isNull() && upper.size() != base.size()) {
        upper =
            upper.scaled(base.size(), Qt::IgnoreAspectRatio, smooth ? Qt::SmoothTransformation : Qt::FastTransformation)
                .convertToFormat(QImage::Format_ARGB32);
    }
    QImage result(base.size(), QImage::Format_ARGB32);
    for (int y = 0; y < result.height(); ++y) {
        for (int x = 0; x < result.width(); ++x) {
            reinterpret_cast<QRgb*>(result.scanLine(y))[x] =
                over(upper.isNull() ? 0U : reinterpret_cast<const QRgb*>(upper.constScanLine(y))[x],
                     background.isNull() ? 0U : reinterpret_cast<const QRgb*>(background.constScanLine(y))[x], share);
        }
    }
    return result;
}

} // namespace plain
