// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"
#include "XTNT/xtnt_vector.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

// What makes U diag(s) V' the singular value decomposition of a matrix, whoever computed it.
namespace testsupport {

// Rounding errors of a decomposition of n columns, relative to what is of length 1.
inline double svdTolerance(long long n)
{
    return 16 * std::numeric_limits<double>::epsilon() * static_cast<double>(n + 4);
}

// The first `count` columns of A are orthonormal. Summed in long double, so that errors are those of A.
inline ::testing::AssertionResult areOrthonormal(const XTNT::Matrix<double>& A, long long count, double tolerance)
{
    for (long long k = 0; k < count; ++k) {
        for (long long l = 0; l <= k; ++l) {
            long double product = 0;
            for (long long i = 0; i < A.M; ++i) {
                product += static_cast<long double>(A[i][k]) * static_cast<long double>(A[i][l]);
            }
            const double error = std::abs(static_cast<double>(product - (k == l ? 1 : 0)));
            if (!(error <= tolerance)) {
                return ::testing::AssertionFailure() << "the product of columns " << k << " and " << l << " is off by "
                                                     << error << ", allowed " << tolerance;
            }
        }
    }
    return ::testing::AssertionSuccess();
}

// No element of U diag(s) V' is further from A than the tolerance times the largest magnitude of A. All of them are
// brought near 1 first: A may be as large or small as numbers get.
inline ::testing::AssertionResult multiplyBackTo(const XTNT::Matrix<double>& A, const XTNT::Matrix<double>& U,
                                                 const XTNT::Vector<double>& s, const XTNT::Matrix<double>& V)
{
    const double largest = A.norm(0);
    const int exponent = largest > 0 ? std::ilogb(largest) : 0;
    XTNT::Vector<double> scaled(s.n_);
    for (long long k = 0; k < s.n_; ++k) {
        scaled[k] = std::ldexp(s[k], -exponent);
    }
    for (long long i = 0; i < A.M; ++i) {
        for (long long j = 0; j < A.N; ++j) {
            double product = 0;
            for (long long k = 0; k < s.n_; ++k) {
                product += U[i][k] * scaled[k] * V[j][k];
            }
            const double error = std::abs(product - std::ldexp(A[i][j], -exponent));
            if (!(error <= 2 * svdTolerance(A.N))) {
                return ::testing::AssertionFailure() << "[" << i << "][" << j << "] is off by " << error
                                                     << " of the largest element, allowed " << 2 * svdTolerance(A.N);
            }
        }
    }
    return ::testing::AssertionSuccess();
}

// A = U diag(s) V' with orthonormal columns and descending values of which none is below 0; of a wide matrix the column
// and the value beyond the rows are zero.
inline ::testing::AssertionResult isSvd(const XTNT::Matrix<double>& A, const XTNT::Matrix<double>& U,
                                        const XTNT::Vector<double>& s, const XTNT::Matrix<double>& V)
{
    const long long count = std::min(A.M + 1, A.N);
    if (U.M != A.M || U.N != count || s.n_ != count || V.M != A.N || V.N != A.N) {
        return ::testing::AssertionFailure() << "U is " << U.M << " by " << U.N << ", s has " << s.n_ << ", V is "
                                             << V.M << " by " << V.N << " for a matrix of " << A.M << " by " << A.N;
    }
    for (long long k = 0; k < count; ++k) {
        if (!(s[k] >= 0) || (k > 0 && !(s[k] <= s[k - 1]))) {
            return ::testing::AssertionFailure()
                   << "value " << k << " is " << s[k] << " after " << (k > 0 ? s[k - 1] : 0.0);
        }
    }
    for (long long i = 0; i < A.M && count > A.M; ++i) {
        if (U[i][A.M] != 0 || s[A.M] != 0) {
            return ::testing::AssertionFailure() << "what stands beyond the rows is not zero";
        }
    }
    const ::testing::AssertionResult left = areOrthonormal(U, std::min(A.M, A.N), svdTolerance(A.N));
    const ::testing::AssertionResult right = areOrthonormal(V, A.N, svdTolerance(A.N));
    if (!left || !right) {
        return ::testing::AssertionFailure() << "U: " << left.message() << "; V: " << right.message();
    }
    return multiplyBackTo(A, U, s, V);
}

} // namespace testsupport
