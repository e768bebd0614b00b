// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <cstdint>
#include <vector>

// A camera with 16-bit pixels:
//
//     count = round((Poisson(e) + N(0, readNoise)) / gain + offset), limited to 0 ... 65535
//
// with e the expected electrons. Each row of each image draws from its own stream, so the same seed gives the same
// image with any number of threads.
struct CameraModel
{
    static constexpr double kHighestCount = 65535.0;

    double gain = 1.0;      // electrons a count
    double readNoise = 0.0; // electrons
    double offset = 0.0;    // counts
    std::uint64_t seed = 1;

    // A noisy image of `side` x `side` pixels from expected counts without offset. *pSaturated (may be null) tells
    // whether a pixel reached the highest count. An empty image without memory.
    CILImage expose(const std::vector<double>& expectedCounts, int side, int imageNumber, bool* pSaturated) const;
};

// The expected counts themselves as floats. An empty image without memory.
CILImage exactImage(const std::vector<double>& expectedCounts, int side);
