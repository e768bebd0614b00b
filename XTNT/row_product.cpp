// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/row_product.h"

#include "XTNT/xtnt_assert.h"
#include "XTNT/xtnt_pages.h"
#include "XTNT/xtnt_parallel.h"
#include "XTNT/xtnt_strips.h"

#include <algorithm>

namespace XTNT {

namespace {

// Rows of a chunk: some hundred kilobytes of data, a small part of a slice.
constexpr long long chunkRows = 4096;

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
        for (long long b = 0; b < m_bands; ++b, packed += width) {
            std::copy_n(factor[b] + first, used, packed);
        }
    }
}

void RowProduct::multiply(const double* const* rows, double* __restrict results) const
{
    static_assert(rowsAtOnce == stripRows, "the kernel's rows");
    sumStrips(rows, m_bands, m_packed.data(), m_paddedColumns, results,
              [](Lanes& sum, double value, const Lanes& factor) { sum += value * factor; });
}

void RowProduct::multiplyBlock(const Matrix<double>& data, long long begin, long long end, Matrix<double>& result,
                               double* scratch) const
{
    for (long long row = begin; row < end; row += rowsAtOnce) {
        const double* rows[rowsAtOnce];
        for (int r = 0; r < rowsAtOnce; ++r) {
            rows[r] = data[std::min(row + r, end - 1)];
        }
        multiply(rows, scratch);
        for (long long r = 0; r < std::min<long long>(rowsAtOnce, end - row); ++r) {
            std::copy_n(scratch + r * m_paddedColumns, m_columns, result[row + r]);
        }
    }
}

Matrix<double> multiplyRows(const Matrix<double>& data, const Matrix<double>& factor)
{
    XTNT_ASSERT(data.num_cols() == factor.num_rows());
    Matrix<double> result(data.num_rows(), factor.num_cols());
    if (result.empty()) {
        return result;
    }
    preferLargePages(result);
    const RowProduct product(factor);
    parallelChunks(data.num_rows(), chunkRows, [&](long long begin, long long end) {
        std::vector<double> scratch(static_cast<std::size_t>(RowProduct::rowsAtOnce * product.paddedColumns()));
        product.multiplyBlock(data, begin, end, result, scratch.data());
    });
    return result;
}

} // namespace XTNT
