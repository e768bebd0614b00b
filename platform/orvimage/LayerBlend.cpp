// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/LayerBlend.h"
#include "platform/orvimage/PaletteArithmetic.h"

#include "XTNT/xtnt_parallel.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace orvimage {

namespace {

constexpr int kOpaque = 255;
constexpr QRgb kAlphaMask = 0xff000000U;

// Fraction bits of the weight: a difference of two levels times a weight stays within 32 bits.
constexpr int kWeightBits = 22;
constexpr int kHalfWeight = 1 << (kWeightBits - 1);

// Pixels that are looked at together; most blocks are clear or opaque throughout.
constexpr int kBlock = 64;
// Pixels that a thread takes at a time.
constexpr long long kGrain = 16384;

} // namespace

LayerBlend::LayerBlend(double opacity)
    : m_opacity(opacity), m_weight(static_cast<int>(opacity * (1 << kWeightBits) + 0.5))
{
    for (int alpha = 0; alpha <= kOpaque; ++alpha) {
        const auto i = static_cast<std::size_t>(alpha);
        const double a = opacity * alpha / 255.0;
        const double b = (1.0 - a) * kOpaque / 255.0;
        m_upperShare[i] = a;
        m_lowerShare[i] = b;
        m_total[i] = a + b;
        m_level[i] = static_cast<QRgb>(std::lround(255.0 * (a + b))) << 24U;
        m_aloneLevel[i] = static_cast<QRgb>(std::lround(255.0 * a)) << 24U;
    }
    m_integers = integersServe();
}

QRgb LayerBlend::over(QRgb upper, QRgb lower, double opacity)
{
    const double a = opacity * qAlpha(upper) / 255.0;
    const double b = (1.0 - a) * qAlpha(lower) / 255.0;
    const double total = a + b;
    if (total <= 0.0) {
        return qRgba(0, 0, 0, 0);
    }
    // The fusion is written out: at a tie, such as one half of 3 and 4, the rounding of the products decides.
    const auto mix = [&](int u, int l) { return static_cast<int>(std::lround(std::fma(a, u, b * l) / total)); };
    return qRgba(mix(qRed(upper), qRed(lower)), mix(qGreen(upper), qGreen(lower)), mix(qBlue(upper), qBlue(lower)),
                 static_cast<int>(std::lround(255.0 * total)));
}

// Between opaque pixels the sum is lower + opacity * difference. A float's opacity has 24 bits, so in double precision
// that is exact, and what is added to the lower level depends on the difference alone.
bool LayerBlend::integersServe() const
{
    if (m_level[kOpaque] != kAlphaMask || m_level[0] != kAlphaMask) {
        return false;
    }
    for (int difference = -kOpaque; difference <= kOpaque; ++difference) {
        const int exact = static_cast<int>(std::floor(m_opacity * difference + 0.5));
        if ((difference * m_weight + kHalfWeight) >> kWeightBits != exact) {
            return false;
        }
    }
    return true;
}

void LayerBlend::line(const QRgb* upper, const QRgb* lower, QRgb* out, int count) const
{
    if (lower == nullptr) {
        alone(upper, out, count);
        return;
    }
    static constexpr std::array<QRgb, kBlock> clear{};
    for (int begin = 0; begin < count; begin += kBlock) {
        block(upper == nullptr ? clear.data() : upper + begin, lower + begin, out + begin,
              std::min(kBlock, count - begin));
    }
}

void LayerBlend::alone(const QRgb* upper, QRgb* out, int count) const
{
    for (int i = 0; i < count; ++i) {
        const std::size_t alpha = upper[i] >> 24U;
        // A colour that is divided by the share it was multiplied with comes back.
        out[i] = m_upperShare[alpha] > 0.0 ? (upper[i] & ~kAlphaMask) | m_aloneLevel[alpha] : 0U;
    }
}

void LayerBlend::block(const QRgb* upper, const QRgb* lower, QRgb* out, int count) const
{
    QRgb allLower = kAlphaMask;
    QRgb between = 0;
    for (int i = 0; i < count; ++i) {
        allLower &= lower[i];
        const QRgb alpha = upper[i] >> 24U;
        between |= (alpha + 1U) & 0xfeU; // 0 for 0 and for 255
    }
    if ((allLower & kAlphaMask) != kAlphaMask) {
        for (int i = 0; i < count; ++i) {
            out[i] = over(upper[i], lower[i], m_opacity);
        }
    } else if (between == 0U && m_integers) {
        fullBlock(upper, lower, out, count);
    } else {
        opaqueBlock(upper, lower, out, count);
    }
}

// Upper pixels that are clear or opaque.
void LayerBlend::fullBlock(const QRgb* upper, const QRgb* lower, QRgb* out, int count) const
{
    const int full = m_weight;
    for (int i = 0; i < count; ++i) {
        const QRgb u = upper[i];
        const QRgb l = lower[i];
        const int weight = u >> 24U != 0U ? full : 0;
        const auto mix = [&](unsigned shift) {
            const int from = static_cast<int>((l >> shift) & 0xffU);
            const int difference = static_cast<int>((u >> shift) & 0xffU) - from;
            return static_cast<QRgb>(from + ((difference * weight + kHalfWeight) >> kWeightBits)) << shift;
        };
        out[i] = kAlphaMask | mix(16) | mix(8) | mix(0);
    }
}

// Upper pixels of any alpha over opaque ones: over() for many pixels at once.
void LayerBlend::opaqueBlock(const QRgb* upper, const QRgb* lower, QRgb* out, int count) const
{
    std::array<double, kBlock> a;
    std::array<double, kBlock> b;
    std::array<double, kBlock> total;
    for (int i = 0; i < count; ++i) {
        const std::size_t alpha = upper[i] >> 24U;
        const auto p = static_cast<std::size_t>(i);
        a[p] = m_upperShare[alpha];
        b[p] = m_lowerShare[alpha];
        total[p] = m_total[alpha];
    }
    const double* const aa = a.data();
    const double* const bb = b.data();
    const double* const tt = total.data();
    std::array<QRgb, kBlock> mixed{};
    for (unsigned shift = 0; shift <= 16; shift += 8) {
        for (int i = 0; i < count; ++i) {
            const auto u = static_cast<double>(static_cast<int>((upper[i] >> shift) & 0xffU));
            const auto l = static_cast<double>(static_cast<int>((lower[i] >> shift) & 0xffU));
            const double value = std::fma(aa[i], u, bb[i] * l) / tt[i];
            mixed[static_cast<std::size_t>(i)] |= static_cast<QRgb>(static_cast<int>(value + kNearlyHalf)) << shift;
        }
    }
    for (int i = 0; i < count; ++i) {
        out[i] = mixed[static_cast<std::size_t>(i)] | m_level[upper[i] >> 24U];
    }
}

QImage blendPictures(const QImage& upper, const QImage& lower, double opacity)
{
    const QImage& base = lower.isNull() ? upper : lower;
    QImage result(base.size(), QImage::Format_ARGB32);
    if (result.isNull()) {
        return result;
    }
    // Lines of 32 bit pixels have no padding between them.
    const auto* above = upper.isNull() ? nullptr : reinterpret_cast<const QRgb*>(upper.constBits());
    const auto* below = lower.isNull() ? nullptr : reinterpret_cast<const QRgb*>(lower.constBits());
    auto* const out = reinterpret_cast<QRgb*>(result.bits());
    const LayerBlend blend(opacity);
    XTNT::parallelChunks(
        static_cast<long long>(base.width()) * base.height(), kGrain, [&](long long begin, long long end) {
            blend.line(above == nullptr ? nullptr : above + begin, below == nullptr ? nullptr : below + begin,
                       out + begin, static_cast<int>(end - begin));
        });
    return result;
}

} // namespace orvimage
