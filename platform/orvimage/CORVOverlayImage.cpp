// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVOverlayImage.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

// As CILImage::setGLFormat() numbers them.
constexpr unsigned fourColours = 0x1908;

QImage layer(const CILImage* image)
{
    return image == nullptr ? QImage() : image->toQImage();
}

// A map shown from a limit on lets what lies beneath it be seen where it has less.
QImage foregroundLayer(const CILImage* image)
{
    QImage picture = layer(image);
    if (picture.isNull() || image->isRGB() || image->getGLFormat() != fourColours ||
        !image->getPalette()->hasImageMinMax()) {
        return picture;
    }
    const double minimum = image->getPalette()->imageMin();
    std::size_t i = 0;
    for (int y = 0; y < picture.height(); ++y) {
        QRgb* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            if (image->value(i++) < minimum) {
                line[x] = 0;
            }
        }
    }
    return picture;
}

// `upper` at `opacity` over `lower` (T. Porter, T. Duff, Compositing digital images, 1984).
QRgb over(QRgb upper, QRgb lower, double opacity)
{
    const double a = opacity * qAlpha(upper) / 255.0;
    const double b = (1.0 - a) * qAlpha(lower) / 255.0;
    const double total = a + b;
    if (total <= 0.0) {
        return qRgba(0, 0, 0, 0);
    }
    const auto mix = [&](int u, int l) { return static_cast<int>(std::lround((a * u + b * l) / total)); };
    return qRgba(mix(qRed(upper), qRed(lower)), mix(qGreen(upper), qGreen(lower)), mix(qBlue(upper), qBlue(lower)),
                 static_cast<int>(std::lround(255.0 * total)));
}

} // namespace

void CORVOverlayImage::setBackground(const CILImage* image, tag_eimagetype)
{
    m_background = layer(image);
}

void CORVOverlayImage::setForeground(const CILImage* image, tag_eimagetype)
{
    m_foreground = layer(image);
    m_foregroundOver = foregroundLayer(image);
}

EILSTATUS CORVOverlayImage::blend(float opacity, int smooth)
{
    const QImage& base = m_background.isNull() ? m_foreground : m_background;
    if (base.isNull()) {
        return EIL_FAILURE;
    }
    const double share = std::isnan(opacity) ? 0.0 : std::clamp(static_cast<double>(opacity), 0.0, 1.0);

    QImage upper = m_background.isNull() ? m_foreground : m_foregroundOver;
    if (!upper.isNull() && upper.size() != base.size()) {
        upper = upper
                    .scaled(base.size(), Qt::IgnoreAspectRatio,
                            smooth != 0 ? Qt::SmoothTransformation : Qt::FastTransformation)
                    .convertToFormat(QImage::Format_ARGB32);
    }
    QImage result(base.size(), QImage::Format_ARGB32);
    if (result.isNull()) {
        return EIL_NO_MEMORY;
    }
    for (int y = 0; y < result.height(); ++y) {
        QRgb* out = reinterpret_cast<QRgb*>(result.scanLine(y));
        const QRgb* below =
            reinterpret_cast<const QRgb*>(m_background.isNull() ? nullptr : m_background.constScanLine(y));
        const QRgb* above = reinterpret_cast<const QRgb*>(upper.isNull() ? nullptr : upper.constScanLine(y));
        for (int x = 0; x < result.width(); ++x) {
            out[x] = over(above == nullptr ? 0U : above[x], below == nullptr ? 0U : below[x], share);
        }
    }
    setRGBImage(result);
    return EIL_SUCCESS;
}
