// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

namespace XTNT {

// Frobenius norm of T - C S, for T pixels x bands, C pixels x components and S components x bands (sizes that fit are
// asserted): one parallel pass over the rows that keeps no matrix. Neither overflows nor underflows before the result
// does; 0 for an empty T, NaN for an element that is not a number. The same bits whatever the number of threads; passes
// cancellation points.
double residualNorm(const Matrix<double>& T, const Matrix<double>& C, const Matrix<double>& S);

struct ResidualNorms
{
    double fit = 0; // of T - C S
    double raw = 0; // of X - C S
};

// The residuals themselves against two targets of one size, in one pass: fit = T - C S, raw = (fit - T) + X. Both
// become new matrices; what they held is let go first. Otherwise as residualNorm.
ResidualNorms residuals(const Matrix<double>& T, const Matrix<double>& X, const Matrix<double>& C,
                        const Matrix<double>& S, Matrix<double>& fit, Matrix<double>& raw);

// The norms alone, to the bit; no matrix of that size is made, but where a sum of squares leaves the range of numbers.
ResidualNorms residualNorms(const Matrix<double>& T, const Matrix<double>& X, const Matrix<double>& C,
                            const Matrix<double>& S);

} // namespace XTNT
