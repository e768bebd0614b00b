// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/dataMask.h"

bool maskIndicesAtBinning(const CILImage& mask, int nBinning, int nWidth, int nHeight, std::vector<int>& indices)
{
    CILImage floats = mask;
    CILImage binned;
    if (floats.isEmpty() || floats.ChangeType(ORVTYPE_FLOAT) != EIL_SUCCESS ||
        floats.changeBinning(nBinning, binned) != EIL_SUCCESS || binned.m_lWidth != nWidth ||
        binned.m_lHeight != nHeight) {
        return false;
    }
    const std::size_t nPixels = binned.pixelCount();
    indices.clear();
    indices.reserve(nPixels);
    for (std::size_t i = 0; i < nPixels; ++i) {
        if (binned.value(i) > 0.0) {
            indices.push_back(static_cast<int>(i));
        }
    }
    return true;
}
