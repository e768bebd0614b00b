// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/maskPixels.h"

std::size_t countMaskPixels(const CILImage& mask)
{
    if (mask.isEmpty()) {
        return 0;
    }
    std::size_t count = 0;
    const std::size_t n = mask.pixelCount();
    for (std::size_t i = 0; i < n; ++i) {
        count += mask.value(i) > 0.0 ? 1 : 0;
    }
    return count;
}

bool isMaskValid(const CILImage& mask)
{
    return countMaskPixels(mask) >= kMinMaskPixels;
}
