// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

#include <vector>

namespace XTNT {

// Rows times a small matrix: the streaming half of every fit of all pixels. Holds `factor` (bands x columns) packed for
// the kernel; the object is read-only after construction, so threads may share it.
//
// Each result element is the sum over the bands in ascending order, whichever rows are worked on together: a row's
// bits do not depend on its neighbours. NaN and infinity pass through as the arithmetic has it.
class RowProduct
{
public:
    // Rows that `multiply` takes at once.
    static constexpr int rowsAtOnce = 4;

    explicit RowProduct(const Matrix<double>& factor);

    long long bands() const { return m_bands; }
    long long columns() const { return m_columns; }
    // Length of one row of results of `multiply`: the columns, rounded up to whole vectors.
    long long paddedColumns() const { return m_paddedColumns; }

    // results[r * paddedColumns() + j] = sum over b of rows[r][b] * factor[b][j], for the rowsAtOnce rows. What stands
    // beyond the columns is zero for finite rows. To do fewer rows, repeat a pointer.
    void multiply(const double* const* rows, double* __restrict results) const;

    // The same for rows [begin, end) of `data`, into the rows of `result` (at least `end` rows of columns() elements).
    // `scratch` holds rowsAtOnce * paddedColumns() elements.
    void multiplyBlock(const Matrix<double>& data, long long begin, long long end, Matrix<double>& result,
                       double* scratch) const;

private:
    long long m_bands;
    long long m_columns;
    long long m_paddedColumns;
    // Strips of eight columns (the last may have four): within a strip band after band.
    std::vector<double> m_packed;
};

// data (P x N) times factor (N x K), P x K, in parallel over blocks of rows. The inner sizes must agree (asserted).
// An abort unwinds from here between two slices.
Matrix<double> multiplyRows(const Matrix<double>& data, const Matrix<double>& factor);

} // namespace XTNT
