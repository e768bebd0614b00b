// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

#include <vector>

// Plain linear algebra on small tables for the reference resolution: one element at a time, sums in long double, no
// solver of the product behind it.
namespace reference {

using Index = long long;
using Column = std::vector<double>;

class Table
{
public:
    Table() = default;
    Table(Index rowCount, Index columnCount)
        : rows(rowCount), columns(columnCount), m_cells(static_cast<std::size_t>(rowCount * columnCount))
    {
    }
    template <class T>
    explicit Table(const XTNT::Matrix<T>& a) : Table(a.M, a.N)
    {
        for (Index i = 0; i < rows * columns; ++i) {
            m_cells[static_cast<std::size_t>(i)] = static_cast<double>(a.storage[i]);
        }
    }

    double& operator()(Index i, Index j) { return m_cells[static_cast<std::size_t>(i * columns + j)]; }
    double operator()(Index i, Index j) const { return m_cells[static_cast<std::size_t>(i * columns + j)]; }
    bool empty() const { return m_cells.empty(); }
    Column row(Index i) const;
    Column column(Index j) const;

    Index rows = 0;
    Index columns = 0;

private:
    std::vector<double> m_cells;
};

Table transposed(const Table& a);
Table product(const Table& a, const Table& b);
Table difference(const Table& a, const Table& b);
Table identity(Index n);
Table asColumn(const Column& values);
Table pickColumns(const Table& a, const std::vector<Index>& chosen);
double frobenius(const Table& a);

// Singular values of a, descending, by rotations of its columns (M. R. Hestenes, 1958) in long double; with each the
// right singular vector and a times it.
struct SingularTriplet
{
    long double value = 0;
    std::vector<long double> vector;
    std::vector<long double> image;
};
std::vector<SingularTriplet> singularTriplets(const Table& a);
Index numericalRank(const Table& a, const std::vector<SingularTriplet>& triplets);

// The approximation of a by its `count` leading singular triplets, no more than its rank.
Table leadingPart(const Table& a, Index count);

// The X of smallest norm among those with |A X - B| least. Empty for a square A that is singular.
Table leastSquares(const Table& a, const Table& b);
// The same for X A close to B.
Table leastSquaresFromRight(const Table& b, const Table& a);

// x >= 0 with |A x - b| least: the best of the least-squares solutions on every set of columns that come out positive.
Column nonNegativeLeastSquares(const Table& a, const Column& b);

} // namespace reference
