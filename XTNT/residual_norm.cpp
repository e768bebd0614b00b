// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/residual_norm.h"

#include "XTNT/row_blocks.h"
#include "XTNT/row_product.h"
#include "XTNT/xtnt_assert.h"
#include "XTNT/xtnt_lanes.h"
#include "XTNT/xtnt_pages.h"
#include "XTNT/xtnt_parallel.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace XTNT {

namespace {

constexpr long long rowsAtOnce = RowProduct::rowsAtOnce;

// Sums of squares of several rows, each in lanes of its own so that no addition waits for another.
class SquareSums
{
public:
    // Adds the squares of scale * (t - p), n elements, to the sums of row r.
    void add(long long r, const double* __restrict t, const double* __restrict p, long long n, double scale)
    {
        Lanes sums = m_rows[r];
        long long j = 0;
        for (; j + lanes <= n; j += lanes) {
            const Lanes difference = scale * (lanesAt(t + j) - lanesAt(p + j));
            sums += difference * difference;
        }
        for (; j < n; ++j) {
            const double difference = scale * (t[j] - p[j]);
            m_last += difference * difference;
        }
        m_rows[r] = sums;
    }

    double total() const
    {
        const Lanes sums = (m_rows[0] + m_rows[1]) + (m_rows[2] + m_rows[3]);
        return ((sums[0] + sums[1]) + (sums[2] + sums[3])) + m_last;
    }

private:
    Lanes m_rows[rowsAtOnce] = {};
    double m_last = 0;
};

void checkSizes(const Matrix<double>& T, const Matrix<double>& C, const Matrix<double>& S)
{
    XTNT_ASSERT(T.num_rows() == C.num_rows());
    XTNT_ASSERT(C.num_cols() == S.num_rows());
    XTNT_ASSERT(T.num_cols() == S.num_cols());
}

// Calls work(chunk, row, product row, index of the row among those done together) for every row of C, chunk by chunk.
template <class Work>
void forProducts(const Matrix<double>& C, const Matrix<double>& S, Work work)
{
    const RowProduct product(S);
    const long long chunkRows = passChunkRows(C.num_rows());
    parallelChunks(C.num_rows(), chunkRows, [&](long long begin, long long end) {
        std::vector<double> results(static_cast<std::size_t>(rowsAtOnce * product.paddedColumns()));
        for (long long first = begin; first < end; first += rowsAtOnce) {
            const double* rows[rowsAtOnce];
            for (long long r = 0; r < rowsAtOnce; ++r) {
                rows[r] = C[std::min(first + r, end - 1)];
            }
            product.multiply(rows, results.data());
            for (long long r = 0; r < std::min(rowsAtOnce, end - first); ++r) {
                work(begin / chunkRows, first + r, results.data() + r * product.paddedColumns(), r);
            }
        }
    });
}

std::size_t chunkCount(const Matrix<double>& T)
{
    const long long chunkRows = passChunkRows(T.num_rows());
    return static_cast<std::size_t>((T.num_rows() + chunkRows - 1) / chunkRows);
}

double totalOf(const std::vector<SquareSums>& parts)
{
    return std::accumulate(parts.begin(), parts.end(), 0.0,
                           [](double sum, const SquareSums& part) { return sum + part.total(); });
}

double sumOfSquares(const Matrix<double>& T, const Matrix<double>& C, const Matrix<double>& S, double scale)
{
    std::vector<SquareSums> parts(chunkCount(T));
    const long long bands = T.num_cols();
    forProducts(C, S, [&](long long chunk, long long row, const double* product, long long r) {
        parts[static_cast<std::size_t>(chunk)].add(r, T[row], product, bands, scale);
    });
    return totalOf(parts);
}

double largestMagnitude(const Matrix<double>& T, const Matrix<double>& C, const Matrix<double>& S)
{
    std::vector<double> parts(chunkCount(T));
    const long long bands = T.num_cols();
    forProducts(C, S, [&](long long chunk, long long row, const double* product, long long) {
        double& largest = parts[static_cast<std::size_t>(chunk)];
        for (long long j = 0; j < bands; ++j) {
            largest = std::max(largest, std::abs(T[row][j] - product[j]));
        }
    });
    return *std::max_element(parts.begin(), parts.end());
}

} // namespace

double residualNorm(const Matrix<double>& T, const Matrix<double>& C, const Matrix<double>& S)
{
    checkSizes(T, C, S);
    if (T.empty()) {
        return 0;
    }
    const double squares = sumOfSquares(T, C, S, 1.0);
    if (std::isnormal(squares) || std::isnan(squares)) {
        return std::sqrt(squares);
    }
    const double largest = largestMagnitude(T, C, S);
    if (!(largest > 0) || std::isinf(largest)) {
        return largest;
    }
    const int exponent = std::clamp(std::ilogb(largest), -1000, 1000);
    return std::ldexp(std::sqrt(sumOfSquares(T, C, S, std::ldexp(1.0, -exponent))), exponent);
}

ResidualNorms residuals(const Matrix<double>& T, const Matrix<double>& X, const Matrix<double>& C,
                        const Matrix<double>& S, Matrix<double>& fit, Matrix<double>& raw)
{
    checkSizes(T, C, S);
    XTNT_ASSERT(X.num_rows() == T.num_rows() && X.num_cols() == T.num_cols());
    fit.reshape(T.num_rows(), T.num_cols());
    preferLargePages(fit);
    raw.reshape(T.num_rows(), T.num_cols());
    preferLargePages(raw);
    if (T.empty()) {
        return ResidualNorms();
    }

    std::vector<SquareSums> fitParts(chunkCount(T));
    std::vector<SquareSums> rawParts(chunkCount(T));
    const std::vector<double> zeros(static_cast<std::size_t>(T.num_cols()));
    const long long bands = T.num_cols();
    forProducts(C, S, [&](long long chunk, long long row, const double* __restrict product, long long r) {
        const double* __restrict t = T[row];
        const double* __restrict x = X[row];
        double* __restrict f = fit[row];
        double* __restrict w = raw[row];
        for (long long j = 0; j < bands; ++j) {
            f[j] = t[j] - product[j];
            w[j] = (f[j] - t[j]) + x[j];
        }
        fitParts[static_cast<std::size_t>(chunk)].add(r, f, zeros.data(), bands, 1.0);
        rawParts[static_cast<std::size_t>(chunk)].add(r, w, zeros.data(), bands, 1.0);
    });
    // The careful norm where the squares leave the range of numbers.
    const auto normOf = [](double squares, const Matrix<double>& residual) {
        return std::isnormal(squares) ? std::sqrt(squares) : residual.norm(2);
    };
    return {normOf(totalOf(fitParts), fit), normOf(totalOf(rawParts), raw)};
}

ResidualNorms residualNorms(const Matrix<double>& T, const Matrix<double>& X, const Matrix<double>& C,
                            const Matrix<double>& S)
{
    checkSizes(T, C, S);
    XTNT_ASSERT(X.num_rows() == T.num_rows() && X.num_cols() == T.num_cols());
    if (T.empty()) {
        return ResidualNorms();
    }
    std::vector<SquareSums> fitParts(chunkCount(T));
    std::vector<SquareSums> rawParts(chunkCount(T));
    const std::vector<double> zeros(static_cast<std::size_t>(T.num_cols()));
    const long long bands = T.num_cols();
    // The product becomes the one residual and then the other.
    forProducts(C, S, [&](long long chunk, long long row, double* __restrict rest, long long r) {
        const double* __restrict t = T[row];
        const double* __restrict x = X[row];
        for (long long j = 0; j < bands; ++j) {
            rest[j] = t[j] - rest[j];
        }
        fitParts[static_cast<std::size_t>(chunk)].add(r, rest, zeros.data(), bands, 1.0);
        for (long long j = 0; j < bands; ++j) {
            rest[j] = (rest[j] - t[j]) + x[j];
        }
        rawParts[static_cast<std::size_t>(chunk)].add(r, rest, zeros.data(), bands, 1.0);
    });
    const double fit = totalOf(fitParts);
    const double raw = totalOf(rawParts);
    if (std::isnormal(fit) && std::isnormal(raw)) {
        return {std::sqrt(fit), std::sqrt(raw)};
    }
    Matrix<double> fitResidual;
    Matrix<double> rawResidual;
    return residuals(T, X, C, S, fitResidual, rawResidual);
}

} // namespace XTNT
