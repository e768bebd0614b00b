// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/PaletteMapper.h"
#include "platform/orvimage/Luma.h"
#include "platform/orvimage/PaletteArithmetic.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <type_traits>
#include <utility>

namespace orvimage {

namespace {

constexpr unsigned kFormatRgba = 0x1908;
constexpr unsigned kFormatGrey = 0x1909;

// Values of a block: their fractions and places stay in the first cache.
constexpr int kBlock = 256;

// Bins of the fractions for the logarithm. Where the table's colours change fastest, at the lower end, about one bin in
// sixteen holds a change.
constexpr int kLogBins = 16384;
// Fewer values are not worth the bins.
constexpr std::size_t kWorthBins = 32768;
// How far beyond its ends a bin is looked at, so that no rounding on either side matters.
constexpr double kBinMargin = 1e-12;

constexpr std::size_t kByteLevels = 256;
constexpr std::size_t kShortLevels = 65536;

} // namespace

QRgb shownColor(QRgb color, unsigned format)
{
    if (format == kFormatRgba) {
        return color;
    }
    if (format == kFormatGrey) {
        const int grey = luma(color);
        return qRgb(grey, grey, grey);
    }
    return color | 0xff000000U;
}

PaletteMapper::PaletteMapper(const CILPalette& palette, double minimum, double maximum, unsigned format,
                             ORVDataTypes type, std::size_t count)
    : m_palette(palette), m_minimum(minimum), m_maximum(maximum), m_format(format), m_empty(!(maximum > minimum)),
      m_alphaFollows(palette.m_nAlphaMode == 1 && format == kFormatRgba), m_halfMinimum(minimum * 0.5),
      m_halfSpan(m_empty ? 1.0 : halfSpan(m_halfMinimum, maximum))
{
    m_blockwise = !palette.m_colors.isEmpty() && std::isfinite(minimum) && std::isfinite(maximum) && m_halfSpan > 0.0 &&
                  std::isfinite(palette.m_dAlpha);
    if (m_blockwise) {
        // Where the alpha does not follow the value it is the same for all of them.
        const QRgb alpha = m_alphaFollows ? 0U : palette.map(0.0, 0.0, 1.0) & 0xff000000U;
        m_colors.reserve(static_cast<std::size_t>(palette.m_colors.size()));
        for (const QRgb color : palette.m_colors) {
            m_colors.push_back(shownColor((color & 0x00ffffffU) | alpha, format));
        }
        if (palette.m_bLogScale && count >= kWorthBins) {
            fillLogBins();
        }
    }
    if (type == ORVTYPE_BYTE && count > kByteLevels) {
        fillLevels(kByteLevels);
    } else if (type == ORVTYPE_USHORT && count > kShortLevels) {
        fillLevels(kShortLevels);
    }
}

void PaletteMapper::map(const unsigned char* values, std::size_t count, QRgb* colors) const
{
    mapBlocks(values, count, colors);
}

void PaletteMapper::map(const unsigned short* values, std::size_t count, QRgb* colors) const
{
    mapBlocks(values, count, colors);
}

void PaletteMapper::map(const int* values, std::size_t count, QRgb* colors) const
{
    mapBlocks(values, count, colors);
}

void PaletteMapper::map(const float* values, std::size_t count, QRgb* colors) const
{
    mapBlocks(values, count, colors);
}

void PaletteMapper::map(const double* values, std::size_t count, QRgb* colors) const
{
    mapBlocks(values, count, colors);
}

template <typename T>
void PaletteMapper::mapBlocks(const T* values, std::size_t count, QRgb* colors) const
{
    if constexpr (std::is_unsigned_v<T>) {
        if (!m_levels.empty()) {
            for (std::size_t i = 0; i < count; ++i) {
                colors[i] = m_levels[values[i]];
            }
            return;
        }
    }
    std::array<double, kBlock> block;
    for (std::size_t begin = 0; begin < count; begin += kBlock) {
        const int length = static_cast<int>(std::min<std::size_t>(kBlock, count - begin));
        for (int i = 0; i < length; ++i) {
            block[static_cast<std::size_t>(i)] = static_cast<double>(values[begin + static_cast<std::size_t>(i)]);
        }
        mapBlock(block.data(), length, colors + begin);
    }
}

void PaletteMapper::mapBlock(const double* values, int count, QRgb* colors) const
{
    if (!m_blockwise) {
        std::transform(values, values + count, colors, [this](double v) { return plain(v); });
        return;
    }
    std::array<double, kBlock> fractionsOfBlock{};
    double* const fractions = fractionsOfBlock.data();
    // The order of the choices lets what is not a number end at the lower end. It gets its colour at the end.
    for (int i = 0; i < count; ++i) {
        const double inside = m_empty ? 1.0 : fractionInside(values[i], m_halfMinimum, m_halfSpan);
        const double below = values[i] >= m_maximum && !m_empty ? 1.0 : inside;
        fractions[i] = values[i] > m_minimum ? below : 0.0;
    }
    takeColors(fractions, count, colors);
    if (m_alphaFollows) {
        const double factor = m_palette.m_dAlpha;
        for (int i = 0; i < count; ++i) {
            const double scaled = fractions[i] * factor;
            const double limited = scaled > 1.0 ? 1.0 : scaled;
            const double alpha = limited > 0.0 ? limited : 0.0;
            colors[i] |= static_cast<QRgb>(static_cast<int>(255.0 * alpha + kNearlyHalf)) << 24U;
        }
    }
    const QRgb none = shownColor(0U, m_format);
    for (int i = 0; i < count; ++i) {
        colors[i] = values[i] == values[i] ? colors[i] : none;
    }
}

void PaletteMapper::takeColors(const double* fractions, int count, QRgb* colors) const
{
    const QRgb* const table = m_colors.data();
    if (m_palette.m_bLogScale) {
        for (int i = 0; i < count; ++i) {
            const int known = m_logBins.empty() ? -1 : m_logBins[static_cast<std::size_t>(fractions[i] * kLogBins)];
            colors[i] = table[known >= 0 ? known : m_palette.placeOf(fractions[i])];
        }
        return;
    }
    const auto last = static_cast<double>(m_colors.size() - 1);
    const bool reversed = m_palette.m_bReversed;
    std::array<int, kBlock> places{};
    for (int i = 0; i < count; ++i) {
        const double f = reversed ? 1.0 - fractions[i] : fractions[i];
        places[static_cast<std::size_t>(i)] = static_cast<int>(f * last + kNearlyHalf);
    }
    for (int i = 0; i < count; ++i) {
        colors[i] = table[places[static_cast<std::size_t>(i)]];
    }
}

QRgb PaletteMapper::plain(double value) const
{
    return shownColor(m_palette.map(value, m_minimum, m_maximum), m_format);
}

void PaletteMapper::fillLogBins()
{
    m_logBins.resize(kLogBins + 1);
    for (int bin = 0; bin <= kLogBins; ++bin) {
        const double lower = static_cast<double>(bin) / kLogBins * (1.0 - kBinMargin);
        const double upper = std::min(1.0, static_cast<double>(bin + 1) / kLogBins * (1.0 + kBinMargin));
        const int place = m_palette.placeOf(lower);
        m_logBins[static_cast<std::size_t>(bin)] = place == m_palette.placeOf(upper) ? place : -1;
    }
}

void PaletteMapper::fillLevels(std::size_t levels)
{
    std::vector<double> values(levels);
    std::iota(values.begin(), values.end(), 0.0);
    std::vector<QRgb> colors(levels);
    map(values.data(), levels, colors.data());
    m_levels = std::move(colors);
}

} // namespace orvimage
