// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

namespace XTNT {

// Non-negative concentrations of known spectra: for every row d of D (pixels x bands) the row c >= 0 of C (pixels x K)
// that minimises |c S - d|, S being K x bands. First one unconstrained least-squares fit for all rows; then each row
// with an element below 0 is replaced by its non-negative fit. D and S are left alone; C becomes a new matrix.
//
// Throws the plain integer -1 when the numbers of columns differ or D has fewer rows than S (C is left alone), and the
// plain integer -2 when the unconstrained fit fails (C is empty then, see solveForRight). Otherwise returns 0. Runs on
// all threads and passes cancellation points; the result does not depend on the number of threads.
int constrainedConcentrations(const Matrix<double>& D, const Matrix<double>& S, Matrix<double>& C);

// The same, with every row that needs it sent through NNLS: the reference for the faster pass behind the above. A row
// that NNLS gives up on is used as it stands.
int constrainedConcentrationsPlain(const Matrix<double>& D, const Matrix<double>& S, Matrix<double>& C);

} // namespace XTNT
