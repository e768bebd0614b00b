// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"
#include "XTNT/xtnt_vector.h"

namespace XTNT {

// Singular value decomposition A = U diag(s) V' of an m x n matrix. A tall matrix is brought to triangular form block
// of rows by block of rows with Householder reflections (J. Demmel, L. Grigori, M. Hoemmen, J. Langou,
// Communication-optimal parallel and sequential QR and LU factorizations, 2012) and the small triangle is decomposed by
// Jacobi rotations; no Gram matrix is formed, so small singular values are as good as the large ones' rounding lets
// them be.
//
//   U  m x min(m + 1, n), left singular vectors; the column beyond m of a wide matrix is zero
//   s  min(m + 1, n) singular values, descending, none below 0; that beyond m is 0
//   V  n x n, right singular vectors
//
// The columns of U (the first m) and of V are orthonormal whatever the rank. An empty matrix gives empty members. An
// element that is not finite makes every element of U, s and V a NaN. The matrix is read once and left alone; of large
// blocks only U is taken. The same bits on any number of threads; passes cancellation points. Defined in the
// mathematics library.
struct SVD
{
    explicit SVD(const Matrix<double>& a);
    // That of the matrix (a[i][j] - shift[j]) / divisor[j], which is nowhere stored. Either vector may be empty, which
    // leaves its operation out; else it has n elements (asserted). A zero divisor is not guarded against.
    SVD(const Matrix<double>& a, const Vector<double>& shift, const Vector<double>& divisor);

    Matrix<double> U;
    Vector<double> s;
    Matrix<double> V;
    long long m = 0;
    long long n = 0;
};

} // namespace XTNT
