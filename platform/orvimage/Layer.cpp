// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/Layer.h"
#include "platform/orvimage/LayerBlend.h"

#include "XTNT/xtnt_parallel.h"

#include <algorithm>
#include <new>
#include <utility>

namespace orvimage {

namespace {

// A blend upon more blends than this is made at once, so that looking does not go ever deeper.
constexpr int kMaxDepth = 16;

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

} // namespace

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

LayerPointer Layer::of(const QImage& picture, std::vector<std::uint64_t> clear)
{
    if (picture.isNull()) {
        return nullptr;
    }
    auto layer = std::shared_ptr<Layer>(new Layer);
    layer->m_size = picture.size();
    layer->m_picture = picture;
    layer->m_clear = std::move(clear);
    return layer;
}

LayerPointer Layer::blend(const LayerPointer& upper, const LayerPointer& lower, double opacity, bool smooth)
{
    const auto shallow = [](const LayerPointer& layer) {
        if (layer == nullptr || layer->m_depth < kMaxDepth) {
            return layer;
        }
        LayerPointer made = of(layer->picture());
        if (made == nullptr) {
            throw std::bad_alloc();
        }
        return made;
    };
    auto layer = std::shared_ptr<Layer>(new Layer);
    layer->m_upper = shallow(upper);
    layer->m_lower = shallow(lower);
    layer->m_size = lower != nullptr ? lower->m_size : upper->m_size;
    layer->m_opacity = opacity;
    layer->m_smooth = smooth;
    const auto depthOf = [](const LayerPointer& part) { return part == nullptr ? 0 : part->m_depth; };
    layer->m_depth = 1 + std::max(depthOf(layer->m_upper), depthOf(layer->m_lower));
    return layer;
}

LayerPointer Layer::brightened(const LayerPointer& layer, int level)
{
    auto brighter = std::shared_ptr<Layer>(new Layer(*layer));
    brighter->m_brightness = level;
    return brighter;
}

QImage Layer::picture() const
{
    QImage made = m_picture.isNull() ? blended() : m_picture;
    if (m_brightness > 0 && !made.isNull()) {
        adjustBrightness(made, m_brightness);
    }
    return made;
}

// A map shown from a limit on lets what lies beneath it be seen where it has less.
QImage Layer::pictureOver() const
{
    QImage over = picture();
    if (m_clear.empty()) {
        return over;
    }
    auto* const pixels = reinterpret_cast<QRgb*>(over.bits());
    const long long count = static_cast<long long>(over.width()) * over.height();
    XTNT::parallelChunks(count, kGrain, [&](long long begin, long long end) {
        for (long long i = begin; i < end; ++i) {
            const std::uint64_t word = m_clear[static_cast<std::size_t>(i / 64)];
            pixels[i] = (word >> static_cast<unsigned>(i % 64) & 1U) != 0U ? 0U : pixels[i];
        }
    });
    return over;
}

QImage Layer::blended() const
{
    QImage lower;
    QImage upper;
    if (m_lower == nullptr) {
        upper = m_upper->picture();
    } else {
        lower = m_lower->picture();
        upper = m_upper == nullptr ? QImage() : m_upper->pictureOver();
    }
    if ((m_lower != nullptr && lower.isNull()) || (m_upper != nullptr && upper.isNull())) {
        return {};
    }
    if (!upper.isNull() && upper.size() != m_size) {
        upper =
            upper.scaled(m_size, Qt::IgnoreAspectRatio, m_smooth ? Qt::SmoothTransformation : Qt::FastTransformation)
                .convertToFormat(QImage::Format_ARGB32);
        if (upper.isNull()) {
            return {};
        }
    }
    return blendPictures(upper, lower, m_opacity);
}

} // namespace orvimage
