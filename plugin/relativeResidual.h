// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

#include <optional>

// Frobenius norm of data - concentrations' x spectra over that of the data; `data` is P x N (rows of the cube by
// images), `concentrations` K x P, `spectra` K x N. Nothing where the sizes do not fit, which they do not when there is
// no result or its images are gone, or the data are all 0.
std::optional<double> relativeResidual(const XTNT::Matrix<double>& data, const XTNT::Matrix<double>& concentrations,
                                       const XTNT::Matrix<double>& spectra);
