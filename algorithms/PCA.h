// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"
#include "XTNT/xtnt_vector.h"

// Principal component analysis by singular value decomposition: x, pre-processed, is U S V'. The matrices are m x n
// with many more rows than columns; U is the largest object.
class PCA
{
public:
    PCA() = default;
    virtual ~PCA() = default;

    // Decomposes a copy of x (m x n). mode 1 scales each column to mean 0 and standard deviation 1 (denominator m - 1;
    // the plain root of the sum of squares with one row), a constant column without guard; mode 2 subtracts the column
    // means; any other mode takes x as it is. 1 on success; 0 for an empty x, and no member changes. Elements that are
    // not finite go in unchecked: rank is 0 then and the members hold NaNs. Passes cancellation points.
    int decompose(const XTNT::Matrix<double>& x, unsigned mode);

    // out becomes the approximation of rank min(rank, k) of the pre-processed matrix, of the size of x; returned.
    // Passes cancellation points.
    XTNT::Matrix<double>& reconstruct(XTNT::Matrix<double>& out, int k) const;

    // The same in the memory of U, which is empty afterwards and must not be shared: where the size of x counts. The
    // same bits.
    XTNT::Matrix<double>& reconstructInPlace(XTNT::Matrix<double>& out, int k);

    // The squares of the singular values, descending, n of them; empty before a decomposition.
    XTNT::Vector<double> eigenvalues() const;
    // U S.
    XTNT::Matrix<double> scores() const;
    // A share of V.
    XTNT::Matrix<double> loadings() const;

    // The smallest number of components whose share of the eigenvalues' total is at least `fraction`; the rank when
    // none reaches it, when the total is 0 and when the fraction is outside 0 to 1.
    int suggestComponents(double fraction) const;

    int rank = 0;           // singular values above max(m, n) times the largest times 2^-52
    double condition = 0;   // largest singular value over the smallest; infinite for a singular matrix
    XTNT::Matrix<double> U; // m x min(m + 1, n)
    XTNT::Matrix<double> S; // n x n, the singular values on its diagonal
    XTNT::Matrix<double> V; // n x n
};
