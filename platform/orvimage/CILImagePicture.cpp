// SPDX-License-Identifier: GPL-3.0-or-later
// How an image is shown.
#include "host/CILImage.h"
#include "platform/orvimage/Luma.h"
#include "platform/orvimage/PaletteMapper.h"
#include "platform/orvimage/PixelTypes.h"

#include "XTNT/xtnt_parallel.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace {

// QImage holds its sides as ints and its bytes a line as an int.
constexpr long kMaxPictureSide = 32767;

constexpr QRgb kColorMask = 0x00ffffffU;
// Pixels that a thread takes at a time. Lines of 32 bit pixels have no padding between them.
constexpr long long kGrain = 16384;

int brightestChannel(const QImage& picture)
{
    const auto* pixels = reinterpret_cast<const QRgb*>(picture.constBits());
    const long long count = static_cast<long long>(picture.width()) * picture.height();
    std::vector<QRgb> brightest(static_cast<std::size_t>((count + kGrain - 1) / kGrain));
    XTNT::parallelChunks(count, kGrain, [&](long long begin, long long end) {
        QRgb highest = 0;
        for (long long i = begin; i < end; ++i) {
            const QRgb c = pixels[i] > kColorMask ? pixels[i] : 0U; // what is clear does not count
            const QRgb redOrGreen = std::max((c >> 16U) & 0xffU, (c >> 8U) & 0xffU);
            highest = std::max({highest, redOrGreen, c & 0xffU});
        }
        brightest[static_cast<std::size_t>(begin / kGrain)] = highest;
    });
    return static_cast<int>(*std::max_element(brightest.begin(), brightest.end()));
}

// Scales the colours so that the brightest channel of the picture reaches `level`.
void adjustBrightness(QImage& picture, int level)
{
    const int brightest = brightestChannel(picture);
    if (brightest == 0 || brightest == level) {
        return;
    }
    QRgb scaled[256];
    for (int c = 0; c < 256; ++c) {
        scaled[c] = static_cast<QRgb>(std::min(255, (2 * c * level + brightest) / (2 * brightest)));
    }
    auto* const pixels = reinterpret_cast<QRgb*>(picture.bits());
    XTNT::parallelChunks(static_cast<long long>(picture.width()) * picture.height(), kGrain,
                         [&](long long begin, long long end) {
                             for (long long i = begin; i < end; ++i) {
                                 const QRgb c = pixels[i];
                                 pixels[i] = (c & ~kColorMask) | scaled[(c >> 16U) & 0xffU] << 16U |
                                             scaled[(c >> 8U) & 0xffU] << 8U | scaled[c & 0xffU];
                             }
                         });
}

} // namespace

void CILImage::setColorTable(int index)
{
    m_palette.setColorTable(index);
}

void CILImage::setCustomColorTable(int steps, double red, double green, double blue)
{
    if (steps < 2) {
        return;
    }
    const auto unit = [](double c) { return std::isnan(c) ? 0.0 : std::clamp(c, 0.0, 1.0); };
    QVector<QColor> colors;
    colors.reserve(steps);
    for (int i = 0; i < steps; ++i) {
        const double f = i / (steps - 1.0);
        colors.append(QColor::fromRgbF(f * unit(red), f * unit(green), f * unit(blue)));
    }
    m_palette.setColors(colors);
    m_palette.clearImageMinMax();
}

QImage CILImage::toQImage() const
{
    if (isEmpty() || m_lWidth > kMaxPictureSide || m_lHeight > kMaxPictureSide) {
        return {};
    }
    QImage picture = m_rgb;
    if (picture.isNull()) {
        picture = QImage(static_cast<int>(m_lWidth), static_cast<int>(m_lHeight), QImage::Format_ARGB32);
        if (picture.isNull()) {
            return {};
        }
        double minimum = m_palette.imageMin();
        double maximum = m_palette.imageMax();
        if (!m_palette.hasImageMinMax()) {
            const orvimage::FiniteRange range = orvimage::finiteRange(*this);
            minimum = range.minimum;
            maximum = range.maximum;
        }
        const orvimage::PaletteMapper mapper(m_palette, minimum, maximum, m_nGLFormat, m_eType, pixelCount());
        auto* const colors = reinterpret_cast<QRgb*>(picture.bits());
        orvimage::visitPixels(*this, [&](const auto* pixels, std::size_t n) {
            XTNT::parallelChunks(static_cast<long long>(n), kGrain, [&](long long begin, long long end) {
                mapper.map(pixels + begin, static_cast<std::size_t>(end - begin), colors + begin);
            });
        });
    }
    if (m_nBrightness > 0) {
        adjustBrightness(picture, m_nBrightness);
    }
    return picture;
}

void CILImage::setRGBImage(const QImage& picture)
{
    const QImage colours = picture.convertToFormat(QImage::Format_ARGB32); // a copy of its own: it may be ours
    if (InitWithType(ORVTYPE_BYTE, colours.width(), colours.height()) != EIL_SUCCESS) {
        return;
    }
    unsigned char* const grey = bytes();
    const auto* pixels = reinterpret_cast<const QRgb*>(colours.constBits());
    const std::size_t n = pixelCount();
    for (std::size_t i = 0; i < n; ++i) {
        grey[i] = static_cast<unsigned char>(orvimage::luma(pixels[i]));
    }
    m_rgb = colours;
    RefreshImageStats();
}
