// SPDX-License-Identifier: GPL-3.0-or-later
// Separable resampling with weights in double precision. OpenCV's resize takes its weights as floats, refuses 32 bit
// integers and gives means only; sums over areas must be exact here.
#include "platform/orvimage/Resampler.h"
#include "platform/orvimage/PixelTypes.h"

#include <algorithm>
#include <cmath>

namespace orvimage {

namespace {

void addTap(AxisTaps& axis, int from, int source, double weight)
{
    if (weight == 0.0) {
        return;
    }
    const int inside = std::clamp(source, 0, from - 1);
    const bool first = axis.taps.size() == axis.begin.back();
    if (!first && axis.taps.back().source == inside) {
        axis.taps.back().weight += weight;
    } else {
        axis.taps.push_back({inside, weight});
    }
}

void endPixel(AxisTaps& axis)
{
    axis.begin.push_back(axis.taps.size());
}

// Position of a new pixel's centre, in old pixels counted from the centre of pixel 0.
double centre(int i, int from, int to)
{
    return (i + 0.5) * from / to - 0.5;
}

double keys(double distance)
{
    const double d = std::fabs(distance);
    if (d < 1.0) {
        return (1.5 * d - 2.5) * d * d + 1.0;
    }
    if (d < 2.0) {
        return ((-0.5 * d + 2.5) * d - 4.0) * d + 2.0;
    }
    return 0.0;
}

} // namespace

AxisTaps areaTaps(int from, int size, double ratio, bool mean)
{
    AxisTaps axis;
    for (int i = 0; i < size; ++i) {
        const double lower = i * ratio;
        const double upper = std::min((i + 1) * ratio, static_cast<double>(from));
        const int first = std::min(static_cast<int>(lower), from - 1);
        const int last = std::min(static_cast<int>(std::ceil(upper)), from);
        const double norm = mean ? 1.0 / (upper - lower) : 1.0;
        for (int source = first; source < last; ++source) {
            const double overlap = std::min(upper, source + 1.0) - std::max(lower, static_cast<double>(source));
            // Slivers that only rounding of i * ratio makes are no part of the pixel.
            if (overlap > 1e-9 * ratio) {
                addTap(axis, from, source, overlap * norm);
            }
        }
        endPixel(axis);
    }
    return axis;
}

AxisTaps nearestTaps(int from, int to)
{
    AxisTaps axis;
    for (int i = 0; i < to; ++i) {
        addTap(axis, from, static_cast<int>((i + 0.5) * from / to), 1.0);
        endPixel(axis);
    }
    return axis;
}

AxisTaps linearTaps(int from, int to)
{
    AxisTaps axis;
    for (int i = 0; i < to; ++i) {
        const double position = std::clamp(centre(i, from, to), 0.0, from - 1.0);
        const int left = static_cast<int>(position);
        const double t = position - left;
        addTap(axis, from, left, 1.0 - t);
        addTap(axis, from, left + 1, t);
        endPixel(axis);
    }
    return axis;
}

AxisTaps cubicTaps(int from, int to)
{
    AxisTaps axis;
    for (int i = 0; i < to; ++i) {
        const double position = centre(i, from, to);
        const int left = static_cast<int>(std::floor(position));
        for (int source = left - 1; source <= left + 2; ++source) {
            addTap(axis, from, source, keys(position - source));
        }
        endPixel(axis);
    }
    return axis;
}

void resample(const CILImageBase& source, const AxisTaps& x, const AxisTaps& y, bool limit, CILImageBase& out)
{
    const auto width = static_cast<std::size_t>(x.size());
    const auto rows = static_cast<std::size_t>(source.m_lHeight);
    const FiniteRange range = limit ? finiteRange(source) : FiniteRange{};

    std::vector<double> across(width * rows); // the source resampled along its rows
    visitPixels(source, [&](const auto* pixels, std::size_t) {
        for (std::size_t row = 0; row < rows; ++row) {
            const auto* from = pixels + row * static_cast<std::size_t>(source.m_lWidth);
            for (std::size_t i = 0; i < width; ++i) {
                double sum = 0.0;
                for (std::size_t k = x.begin[i]; k < x.begin[i + 1]; ++k) {
                    sum += static_cast<double>(from[x.taps[k].source]) * x.taps[k].weight;
                }
                across[row * width + i] = sum;
            }
        }
    });

    std::vector<double> line(width);
    visitPixels(out, [&](auto* pixels, std::size_t) {
        using Pixel = std::remove_pointer_t<decltype(pixels)>;
        for (int j = 0; j < y.size(); ++j) {
            const auto row = static_cast<std::size_t>(j);
            std::fill(line.begin(), line.end(), 0.0);
            for (std::size_t k = y.begin[row]; k < y.begin[row + 1]; ++k) {
                const double weight = y.taps[k].weight;
                const double* from = across.data() + static_cast<std::size_t>(y.taps[k].source) * width;
                for (std::size_t i = 0; i < width; ++i) {
                    line[i] += weight * from[i];
                }
            }
            for (std::size_t i = 0; i < width; ++i) {
                const bool held = limit && std::isfinite(line[i]);
                pixels[row * width + i] =
                    toPixel<Pixel>(held ? std::clamp(line[i], range.minimum, range.maximum) : line[i]);
            }
        }
    });
}

} // namespace orvimage
