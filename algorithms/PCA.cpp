// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/PCA.h"

#include "algorithms/columnStatistics.h"

#include "XTNT/row_product.h"
#include "XTNT/xtnt_pages.h"
#include "XTNT/xtnt_parallel.h"
#include "XTNT/xtnt_svd.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

using XTNT::Matrix;
using XTNT::Vector;

namespace {

constexpr unsigned autoscale = 1;
constexpr unsigned meanCentre = 2;

// Rows of a parallel chunk.
constexpr long long chunkRows = 4096;

Matrix<double> diagonal(const Vector<double>& s, long long n)
{
    Matrix<double> result(n, n);
    for (long long i = 0; i < s.n_; ++i) {
        result[i][i] = s[i];
    }
    return result;
}

int numericalRank(const XTNT::SVD& svd)
{
    const double threshold =
        static_cast<double>(std::max(svd.m, svd.n)) * svd.s[0] * std::numeric_limits<double>::epsilon();
    return static_cast<int>(
        std::count_if(svd.s.data, svd.s.data + svd.s.n_, [threshold](double value) { return value > threshold; }));
}

// The first columns of left, as many as factor has rows, times factor, into result, which may be left itself: a row is
// read before it is written.
void multiplyFirstColumns(const Matrix<double>& left, const Matrix<double>& factor, Matrix<double>& result)
{
    const XTNT::RowProduct product(factor);
    XTNT::parallelChunks(left.num_rows(), chunkRows, [&](long long begin, long long end) {
        std::vector<double> scratch(static_cast<std::size_t>(XTNT::RowProduct::rowsAtOnce * product.paddedColumns()));
        product.multiplyBlock(left, begin, end, result, scratch.data());
    });
}

Matrix<double> multiplyFirstColumns(const Matrix<double>& left, const Matrix<double>& factor)
{
    Matrix<double> result(left.num_rows(), factor.num_cols());
    XTNT::preferLargePages(result);
    multiplyFirstColumns(left, factor, result);
    return result;
}

// What turns left vectors into the approximation of rank `kept`.
Matrix<double> rightFactor(const Matrix<double>& S, const Matrix<double>& V, long long kept)
{
    Matrix<double> factor(kept, V.num_rows());
    for (long long i = 0; i < kept; ++i) {
        for (long long j = 0; j < V.num_rows(); ++j) {
            factor[i][j] = S[i][i] * V[j][i];
        }
    }
    return factor;
}

} // namespace

int PCA::decompose(const Matrix<double>& x, unsigned mode)
{
    if (x.empty()) {
        return 0;
    }
    Vector<double> means;
    Vector<double> deviations;
    if (mode == autoscale || mode == meanCentre) {
        means = columnMeans(x);
    }
    if (mode == autoscale) {
        deviations = columnDeviations(x, means);
    }
    const XTNT::SVD svd(x, means, deviations);
    const Matrix<double> singularValues = diagonal(svd.s, svd.n);
    U = svd.U;
    S = singularValues;
    V = svd.V;
    rank = numericalRank(svd);
    condition = svd.s[0] / svd.s[std::min(svd.m, svd.n) - 1];
    return 1;
}

Matrix<double>& PCA::reconstruct(Matrix<double>& out, int k) const
{
    const long long kept = std::max(0, std::min(rank, k));
    out = Matrix<double>(); // a large block that goes before the new one comes
    out = kept > 0 ? multiplyFirstColumns(U, rightFactor(S, V, kept)) : Matrix<double>(U.num_rows(), V.num_rows());
    return out;
}

Matrix<double>& PCA::reconstructInPlace(Matrix<double>& out, int k)
{
    const long long kept = std::max(0, std::min(rank, k));
    // Of fewer rows than columns the left vectors are narrower than the data.
    if (kept < 1 || U.num_cols() != V.num_rows()) {
        reconstruct(out, k);
        U = Matrix<double>();
        return out;
    }
    multiplyFirstColumns(U, rightFactor(S, V, kept), U);
    out = U;
    U = Matrix<double>();
    return out;
}

Vector<double> PCA::eigenvalues() const
{
    Vector<double> result(S.num_rows());
    for (long long i = 0; i < result.n_; ++i) {
        result[i] = S[i][i] * S[i][i];
    }
    return result;
}

Matrix<double> PCA::scores() const
{
    if (U.empty()) {
        return Matrix<double>();
    }
    return multiplyFirstColumns(U, S.subMatrix(0, U.num_cols() - 1, 0, S.num_cols() - 1));
}

Matrix<double> PCA::loadings() const
{
    return V;
}

int PCA::suggestComponents(double fraction) const
{
    const Vector<double> cumulated = eigenvalues().cumulativeSum();
    const double total = cumulated.n_ > 0 ? cumulated[cumulated.n_ - 1] : 0;
    if (total == 0 || !(fraction >= 0 && fraction <= 1)) {
        return rank;
    }
    for (long long i = 0; i < cumulated.n_; ++i) {
        if (cumulated[i] / total >= fraction) {
            return static_cast<int>(i + 1);
        }
    }
    return rank;
}
