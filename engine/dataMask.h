// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <vector>

// Which pixels of a mask count once it is at the binning: those above 0 of its floats, as for an unmixing, or those
// that are not 0 as bytes, as for a PCA, where a part of a pixel below one half is none.
enum class MaskPixels
{
    FloatsAboveZero,
    NonZeroBytes
};

// The pixels of a mask image that count, brought to the binning, as ascending row-major indices of an image of nWidth x
// nHeight. False, and `indices` untouched, when the mask is empty, cannot be rebinned or comes to another size. An
// all-zero mask gives no indices.
bool maskIndicesAtBinning(const CILImage& mask, int nBinning, int nWidth, int nHeight, MaskPixels eWhich,
                          std::vector<int>& indices);
