// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace XTNT {

// Non-negative least squares: the x >= 0 that minimises |A x - b|, by the active-set method of C. L. Lawson and R. J.
// Hanson, Solving Least Squares Problems, 1974. Always returns 0; `mode` tells how it ended.
//
//   a      A, m x n, column-major with leading dimension mda (mda >= m): element (i, j) at a[i + j * mda].
//          Overwritten by its orthogonal triangularisation.
//   b      m elements. Overwritten by the transformed right-hand side.
//   x      n elements, out: the solution.
//   rnorm  out: |A x - b|.
//   w      n elements, out: the dual A'(b - A x), not above 0 (within rounding) for variables at zero, 0 for the others
//   and for
//          variables that were refused as dependent.
//   zz     m elements of work space.
//   index  n elements, out: first the variables of the positive set, then those at zero.
//   mode   out: 1 solved; 2 m < 1 or n < 1, nothing else is written; 3 the limit of 3 n triangular solves was passed,
//          "\n NNLS quitting on iteration count.\n" was written to standard output, and x is the last feasible point.
//
// No array may overlap another. Allocates nothing, keeps no state: calls may run side by side. Elements that are not
// finite give no sensible x, but the routine ends.
int NNLS(double* a, int mda, int m, int n, double* b, double* x, double* rnorm, double* w, double* zz, int* index,
         int* mode);

} // namespace XTNT
