// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVOverlayImage.h"
#include "platform/orvimage/LayerBlend.h"

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
    const QImage result = orvimage::blendPictures(upper, m_background, share);
    if (result.isNull()) {
        return EIL_NO_MEMORY;
    }
    setRGBImage(result);
    return EIL_SUCCESS;
}
