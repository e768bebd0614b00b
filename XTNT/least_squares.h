// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

namespace XTNT {

// X with A X close to B in the least-squares sense: A.lssolve(B), or A.solve(B) when A is square. The result is a
// share of what those return; an empty one tells failure (see there).
Matrix<double> solveForLeft(const Matrix<double>& A, const Matrix<double>& B);

// X with X A close to B in the least-squares sense: the transpose of solveForLeft(transpose(A), transpose(B)). B holds
// one right-hand side a row (pixels x bands), A is K x bands, X pixels x K. One small factorisation of A and one pass
// over the rows of B on all threads; B is neither copied nor transposed. Passes cancellation points. An empty result
// tells failure: sizes that do not fit, an empty B, and an A with which solveForLeft fails. A row of B that is not
// finite spoils its own row of X and no other: one dead pixel does not cost the image.
Matrix<double> solveForRight(const Matrix<double>& B, const Matrix<double>& A);

// The operator of solveForRight: G (bands x K) with X = B G, from the orthogonal factorisation of transpose(A) applied
// to the identity. Empty when solveForLeft fails on that.
Matrix<double> rightSolutionOperator(const Matrix<double>& A);

} // namespace XTNT
