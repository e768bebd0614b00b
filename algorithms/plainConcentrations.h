// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

// The concentration half-step with one solver call a row: the reference for the faster pass. `trace` prints labelled
// matrices on standard output.

// C (M x K) with C spec close to data (M x N) in the least-squares sense; empty when that fails.
XTNT::Matrix<double> plainConcentrations(const XTNT::Matrix<double>& data, const XTNT::Matrix<double>& spec,
                                         bool trace);

// Replaces each row of conc that has an element below 0 by its non-negative least-squares solution. Rows without stay
// as they are, even where the solver would return something else.
void makeRowsNonNegative(const XTNT::Matrix<double>& data, const XTNT::Matrix<double>& spec, XTNT::Matrix<double>& conc,
                         bool trace);
