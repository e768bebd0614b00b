// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

// Where the light of images lies, inside a mask or beside it. What is not of the subject, a stage that glows or the
// camera's offset, is taken off: the light of the darkest tenth of the image. Means of squares of pixels are compared,
// so that noise beside the subject does not add up to light.
struct MaskLight
{
    double share = 0.0; // of the light that lies inside the mask, 0 to 1; NaN without light
    double area = 0.0;  // of the pixels that lie inside

    // `light` has `nWidth` pixels a row, `mask` indices into it.
    static MaskLight of(const std::vector<double>& light, int nWidth, const std::vector<int>& mask);
};
