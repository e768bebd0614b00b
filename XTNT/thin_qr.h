// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

namespace XTNT {

// Orthogonal factorisation A = Q R of a small matrix with at least as many rows as columns, by Gram-Schmidt with every
// column orthogonalised twice, which keeps Q orthonormal to rounding for every A of full numerical rank (L. Giraud,
// J. Langou, M. Rozloznik, J. van den Eshof, Rounding error analysis of the classical Gram-Schmidt orthogonalization
// process, 2005). All blocks are column-major and owned by the object.
//
// A column that depends on those before it leaves a diagonal element of R at rounding level, a zero column leaves 0: it
// is for the caller to look at the condition (`conditionBound`).
class ThinQr
{
public:
    // `a` is rows x columns, column-major, rows >= columns (asserted).
    ThinQr(const double* a, long long rows, long long columns);

    const double* q(long long column) const { return m_q.data() + column * m_rows; }
    // Element of R, zero below the diagonal.
    double r(long long row, long long column) const { return m_r[static_cast<std::size_t>(column * m_columns + row)]; }
    const double* rColumn(long long column) const { return m_r.data() + column * m_columns; }

    // Solves R x = y in place, `columns` elements.
    void solveUpper(double* y) const;

    // Frobenius norm of R times that of its inverse: an upper bound of the condition of A, infinite or NaN when A is
    // singular or not finite.
    double conditionBound() const;

private:
    void orthogonalise(long long column);

    long long m_rows;
    long long m_columns;
    std::vector<double> m_q;
    std::vector<double> m_r;
};

} // namespace XTNT
