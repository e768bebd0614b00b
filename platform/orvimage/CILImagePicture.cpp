// SPDX-License-Identifier: GPL-3.0-or-later
// How an image is shown.
#include "host/CILImage.h"
#include "platform/orvimage/Layer.h"
#include "platform/orvimage/Luma.h"
#include "platform/orvimage/PaletteMapper.h"
#include "platform/orvimage/PixelTypes.h"

#include "XTNT/xtnt_parallel.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>
#include <utility>
#include <vector>

namespace {

// QImage holds its sides as ints and its bytes a line as an int.
constexpr long kMaxPictureSide = 32767;

constexpr unsigned kFormatRgba = 0x1908;
// Pixels that a thread takes at a time. Lines of 32 bit pixels have no padding between them.
constexpr long long kGrain = 16384;

// Whether a layer over another one is clear below the lower limit.
bool hidesBelowLimit(const CILImage& image)
{
    return !image.isRGB() && image.getGLFormat() == kFormatRgba && image.getPalette()->hasImageMinMax();
}

// A bit for each pixel below the limit; none at all when there is no such pixel.
std::vector<std::uint64_t> pixelsBelow(const CILImage& image, double limit)
{
    constexpr std::size_t bits = 64;
    std::vector<std::uint64_t> below((image.pixelCount() + bits - 1) / bits);
    std::uint64_t any = 0;
    orvimage::visitPixels(image, [&](const auto* pixels, std::size_t n) {
        for (std::size_t begin = 0; begin < n; begin += bits) {
            std::uint64_t word = 0;
            for (std::size_t i = begin; i < std::min(n, begin + bits); ++i) {
                word |= static_cast<std::uint64_t>(static_cast<double>(pixels[i]) < limit ? 1U : 0U) << (i - begin);
            }
            below[begin / bits] = word;
            any |= word;
        }
    });
    if (any == 0U) {
        below.clear();
    }
    return below;
}

void greyValues(const QImage& colours, unsigned char* grey)
{
    const auto* pixels = reinterpret_cast<const QRgb*>(colours.constBits());
    const std::size_t n = static_cast<std::size_t>(colours.width()) * static_cast<std::size_t>(colours.height());
    for (std::size_t i = 0; i < n; ++i) {
        grey[i] = static_cast<unsigned char>(orvimage::luma(pixels[i]));
    }
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
    QImage picture = m_layer != nullptr ? m_layer->picture() : m_rgb;
    if (picture.isNull() && m_layer == nullptr) {
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
    if (m_nBrightness > 0 && !picture.isNull()) {
        orvimage::adjustBrightness(picture, m_nBrightness);
    }
    return picture;
}

void CILImage::setRGBImage(const QImage& picture)
{
    const QImage colours = picture.convertToFormat(QImage::Format_ARGB32); // a copy of its own: it may be ours
    if (InitWithType(ORVTYPE_BYTE, colours.width(), colours.height()) != EIL_SUCCESS) {
        return;
    }
    greyValues(colours, bytes());
    m_rgb = colours;
    RefreshImageStats();
}

void CILImage::showLayer(std::shared_ptr<const orvimage::Layer> layer)
{
    clear();
    m_lWidth = layer->size().width();
    m_lHeight = layer->size().height();
    m_eType = ORVTYPE_BYTE;
    m_layer = std::move(layer);
}

std::shared_ptr<const orvimage::Layer> CILImage::layer() const
{
    if (m_layer != nullptr) {
        return m_nBrightness > 0 ? orvimage::Layer::brightened(m_layer, m_nBrightness) : m_layer;
    }
    const QImage picture = toQImage();
    if (picture.isNull() || !hidesBelowLimit(*this)) {
        return orvimage::Layer::of(picture);
    }
    return orvimage::Layer::of(picture, pixelsBelow(*this, m_palette.imageMin()));
}

void CILImage::dropRGBImage()
{
    static_cast<void>(pixels());
    m_rgb = QImage();
    m_layer.reset();
}

void CILImage::pixelsReplaced()
{
    m_rgb = QImage();
    m_layer.reset();
}

void CILImage::makePixels() const
{
    const QImage colours = m_layer == nullptr ? QImage() : m_layer->picture();
    CILImageBase grey;
    if (colours.isNull() || grey.InitWithType(ORVTYPE_BYTE, m_lWidth, m_lHeight) != EIL_SUCCESS) {
        throw std::bad_alloc();
    }
    greyValues(colours, grey.bytes());
    const orvimage::FiniteRange range = orvimage::finiteRange(grey);
    m_dMin = range.minimum;
    m_dMax = range.maximum;
    m_pData = std::exchange(grey.m_pData, nullptr);
}
