// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/CameraModel.h"

#include "XTNT/xtnt_parallel.h"
#include "workbench/simulator/RandomStream.h"

#include <algorithm>
#include <cmath>

CILImage CameraModel::expose(const std::vector<double>& expectedCounts, int side, int imageNumber,
                             bool* pSaturated) const
{
    CILImage image;
    if (image.InitWithType(ORVTYPE_USHORT, side, side) != EIL_SUCCESS) {
        return image;
    }
    auto* pPixels = static_cast<std::uint16_t*>(image.m_pData);
    XTNT::parallelChunks(side, 1, [&](long long begin, long long end) {
        for (long long row = begin; row < end; ++row) {
            RandomStream random(seed, static_cast<std::uint64_t>(imageNumber) + 1, static_cast<std::uint64_t>(row));
            for (long long i = row * side; i < (row + 1) * side; ++i) {
                const double mean = expectedCounts[static_cast<std::size_t>(i)] * gain;
                const double electrons = random.poisson(mean) + readNoise * random.normal();
                const double count = std::round(electrons / gain + offset);
                pPixels[i] = static_cast<std::uint16_t>(std::clamp(count, 0.0, kHighestCount));
            }
        }
    });
    image.RefreshImageStats();
    if (pSaturated != nullptr) {
        *pSaturated = image.Max() >= kHighestCount;
    }
    return image;
}

CILImage exactImage(const std::vector<double>& expectedCounts, int side)
{
    CILImage image;
    if (image.InitWithType(ORVTYPE_FLOAT, side, side) != EIL_SUCCESS) {
        return image;
    }
    std::transform(expectedCounts.begin(), expectedCounts.end(), image.floats(),
                   [](double value) { return static_cast<float>(value); });
    image.RefreshImageStats();
    return image;
}
