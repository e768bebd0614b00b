// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/xtnt_svd.h"

#include "platform/orvmklmath/parallel_with_memory.h"
#include "platform/orvmklmath/svd_block.h"

#include "XTNT/xtnt_assert.h"
#include "XTNT/xtnt_pages.h"
#include "XTNT/xtnt_parallel.h"

#include <Eigen/Core>
#include <Eigen/SVD>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <vector>

namespace XTNT {

namespace {

using Eigen::MatrixXd;

// Rows of a block: it stays in the second cache, and what remains of it is a small part.
constexpr long long shortestBlock = 512;
constexpr long long blockRowsPerColumn = 16;

// The matrix to be decomposed, element by element as it is read.
struct Source
{
    const Matrix<double>& a;
    const Vector<double>& shift;
    const Vector<double>& divisor;

    void copyRow(long long i, double* __restrict to) const
    {
        const double* from = a[i];
        std::copy_n(from, a.N, to);
        if (shift.n_ > 0) {
            for (long long j = 0; j < a.N; ++j) {
                to[j] -= shift.data[j];
            }
        }
        if (divisor.n_ > 0) {
            for (long long j = 0; j < a.N; ++j) {
                to[j] /= divisor.data[j];
            }
        }
    }
};

// Cuts m rows into blocks of nearly equal length, none shorter than twice the columns unless there is only one.
class Blocks
{
public:
    Blocks(long long m, long long n)
        : m_rows(m), m_count(std::max(1LL, m / std::max(shortestBlock, blockRowsPerColumn * n)))
    {
    }
    long long count() const { return m_count; }
    long long begin(long long block) const { return block * (m_rows / m_count) + std::min(block, m_rows % m_count); }

private:
    long long m_rows;
    long long m_count;
};

// One step down: the blocks of `source` are factorised into `factors`, of its size, and their triangles stand one below
// the other in `triangles`. The source may be the factors. `exponent` is that of a power of two which the triangles
// lack. False when an element is not finite.
bool factoriseBlocks(const Source& source, Matrix<double>& factors, Matrix<double>& triangles, int& exponent)
{
    const long long n = source.a.N;
    const Blocks blocks(source.a.M, n);
    std::vector<int> exponents(static_cast<std::size_t>(blocks.count()));
    std::atomic<bool> finite{true};
    triangles = Matrix<double>(blocks.count() * n, n);
    parallelWithMemory(blocks.count(), 1, [&](long long i, long long) {
        const long long begin = blocks.begin(i);
        const long long rows = blocks.begin(i + 1) - begin;
        HouseholderBlock block(rows, n);
        for (long long r = 0; r < rows; ++r) {
            source.copyRow(begin + r, block.row(r));
        }
        if (!block.scale(exponents[static_cast<std::size_t>(i)])) {
            finite.store(false, std::memory_order_relaxed);
            return;
        }
        block.factorise();
        block.storeFactors(factors[begin]);
        block.storeTriangle(triangles[i * n]);
    });
    if (!finite.load()) {
        return false;
    }
    exponent = *std::max_element(exponents.begin(), exponents.end());
    for (long long i = 0; i < blocks.count(); ++i) {
        const int own = exponents[static_cast<std::size_t>(i)];
        for (long long k = i * n * n; own != exponent && k < (i + 1) * n * n; ++k) {
            triangles.storage[k] = std::ldexp(triangles.storage[k], own - exponent);
        }
    }
    return true;
}

// The way back up: each block of `factors` times its rows of `coefficients`.
void applyBlocks(Matrix<double>& factors, const Matrix<double>& coefficients)
{
    const Blocks blocks(factors.M, factors.N);
    parallelWithMemory(blocks.count(), 1, [&](long long i, long long) {
        const long long begin = blocks.begin(i);
        applyFactors(factors[begin], blocks.begin(i + 1) - begin, factors.N, coefficients[i * factors.N]);
    });
}

void copyTo(const MatrixXd& from, Matrix<double>& to)
{
    for (long long i = 0; i < from.rows(); ++i) {
        for (long long j = 0; j < from.cols(); ++j) {
            to[i][j] = from(i, j);
        }
    }
}

MatrixXd asDense(const Source& source)
{
    MatrixXd dense(source.a.M, source.a.N);
    Vector<double> row(source.a.N);
    for (long long i = 0; i < source.a.M; ++i) {
        source.copyRow(i, row.data);
        for (long long j = 0; j < source.a.N; ++j) {
            dense(i, j) = row[j];
        }
    }
    return dense;
}

// The decomposition of a small matrix with at most as many rows as columns, into members of the right sizes that are
// zero. False when an element is not finite.
bool decomposeSmall(const MatrixXd& a, Matrix<double>& U, Vector<double>& s, Matrix<double>& V)
{
    if (!a.allFinite()) {
        return false;
    }
    cancellationPoint();
    const Eigen::JacobiSVD<MatrixXd> svd(a, Eigen::ComputeFullU | Eigen::ComputeFullV);
    copyTo(svd.matrixU(), U);
    copyTo(svd.matrixV(), V);
    std::copy_n(svd.singularValues().data(), svd.singularValues().size(), s.data);
    return true;
}

// Down to one triangle, its decomposition, and up again.
bool decomposeTall(const Source& source, SVD& svd)
{
    const Vector<double> asItIs;
    std::vector<Matrix<double>> levels{svd.U};
    Matrix<double> triangles;
    int exponent = 0;
    if (!factoriseBlocks(source, levels.back(), triangles, exponent)) {
        return false;
    }
    while (triangles.M > svd.n) {
        levels.push_back(triangles);
        int further = 0;
        Matrix<double>& level = levels.back();
        if (!factoriseBlocks({level, asItIs, asItIs}, level, triangles, further)) {
            return false;
        }
        exponent += further;
    }
    Matrix<double> coefficients(svd.n, svd.n);
    if (!decomposeSmall(asDense({triangles, asItIs, asItIs}), coefficients, svd.s, svd.V)) {
        return false;
    }
    for (; !levels.empty(); levels.pop_back()) {
        applyBlocks(levels.back(), coefficients);
        coefficients = levels.back();
    }
    for (long long j = 0; j < svd.n; ++j) {
        svd.s[j] = std::ldexp(svd.s[j], exponent);
    }
    return true;
}

void fillWithNaN(SVD& svd)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    svd.U.storage.fill(nan);
    svd.s.fill(nan);
    svd.V.storage.fill(nan);
}

} // namespace

SVD::SVD(const Matrix<double>& a) : SVD(a, Vector<double>(), Vector<double>()) {}

SVD::SVD(const Matrix<double>& a, const Vector<double>& shift, const Vector<double>& divisor)
    : U(a.M, std::min(a.M + 1, a.N)), s(a.empty() ? 0 : std::min(a.M + 1, a.N)),
      V(a.empty() ? 0 : a.N, a.empty() ? 0 : a.N), m(a.M), n(a.N)
{
    XTNT_ASSERT(shift.n_ == 0 || shift.n_ == a.N);
    XTNT_ASSERT(divisor.n_ == 0 || divisor.n_ == a.N);
    if (a.empty()) {
        return;
    }
    preferLargePages(U);
    const Source source{a, shift, divisor};
    const bool finite = m < n ? decomposeSmall(asDense(source), U, s, V) : decomposeTall(source, *this);
    if (!finite) {
        fillWithNaN(*this);
    }
}

} // namespace XTNT
