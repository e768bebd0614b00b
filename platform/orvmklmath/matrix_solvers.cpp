// SPDX-License-Identifier: GPL-3.0-or-later
// lssolve, solve and inverse of the toolkit's matrices, on Householder factorisations.
#include "XTNT/xtnt_matrix.h"

#include "platform/orvmklmath/parallel_with_memory.h"

#include <Eigen/Core>
#include <Eigen/QR>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace XTNT {

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;
using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
using RowBlock = Eigen::Map<const RowMajor, 0, Eigen::OuterStride<>>;
using WritableRowBlock = Eigen::Map<RowMajor, 0, Eigen::OuterStride<>>;

constexpr double epsilon = std::numeric_limits<double>::epsilon();

// Row blocks of a tall matrix: short enough to stay in the first cache with a few right-hand sides, long enough that
// what remains of a block is at most a sixteenth of it.
constexpr long long shortestBlock = 128;
constexpr long long blockRowsPerColumn = 16;

// Right-hand sides that one parallel chunk solves for.
constexpr long long columnsPerChunk = 256;

// The library cuts large products by the size of the caches that it finds. Fixed sizes keep the order of summation, and
// with it the bits, the same on every processor.
[[maybe_unused]] const bool cacheSizesFixed = [] {
    Eigen::setCpuCacheSizes(32 * 1024, 256 * 1024, 2 * 1024 * 1024);
    return true;
}();

bool allFinite(const double* __restrict values, long long n)
{
    constexpr std::uint64_t exponent = 0x7ff0000000000000ULL;
    std::uint64_t found = 0;
    for (long long i = 0; i < n; ++i) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, values + i, sizeof bits);
        found |= (bits & exponent) == exponent ? 1U : 0U;
    }
    return found == 0;
}

bool allFinite(const Matrix<double>& a)
{
    return allFinite(a.storage.data, a.storage.n_);
}

// The power of two that brings a magnitude near 1, exactly; 1 for zero.
double scaleToOne(double magnitude)
{
    return magnitude > 0 ? std::ldexp(1.0, -std::clamp(std::ilogb(magnitude), -1000, 1000)) : 1.0;
}

RowBlock asEigen(const Matrix<double>& a)
{
    return RowBlock(a.storage.data, a.M, a.N, Eigen::OuterStride<>(a.N));
}

// A least-squares problem A X = B, with A possibly brought to a shorter matrix of the same Gram matrix.
struct Problem
{
    Matrix<double> A;
    Matrix<double> B;
};

long long blockRows(const Matrix<double>& A)
{
    return std::max(shortestBlock, blockRowsPerColumn * A.N);
}

// Replaces each block of rows of [scale A, B] by the triangular factor of its part of A and the head of what becomes of
// its part of B: the least-squares problem stays the same. A block with fewer rows than columns leaves zero rows at its
// end. An empty problem tells of an element that is not finite.
Problem reduceBlocks(const Problem& tall, double scale)
{
    const long long n = tall.A.N;
    const long long p = tall.B.N;
    const long long grain = blockRows(tall.A);
    const long long blocks = (tall.A.M + grain - 1) / grain;
    Problem reduced{Matrix<double>(blocks * n, n), Matrix<double>(blocks * n, p)};
    std::atomic<bool> finite{true};
    parallelWithMemory(tall.A.M, grain, [&](long long begin, long long end) {
        const long long rows = end - begin;
        if (!allFinite(tall.A[begin], rows * n) || !allFinite(tall.B[begin], rows * p)) {
            finite.store(false, std::memory_order_relaxed);
            return;
        }
        const RowBlock a(tall.A[begin], rows, n, Eigen::OuterStride<>(n));
        const RowBlock b(tall.B[begin], rows, p, Eigen::OuterStride<>(p));
        const Eigen::HouseholderQR<MatrixXd> qr(scale * a);
        MatrixXd transformed = b;
        transformed.applyOnTheLeft(qr.householderQ().adjoint());

        const long long kept = std::min(rows, n);
        const long long at = begin / grain * n;
        WritableRowBlock(reduced.A[at], kept, n, Eigen::OuterStride<>(n)) =
            qr.matrixQR().topRows(kept).template triangularView<Eigen::Upper>();
        WritableRowBlock(reduced.B[at], kept, p, Eigen::OuterStride<>(p)) = transformed.topRows(kept);
    });
    return finite.load() ? reduced : Problem();
}

// X = rightScale * solver.solve(leftScale * B), a chunk of right-hand sides at a time. Empty when an element of B or of
// the result is not finite.
template <class Solver>
Matrix<double> solveColumns(const Solver& solver, const Matrix<double>& B, const VectorXd& leftScale,
                            const VectorXd& rightScale)
{
    if (!allFinite(B)) {
        return Matrix<double>();
    }
    Matrix<double> X(rightScale.size(), B.N);
    parallelWithMemory(B.N, columnsPerChunk, [&](long long begin, long long end) {
        const RowBlock b(B.storage.data + begin, B.M, end - begin, Eigen::OuterStride<>(B.N));
        WritableRowBlock x(X.storage.data + begin, X.M, end - begin, Eigen::OuterStride<>(X.N));
        const MatrixXd scaled = leftScale.asDiagonal() * b;
        x = rightScale.asDiagonal() * solver.solve(scaled).eval();
    });
    return allFinite(X) ? X : Matrix<double>();
}

VectorXd columnScales(const MatrixXd& a)
{
    VectorXd scales(a.cols());
    for (Index j = 0; j < a.cols(); ++j) {
        scales[j] = scaleToOne(a.col(j).cwiseAbs().maxCoeff());
    }
    return scales;
}

// The pivots below which columns count as dependent, relative to the largest: rounding errors of `rows` terms add up
// like a random walk.
double rankTolerance(long long rows, long long columns)
{
    return 4.0 * epsilon * std::sqrt(static_cast<double>(rows)) * static_cast<double>(columns);
}

// Least squares once the rows are few. Whether the columns are independent is asked after they have been scaled to one
// magnitude, which changes no full-rank solution; the solution of smallest norm needs them as they are.
Matrix<double> solveShort(const MatrixXd& A, const Matrix<double>& B, double scale, double tolerance)
{
    const VectorXd ones = VectorXd::Ones(A.rows());
    if (A.rows() >= A.cols()) {
        const VectorXd scales = columnScales(A);
        Eigen::ColPivHouseholderQR<MatrixXd> qr(A.rows(), A.cols());
        qr.setThreshold(tolerance);
        qr.compute(A * scales.asDiagonal());
        if (qr.rank() == A.cols()) {
            return solveColumns(qr, B, ones, scale * scales);
        }
    }
    Eigen::CompleteOrthogonalDecomposition<MatrixXd> orthogonal(A.rows(), A.cols());
    orthogonal.setThreshold(tolerance);
    orthogonal.compute(A);
    return solveColumns(orthogonal, B, ones, VectorXd::Constant(A.cols(), scale));
}

} // namespace

template <>
Matrix<double> Matrix<double>::lssolve(const Matrix<double>& B) const
{
    if (empty() || B.empty() || B.M != M || !allFinite(*this)) {
        return Matrix<double>();
    }
    const double scale = scaleToOne(norm(0));
    const double tolerance = rankTolerance(std::max(M, N), N);
    Problem problem{*this, B};
    double pending = scale;
    while (problem.A.M >= 2 * blockRows(problem.A)) {
        problem = reduceBlocks(problem, pending);
        pending = 1;
        if (problem.A.empty() || !allFinite(problem.A)) {
            return Matrix<double>();
        }
    }
    return solveShort(pending * asEigen(problem.A), problem.B, scale, tolerance);
}

template <>
Matrix<double> Matrix<double>::solve(Matrix<double>& B) const
{
    if (empty() || M != N || B.empty() || B.M != M || !allFinite(*this)) {
        return Matrix<double>();
    }
    // Scaling rows and columns to one magnitude keeps the solution and takes the units out of the question whether the
    // matrix is singular.
    const MatrixXd original = asEigen(*this);
    const VectorXd rowScales = columnScales(original.transpose());
    const MatrixXd balanced = rowScales.asDiagonal() * original;
    const VectorXd scales = columnScales(balanced);
    Eigen::ColPivHouseholderQR<MatrixXd> qr(N, N);
    qr.setThreshold(epsilon * static_cast<double>(N));
    qr.compute(balanced * scales.asDiagonal());
    return qr.isInvertible() ? solveColumns(qr, B, rowScales, scales) : Matrix<double>();
}

template <>
Matrix<double> Matrix<double>::inverse() const
{
    Matrix<double> identity(M, M);
    for (long long i = 0; i < M && N > 0; ++i) {
        identity[i][i] = 1;
    }
    return solve(identity);
}

} // namespace XTNT
