// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImageBase.h"

#include <cstddef>
#include <vector>

namespace orvimage {

// How each new pixel along one side is made from old ones: new pixel i is the sum of old[taps[k].source] *
// taps[k].weight over k in [begin[i], begin[i + 1]). Weights of zero are left out, so that a NaN reaches only what it
// touches.
struct AxisTaps
{
    struct Tap
    {
        int source;
        double weight;
    };
    std::vector<std::size_t> begin{0};
    std::vector<Tap> taps;

    int size() const { return static_cast<int>(begin.size()) - 1; }
};

// New pixel i covers the old coordinates [i * ratio, (i + 1) * ratio); its weights are the overlaps, which sum to
// `ratio` (a sum of the content), or divided by their sum (`mean`). `size` new pixels, from `from` old ones.
AxisTaps areaTaps(int from, int size, double ratio, bool mean);
// Nearest old pixel to the new pixel's centre.
AxisTaps nearestTaps(int from, int to);
// Linear interpolation between the centres of the old pixels; beyond the outer centres the outer values.
AxisTaps linearTaps(int from, int to);
// Cubic convolution (R. Keys, Cubic convolution interpolation for digital image processing, 1981, a = -1/2).
AxisTaps cubicTaps(int from, int to);

// `out` (x.size() by y.size() pixels, any type) from `source` in double arithmetic. With `limit` the values are held
// within the range of the source's finite pixels.
void resample(const CILImageBase& source, const AxisTaps& x, const AxisTaps& y, bool limit, CILImageBase& out);

} // namespace orvimage
