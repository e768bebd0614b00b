// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

#include <cmath>

#include <gtest/gtest.h>

// Laws that a numeric result must obey, whoever computed it.
namespace testsupport {

// The rounding errors of sums of some hundred terms, with room for an ill-conditioned problem.
constexpr double lawTolerance = 1e-11;

inline double length(const XTNT::Vector<double>& v)
{
    double squares = 0;
    for (long long i = 0; i < v.n_; ++i) {
        squares += v[i] * v[i];
    }
    return std::sqrt(squares);
}

// The size of what is added up in a residual b - A x: its rounding errors are relative to this, not to the residual.
inline double residualSize(const XTNT::Matrix<double>& A, const XTNT::Vector<double>& b, const XTNT::Vector<double>& x)
{
    double size = length(b);
    for (long long j = 0; j < A.N; ++j) {
        size += length(A.column(j)) * std::abs(x[j]);
    }
    return size;
}

// The gradient A'(b - A x) of column j, relative to the length of the column and of all that is summed in the residual.
// At an optimum it is a rounding error for a free variable and not above one for a variable at its bound.
inline XTNT::Vector<double> relativeGradient(const XTNT::Matrix<double>& A, const XTNT::Vector<double>& b,
                                             const XTNT::Vector<double>& x)
{
    const XTNT::Vector<double> residual = b - A * x;
    const XTNT::Vector<double> gradient = residual * A;
    const double size = residualSize(A, b, x);
    XTNT::Vector<double> relative(A.N);
    for (long long j = 0; j < A.N; ++j) {
        const double scale = length(A.column(j)) * size;
        relative[j] = scale > 0 ? gradient[j] / scale : 0.0;
    }
    return relative;
}

// The conditions of H. W. Kuhn and A. W. Tucker for the x >= 0 that minimises |A x - b|.
inline ::testing::AssertionResult isNonNegativeOptimum(const XTNT::Matrix<double>& A, const XTNT::Vector<double>& b,
                                                       const XTNT::Vector<double>& x, double tolerance = lawTolerance)
{
    const XTNT::Vector<double> gradient = relativeGradient(A, b, x);
    for (long long j = 0; j < A.N; ++j) {
        if (!(x[j] >= 0)) {
            return ::testing::AssertionFailure() << "x[" << j << "] = " << x[j] << " is below 0";
        }
        if (!(gradient[j] <= tolerance) || (x[j] > 0 && !(gradient[j] >= -tolerance))) {
            return ::testing::AssertionFailure() << "x[" << j << "] = " << x[j] << " has the relative gradient "
                                                 << gradient[j] << ", allowed " << tolerance;
        }
    }
    return ::testing::AssertionSuccess();
}

// The residual of a least-squares solution is orthogonal to every column of A, for every right-hand side.
inline ::testing::AssertionResult isLeastSquaresSolution(const XTNT::Matrix<double>& A, const XTNT::Matrix<double>& B,
                                                         const XTNT::Matrix<double>& X, double tolerance = lawTolerance)
{
    if (X.M != A.N || X.N != B.N) {
        return ::testing::AssertionFailure() << "the solution is " << X.M << " by " << X.N;
    }
    for (long long c = 0; c < B.N; ++c) {
        const XTNT::Vector<double> gradient = relativeGradient(A, B.column(c), X.column(c));
        for (long long j = 0; j < A.N; ++j) {
            if (!(std::abs(gradient[j]) <= tolerance)) {
                return ::testing::AssertionFailure() << "the residual of right-hand side " << c << " has the component "
                                                     << gradient[j] << " along column " << j;
            }
        }
    }
    return ::testing::AssertionSuccess();
}

// One shape, and no element further than `tolerance` times the largest magnitude of `expected` from its partner.
inline ::testing::AssertionResult areClose(const XTNT::Matrix<double>& actual, const XTNT::Matrix<double>& expected,
                                           double tolerance = lawTolerance)
{
    if (actual.M != expected.M || actual.N != expected.N) {
        return ::testing::AssertionFailure() << "shapes differ: " << actual.M << " by " << actual.N << ", expected "
                                             << expected.M << " by " << expected.N;
    }
    const double allowed = tolerance * expected.norm(0);
    for (long long i = 0; i < actual.M; ++i) {
        for (long long j = 0; j < actual.N; ++j) {
            if (!(std::abs(actual[i][j] - expected[i][j]) <= allowed)) {
                return ::testing::AssertionFailure() << "[" << i << "][" << j << "] is " << actual[i][j]
                                                     << ", expected " << expected[i][j] << " within " << allowed;
            }
        }
    }
    return ::testing::AssertionSuccess();
}

} // namespace testsupport
