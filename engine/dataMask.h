// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <vector>

// The pixels above 0 of a mask image, brought to the binning, as ascending row-major indices of an image of nWidth x
// nHeight. False, and `indices` untouched, when the mask is empty, cannot be rebinned or comes to another size. An
// all-zero mask gives no indices.
bool maskIndicesAtBinning(const CILImage& mask, int nBinning, int nWidth, int nHeight, std::vector<int>& indices);
