// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

#include <vector>

// Pixels at the top of the camera's range. A camera gives all that is brighter the same value, so in an image of it the
// largest value comes often, and the next smaller ones, a count apart, come once in a while; in any other image the
// largest value is rare. That shows in whatever unit, as long as pixels were not resampled.
struct SaturatedPixels
{
    long long pixels = 0;    // rows with a saturated element
    std::vector<int> images; // columns, ascending
    int component = -1;      // whose light makes most of the saturated elements, where that is so in half of them

    // `data` is P x N, `spots` blocks of rows of one size, each an image in every column; maps are K x P, spectra K x N
    // (both may be empty).
    static SaturatedPixels of(const XTNT::Matrix<double>& data, int nSpots, const XTNT::Matrix<double>& maps,
                              const XTNT::Matrix<double>& spectra);
};
