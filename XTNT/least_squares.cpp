// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/least_squares.h"

#include "XTNT/xtnt_parallel.h"

#include <atomic>
#include <cmath>

namespace XTNT {

namespace {

// Rows a parallel chunk takes: some hundred kilobytes of data at the usual number of bands.
constexpr long long rowsPerChunk = 1024;

Matrix<double> identity(long long n)
{
    Matrix<double> one(n, n);
    for (long long i = 0; i < n; ++i) {
        one[i][i] = 1;
    }
    return one;
}

// x = sum over j of b[j] * G[j], for one row b. False when an element comes out not finite.
bool multiplyRow(const double* __restrict b, const Matrix<double>& G, double* __restrict x)
{
    for (long long j = 0; j < G.M; ++j) {
        const double factor = b[j];
        const double* __restrict g = G[j];
        for (long long k = 0; k < G.N; ++k) {
            x[k] += factor * g[k];
        }
    }
    double nothing = 0;
    for (long long k = 0; k < G.N; ++k) {
        nothing += x[k] * 0.0;
    }
    return nothing == 0;
}

} // namespace

Matrix<double> solveForLeft(const Matrix<double>& A, const Matrix<double>& B)
{
    if (A.num_rows() != A.num_cols()) {
        return A.lssolve(B);
    }
    Matrix<double> rightHandSides(B);
    return A.solve(rightHandSides);
}

Matrix<double> solveForRight(const Matrix<double>& B, const Matrix<double>& A)
{
    if (A.num_cols() != B.num_cols() || B.empty()) {
        return Matrix<double>();
    }
    // The operator that maps a right-hand side to its solution comes from the orthogonal factorisation, applied to the
    // identity; every row of B then costs one small product.
    const Matrix<double> solution = solveForLeft(transpose(A), identity(A.num_cols()));
    if (solution.empty()) {
        return Matrix<double>();
    }
    const Matrix<double> G = transpose(solution);
    Matrix<double> X(B.num_rows(), G.num_cols());
    std::atomic<bool> finite{true};
    parallelChunks(B.num_rows(), rowsPerChunk, [&](long long begin, long long end) {
        bool allFinite = true;
        for (long long p = begin; p < end; ++p) {
            allFinite = multiplyRow(B[p], G, X[p]) && allFinite;
        }
        if (!allFinite) {
            finite.store(false, std::memory_order_relaxed);
        }
    });
    return finite.load() ? X : Matrix<double>();
}

} // namespace XTNT
