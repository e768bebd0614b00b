// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_vector.h"

namespace XTNT {

// Pearson's correlation coefficient of two vectors of equal length, in -1 to 1. A constant vector, a NaN, an empty
// vector or different lengths give 0.
double corrcoef(Vector<double>& a, Vector<double>& b);

} // namespace XTNT
