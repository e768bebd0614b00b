// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/Quantiles.h"

#include "platform/orvimage/PixelTypes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace orvimage {

namespace {

constexpr std::size_t kBins = 1 << 14;

// Bins of equal width over a range. Values in their order have bins in their order, whatever is rounded.
class Bins
{
public:
    // Halves, as the span of two doubles may be beyond a double.
    explicit Bins(const FiniteRange& range)
        : m_dLeast(range.minimum / 2.0), m_dScale(static_cast<double>(kBins) / (range.maximum / 2.0 - m_dLeast))
    {
    }
    // Whether the width is a number: not for a range that is a point or nearly so.
    bool isUsable() const { return std::isfinite(m_dScale) && m_dScale > 0.0; }
    std::size_t of(double dValue) const
    {
        return std::min(static_cast<std::size_t>((dValue / 2.0 - m_dLeast) * m_dScale), kBins - 1);
    }

private:
    double m_dLeast;
    double m_dScale;
};

template <typename Visitor>
void visitFinite(const CILImage& image, Visitor&& visit)
{
    visitPixels(image, [&](const auto* pixels, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) {
            const auto v = static_cast<double>(pixels[i]);
            if (std::isfinite(v)) {
                visit(v);
            }
        }
    });
}

double nth(std::vector<double>& values, std::size_t nPlace)
{
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(nPlace), values.end());
    return values[nPlace];
}

} // namespace

std::array<double, 2> quantiles(const CILImage& image, double low, double high)
{
    const FiniteRange range = finiteRange(image);
    if (range.count == 0) {
        return {0.0, 0.0};
    }
    const auto last = static_cast<double>(range.count - 1);
    const std::array<std::size_t, 2> places{static_cast<std::size_t>(std::llround(low * last)),
                                            static_cast<std::size_t>(std::llround(high * last))};
    const Bins bins(range);
    if (!bins.isUsable()) {
        std::vector<double> values;
        values.reserve(range.count);
        visitFinite(image, [&](double v) { values.push_back(v); });
        const double first = nth(values, places[0]);
        return {first, nth(values, places[1])};
    }
    std::vector<std::size_t> counts(kBins, 0);
    visitFinite(image, [&](double v) { ++counts[bins.of(v)]; });
    std::array<std::size_t, 2> wanted{};
    std::array<std::size_t, 2> below{}; // pixels in the bins before
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        while (below[i] + counts[wanted[i]] <= places[i]) {
            below[i] += counts[wanted[i]++];
        }
    }
    std::array<std::vector<double>, 2> inside;
    inside[0].reserve(counts[wanted[0]]);
    inside[1].reserve(counts[wanted[1]]);
    visitFinite(image, [&](double v) {
        const std::size_t bin = bins.of(v);
        if (bin == wanted[0]) {
            inside[0].push_back(v);
        }
        if (bin == wanted[1]) {
            inside[1].push_back(v);
        }
    });
    return {nth(inside[0], places[0] - below[0]), nth(inside[1], places[1] - below[1])};
}

} // namespace orvimage
