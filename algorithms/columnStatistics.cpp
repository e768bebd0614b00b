// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/columnStatistics.h"

#include "XTNT/xtnt_parallel.h"

#include <algorithm>
#include <cmath>

using XTNT::Matrix;
using XTNT::Vector;

namespace {

// Rows whose terms are summed one after the other; the chunks' sums are added in order.
constexpr long long chunkRows = 2048;

// For each column the sum over the rows of term(x[i][j] - centre[j]).
template <class Term>
Vector<double> sumTerms(const Matrix<double>& x, const double* centre, Term term)
{
    const long long n = x.num_cols();
    Matrix<double> partial((x.num_rows() - 1) / chunkRows + 1, n);
    XTNT::parallelChunks(x.num_rows(), chunkRows, [&](long long begin, long long end) {
        double* __restrict sums = partial[begin / chunkRows];
        for (long long i = begin; i < end; ++i) {
            const double* __restrict row = x[i];
            for (long long j = 0; j < n; ++j) {
                sums[j] += term(row[j] - centre[j]);
            }
        }
    });
    return partial.sum(0);
}

} // namespace

Vector<double> columnMeans(const Matrix<double>& x)
{
    const Vector<double> sums = sumTerms(x, x[0], [](double difference) { return difference; });
    Vector<double> means(x.num_cols());
    for (long long j = 0; j < means.n_; ++j) {
        means[j] = x[0][j] + sums[j] / static_cast<double>(x.num_rows());
    }
    return means;
}

Vector<double> columnDeviations(const Matrix<double>& x, const Vector<double>& means)
{
    const Vector<double> squares = sumTerms(x, means.data, [](double difference) { return difference * difference; });
    const double denominator = static_cast<double>(std::max(1LL, x.num_rows() - 1));
    Vector<double> deviations(x.num_cols());
    for (long long j = 0; j < deviations.n_; ++j) {
        deviations[j] = std::sqrt(squares[j] / denominator);
    }
    return deviations;
}
