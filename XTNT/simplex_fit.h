// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

namespace XTNT {

// The amounts x >= 0 of known spectra (the m rows of A, n bands each) that fill as much of the measured spectrum d (n
// bands) as possible without rising above it, by linear programming:
//
//   maximise    sum over j of x[j] * (sum of row j of A)
//   subject to  sum over j of x[j] * A[j][i] <= max(0, d[i] + tolerance * Max(d))   for every band i
//
// `x` becomes a new vector of the m amounts, `residual` a new one of the n bands: d minus the spectra by their amounts,
// negative elements set to 0. A bound that comes out as NaN counts as 0. `residual` and `d` may be one object. Never
// throws. Returns
//   0  done
//   2  d and A differ in the number of bands
//   3  the solver threw (an element is not finite, or memory ran out)
//   any other value: the solver's own for a program without a finite optimum, which the bounds rule out as long as
//      rounding errors don't intervene
// Unless 0 is returned, x and residual are left alone.
int simplexFit(const Vector<double>& d, const Matrix<double>& A, Vector<double>& residual, Vector<double>& x,
               double tolerance) noexcept;

// Applies given amounts: residual becomes a new vector, d minus x[j] times row j of A, negative elements set to 0.
// Returns 0, or 2 and nothing changed when x does not have one amount a row of A or d and A differ in the number of
// bands. `residual` and `d` may be one object.
int subtractAmounts(const Vector<double>& d, const Matrix<double>& A, Vector<double>& residual,
                    const Vector<double>& x);

} // namespace XTNT
