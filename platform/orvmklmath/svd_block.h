// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

namespace XTNT {

// Householder factorisation A = Q R of one block of rows, with Q as I - V T V' (R. Schreiber, C. Van Loan, A
// storage-efficient WY representation for products of Householder transformations, 1989): V is unit lower trapezoidal,
// T upper triangular. The block is worked on row by row, padded to whole vectors; one pass a column applies a
// reflection and adds up the inner products that the next one needs, those of V with itself for T included.
class HouseholderBlock
{
public:
    // rows >= columns > 0 (asserted); all zeros.
    HouseholderBlock(long long rows, long long columns);

    // Start of a row, `columns` elements, to be filled before factorise().
    double* row(long long i) { return m_tile.data() + i * m_stride; }

    // Multiplies all elements by a power of two that takes their largest magnitude out of reach of overflow and
    // underflow of squares, when it is within such reach, and puts into `exponent` that of the power taken out.
    // `exponent` is zeroBlock for a block of zeros. False when an element is not finite.
    bool scale(int& exponent);
    static constexpr int zeroBlock = -1000000;

    // Elements below about 1e-138 count as zero beside the diagonal.
    void factorise();

    // rows x columns, without padding: V below the diagonal (its unit diagonal is not stored), T on and above it.
    void storeFactors(double* to) const;
    // columns x columns, without padding.
    void storeTriangle(double* to) const;

private:
    double* t(long long i) { return m_t.data() + i * m_columns; }
    const double* t(long long i) const { return m_t.data() + i * m_columns; }
    void reflect(long long k);
    void setTriangularColumn(long long k, double tau);
    void passRows(long long k);

    long long m_rows;
    long long m_columns;
    long long m_stride;
    std::vector<double> m_tile;
    std::vector<double> m_t;
    // A column of V is that of the tile below the diagonal times its element here.
    std::vector<double> m_inverses;
    // Of the column to be reflected next: inner products below the diagonal with all columns.
    std::vector<double> m_products;
    // What a row gets taken off for its element in the column just reflected.
    std::vector<double> m_update;
};

// Replaces the factors that storeFactors left in `block` (rows x columns) by Q C, the thin orthogonal factor times a
// columns x columns matrix, row by row.
void applyFactors(double* block, long long rows, long long columns, const double* c);

} // namespace XTNT
