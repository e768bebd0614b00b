// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/rowPasses.h"

#include "XTNT/sort_with_index.h"
#include "XTNT/xtnt_assert.h"
#include "XTNT/xtnt_parallel.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <vector>

using XTNT::Matrix;
using XTNT::Vector;

namespace rowpass {

namespace {

constexpr long long chunkRows = 4096;

double squareSum(const double* a, long long n)
{
    double partial[4] = {};
    const long long whole = n - n % 4;
    for (long long i = 0; i < whole; i += 4) {
        for (int lane = 0; lane < 4; ++lane) {
            partial[lane] += a[i + lane] * a[i + lane];
        }
    }
    for (long long i = whole; i < n; ++i) {
        partial[0] += a[i] * a[i];
    }
    return (partial[0] + partial[1]) + (partial[2] + partial[3]);
}

template <class Op>
void changeRows(Matrix<double>& a, const Vector<double>& factors, Op op)
{
    XTNT_ASSERT(factors.size() >= a.num_rows());
    XTNT::parallelChunks(a.num_rows(), chunkRows, [&](long long begin, long long end) {
        for (long long i = begin; i < end; ++i) {
            double* row = a[i];
            for (long long j = 0; j < a.num_cols(); ++j) {
                row[j] = op(row[j], factors[i]);
            }
        }
    });
}

} // namespace

Vector<double> rowNorms(const Matrix<double>& a)
{
    Vector<double> squares(a.num_rows());
    XTNT::parallelChunks(a.num_rows(), chunkRows, [&](long long begin, long long end) {
        for (long long i = begin; i < end; ++i) {
            double total = 0;
            for (long long j = 0; j < a.num_cols(); ++j) {
                total += a[i][j] * a[i][j];
            }
            squares[i] = total;
        }
    });
    return squares.clampedSqrt();
}

double frobeniusNorm(const Matrix<double>& a)
{
    std::vector<double> parts(static_cast<std::size_t>((a.num_rows() + chunkRows - 1) / chunkRows), 0.0);
    XTNT::parallelChunks(a.num_rows(), chunkRows, [&](long long begin, long long end) {
        parts[static_cast<std::size_t>(begin / chunkRows)] = squareSum(a[begin], (end - begin) * a.num_cols());
    });
    double total = 0;
    for (const double part : parts) {
        total += part;
    }
    return std::isnormal(total) ? std::sqrt(total) : a.norm(2);
}

void multiplyRows(Matrix<double>& a, const Vector<double>& factors)
{
    changeRows(a, factors, [](double value, double factor) { return value * factor; });
}

void divideRows(Matrix<double>& a, const Vector<double>& factors)
{
    changeRows(a, factors, [](double value, double factor) { return value / factor; });
}

Vector<long long> orderByCentre(const Matrix<double>& rows)
{
    Vector<double> centres(rows.num_rows());
    for (long long i = 0; i < rows.num_rows(); ++i) {
        double moment = 0;
        double total = 0;
        for (long long j = 0; j < rows.num_cols(); ++j) {
            moment += static_cast<double>(j + 1) * rows[i][j];
            total += rows[i][j];
        }
        centres[i] = moment / total;
    }
    Vector<long long> order;
    XTNT::sortWithIndex(centres, order);
    return order;
}

void reorderColumns(Matrix<double>& a, const Vector<long long>& order)
{
    XTNT_ASSERT(order.size() == a.num_cols());
    XTNT::parallelChunks(a.num_rows(), chunkRows, [&](long long begin, long long end) {
        std::vector<double> former(static_cast<std::size_t>(a.num_cols()));
        for (long long i = begin; i < end; ++i) {
            double* row = a[i];
            std::copy_n(row, a.num_cols(), former.data());
            for (long long j = 0; j < a.num_cols(); ++j) {
                row[j] = former[static_cast<std::size_t>(order[j])];
            }
        }
    });
}

void clampColumns(Matrix<double>& a, const Vector<int>& flags, long long begin, long long end)
{
    const long long columns = std::min(a.num_cols(), flags.size());
    for (long long i = begin; i < end; ++i) {
        double* row = a[i];
        for (long long j = 0; j < columns; ++j) {
            if (flags[j] == 1 && row[j] < 0) {
                row[j] = 0;
            }
        }
    }
}

bool allFinite(const Matrix<double>& a)
{
    std::atomic<bool> finite{true};
    XTNT::parallelChunks(a.num_rows(), chunkRows, [&](long long begin, long long end) {
        const double* values = a[begin];
        const long long n = (end - begin) * a.num_cols();
        for (long long i = 0; i < n; ++i) {
            if (!std::isfinite(values[i])) {
                finite.store(false, std::memory_order_relaxed);
                return;
            }
        }
    });
    return finite.load();
}

Matrix<double> labelMeans(const Matrix<double>& a, const Vector<long long>& labels, long long k)
{
    const long long chunks = (a.num_rows() + chunkRows - 1) / chunkRows;
    const long long columns = a.num_cols();
    std::vector<Matrix<double>> sums;
    for (long long chunk = 0; chunk < chunks; ++chunk) {
        sums.emplace_back(k, columns);
    }
    std::vector<std::vector<double>> counts(static_cast<std::size_t>(chunks),
                                            std::vector<double>(static_cast<std::size_t>(k), 0.0));
    XTNT::parallelChunks(a.num_rows(), chunkRows, [&](long long begin, long long end) {
        const auto chunk = static_cast<std::size_t>(begin / chunkRows);
        for (long long i = begin; i < end; ++i) {
            double* __restrict to = sums[chunk][labels[i]];
            const double* __restrict from = a[i];
            for (long long j = 0; j < columns; ++j) {
                to[j] += from[j];
            }
            counts[chunk][static_cast<std::size_t>(labels[i])] += 1;
        }
    });
    Matrix<double> means(k, columns);
    for (long long label = 0; label < k; ++label) {
        double members = 0;
        for (std::size_t chunk = 0; chunk < sums.size(); ++chunk) {
            members += counts[chunk][static_cast<std::size_t>(label)];
            for (long long j = 0; j < columns; ++j) {
                means[label][j] += sums[chunk][label][j];
            }
        }
        for (long long j = 0; j < columns; ++j) {
            means[label][j] /= members > 0 ? members : 1;
        }
    }
    return means;
}

} // namespace rowpass
