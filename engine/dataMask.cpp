// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/dataMask.h"

namespace {

bool toBinning(const CILImage& mask, int nBinning, MaskPixels eWhich, CILImage& binned)
{
    if (mask.isEmpty()) {
        return false;
    }
    if (eWhich == MaskPixels::NonZeroBytes) {
        return mask.changeBinning(nBinning, binned) == EIL_SUCCESS && binned.ChangeType(ORVTYPE_BYTE) == EIL_SUCCESS;
    }
    CILImage floats = mask;
    return floats.ChangeType(ORVTYPE_FLOAT) == EIL_SUCCESS && floats.changeBinning(nBinning, binned) == EIL_SUCCESS;
}

} // namespace

bool maskIndicesAtBinning(const CILImage& mask, int nBinning, int nWidth, int nHeight, MaskPixels eWhich,
                          std::vector<int>& indices)
{
    CILImage binned;
    if (!toBinning(mask, nBinning, eWhich, binned) || binned.m_lWidth != nWidth || binned.m_lHeight != nHeight) {
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
