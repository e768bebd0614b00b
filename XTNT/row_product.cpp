// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/row_product.h"

#include "XTNT/large_pages.h"
#include "XTNT/xtnt_assert.h"
#include "XTNT/xtnt_lanes.h"
#include "XTNT/xtnt_parallel.h"

#include <algorithm>

namespace XTNT {

namespace {

// Columns of a full strip: two vectors a row and four rows leave registers for the factor.
constexpr long long stripColumns = 2 * lanes;

// Rows of a chunk: some hundred kilobytes of data, a small part of a slice.
constexpr long long chunkRows = 4096;

// The sums are variables of their own, not an array: they must live in registers across the loop.
void multiplyWideStrip(const double* const* rows, long long bands, const double* __restrict factor,
                       double* __restrict results, long long stride)
{
    const double* __restrict r0 = rows[0];
    const double* __restrict r1 = rows[1];
    const double* __restrict r2 = rows[2];
    const double* __restrict r3 = rows[3];
    Lanes a0{}, a1{}, b0{}, b1{}, c0{}, c1{}, d0{}, d1{};
    for (long long b = 0; b < bands; ++b) {
        const Lanes f0 = lanesAt(factor + b * stripColumns);
        const Lanes f1 = lanesAt(factor + b * stripColumns + lanes);
        a0 += r0[b] * f0;
        a1 += r0[b] * f1;
        b0 += r1[b] * f0;
        b1 += r1[b] * f1;
        c0 += r2[b] * f0;
        c1 += r2[b] * f1;
        d0 += r3[b] * f0;
        d1 += r3[b] * f1;
    }
    lanesAt(results) = a0;
    lanesAt(results + lanes) = a1;
    lanesAt(results + stride) = b0;
    lanesAt(results + stride + lanes) = b1;
    lanesAt(results + 2 * stride) = c0;
    lanesAt(results + 2 * stride + lanes) = c1;
    lanesAt(results + 3 * stride) = d0;
    lanesAt(results + 3 * stride + lanes) = d1;
}

void multiplyNarrowStrip(const double* const* rows, long long bands, const double* __restrict factor,
                         double* __restrict results, long long stride)
{
    const double* __restrict r0 = rows[0];
    const double* __restrict r1 = rows[1];
    const double* __restrict r2 = rows[2];
    const double* __restrict r3 = rows[3];
    Lanes a{}, b{}, c{}, d{};
    for (long long i = 0; i < bands; ++i) {
        const Lanes f = lanesAt(factor + i * lanes);
        a += r0[i] * f;
        b += r1[i] * f;
        c += r2[i] * f;
        d += r3[i] * f;
    }
    lanesAt(results) = a;
    lanesAt(results + stride) = b;
    lanesAt(results + 2 * stride) = c;
    lanesAt(results + 3 * stride) = d;
}

// Width of the strip that begins at padded column `first`.
long long stripWidth(long long first, long long paddedColumns)
{
    return std::min(stripColumns, paddedColumns - first);
}

} // namespace

RowProduct::RowProduct(const Matrix<double>& factor)
    : m_bands(factor.num_rows()), m_columns(factor.num_cols()),
      m_paddedColumns((m_columns + lanes - 1) / lanes * lanes),
      m_packed(static_cast<std::size_t>(m_bands * m_paddedColumns), 0.0)
{
    double* packed = m_packed.data();
    for (long long first = 0; first < m_paddedColumns; first += stripColumns) {
        const long long width = stripWidth(first, m_paddedColumns);
        const long long used = std::min(width, m_columns - first);
        for (long long b = 0; b < m_bands; ++b, packed += width)
            std::copy_n(factor[b] + first, used, packed);
    }
}

void RowProduct::multiply(const double* const* rows, double* __restrict results) const
{
    const double* packed = m_packed.data();
    for (long long first = 0; first < m_paddedColumns; first += stripColumns) {
        const long long width = stripWidth(first, m_paddedColumns);
        if (width == stripColumns)
            multiplyWideStrip(rows, m_bands, packed, results + first, m_paddedColumns);
        else
            multiplyNarrowStrip(rows, m_bands, packed, results + first, m_paddedColumns);
        packed += m_bands * width;
    }
}

void RowProduct::multiplyBlock(const Matrix<double>& data, long long begin, long long end, Matrix<double>& result,
                               double* scratch) const
{
    for (long long row = begin; row < end; row += rowsAtOnce) {
        const double* rows[rowsAtOnce];
        for (int r = 0; r < rowsAtOnce; ++r)
            rows[r] = data[std::min(row + r, end - 1)];
        multiply(rows, scratch);
        for (long long r = 0; r < std::min<long long>(rowsAtOnce, end - row); ++r)
            std::copy_n(scratch + r * m_paddedColumns, m_columns, result[row + r]);
    }
}

Matrix<double> multiplyRows(const Matrix<double>& data, const Matrix<double>& factor)
{
    XTNT_ASSERT(data.num_cols() == factor.num_rows());
    Matrix<double> result(data.num_rows(), factor.num_cols());
    if (result.empty())
        return result;
    preferLargePages(result);
    const RowProduct product(factor);
    parallelChunks(data.num_rows(), chunkRows, [&](long long begin, long long end) {
        std::vector<double> scratch(static_cast<std::size_t>(RowProduct::rowsAtOnce * product.paddedColumns()));
        product.multiplyBlock(data, begin, end, result, scratch.data());
    });
    return result;
}

} // namespace XTNT
