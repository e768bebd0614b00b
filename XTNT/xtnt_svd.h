// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"
#include "XTNT/xtnt_vector.h"

namespace XTNT {

// Singular value decomposition A = U diag(s) V' of an m x n matrix. A tall matrix is brought to triangular form block of
// rows by block of rows with Householder reflections (J. Demmel, L. Grigori, M. Hoemmen, J. Langou, Communication-optimal
// parallel and sequential QR and LU factorizations, 2012) and the small triangle is decomposed by Jacobi rotations; no
// Gram matrix is formed, so small singular values are as good as the large ones' rounding lets them be.
//
//   U  m x min(m + 1, n), left singular vectors; the column beyond m of a wide matrix is zero
//   s  min(m + 1, n) singular values, descending, none below 0; that beyond m is 0
//   V  n x n, right singular vectors
//
// An empty matrix gives empty members. An element that is not finite makes every element of U, s and V a NaN. The same bits on
// any number of threads; passes cancellation points. Defined in the mathematics library.
struct SVD
{
    explicit SVD(const Matrix<double>& a);
    // The same for a matrix that the caller has no further use of: its storage becomes that of U where the sizes allow, so
    // no second large block is taken. `a` is left empty; no other share of its elements may exist.
    static SVD consuming(Matrix<double>& a);

    Matrix<double> U;
    Vector<double> s;
    Matrix<double> V;
    long long m = 0;
    long long n = 0;

private:
    SVD() = default;
};

} // namespace XTNT
