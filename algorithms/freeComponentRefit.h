// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "algorithms/SpectrumFit.h"

#include "XTNT/xtnt_matrix.h"

// After constraints have changed elements of `before` into those of `spec` (both K x N): at each band with a change the
// components that stayed as they were are fitted again, the changed ones taken as known. Bands with the same pattern of
// changes are solved together. A group whose least squares fail stays as it is.
void refitFreeComponents(const XTNT::Matrix<double>& before, XTNT::Matrix<double>& spec, SpectrumFit& fit);
