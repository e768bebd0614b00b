// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <array>

namespace orvimage {

// The values at two places of the finite pixels in their order: a share of 0 is the least, 1 the greatest, halves away
// from zero between. Exact: pixels are counted in bins, and the bins with these places are sorted out. Without finite
// pixels 0 and 0.
std::array<double, 2> quantiles(const CILImage& image, double low, double high);

} // namespace orvimage
