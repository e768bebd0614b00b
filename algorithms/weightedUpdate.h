// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

// Weighted projections of the data T (M x N) with weights of the same shape, into `data` (M x N, storage of its own). A
// row or column whose small system is singular (weights of zero, say) is left as it stands in `data`. Both pass
// cancellation points.

// Row i becomes d W S' (S W S')^-1 S, with d and W = diag(w) from rows i and S (K x N).
void projectOnSpectra(const XTNT::Matrix<double>& target, const XTNT::Matrix<double>& weights,
                      const XTNT::Matrix<double>& spec, XTNT::Matrix<double>& data);

// Column j becomes C (C' W C)^-1 C' W d, with d and W = diag(w) from columns j and C (M x K).
void projectOnConcentrations(const XTNT::Matrix<double>& target, const XTNT::Matrix<double>& weights,
                             const XTNT::Matrix<double>& conc, XTNT::Matrix<double>& data);
