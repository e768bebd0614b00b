// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <vector>

// Dense arrays of the reconstruction library, as far as the simplex method needs them.
template <class T>
class NRVec
{
public:
    NRVec() = default;
    explicit NRVec(std::size_t n, T value = T()) : m_elements(n, value) {}
    std::size_t size() const { return m_elements.size(); }
    T& operator[](std::size_t i) { return m_elements[i]; }
    const T& operator[](std::size_t i) const { return m_elements[i]; }

private:
    std::vector<T> m_elements;
};

template <class T>
class NRMat
{
public:
    NRMat() = default;
    NRMat(std::size_t rows, std::size_t cols, T value = T())
        : m_rows(rows), m_cols(cols), m_elements(rows * cols, value)
    {
    }
    std::size_t nrows() const { return m_rows; }
    std::size_t ncols() const { return m_cols; }
    T* operator[](std::size_t i) { return m_elements.data() + i * m_cols; }
    const T* operator[](std::size_t i) const { return m_elements.data() + i * m_cols; }

private:
    std::size_t m_rows = 0;
    std::size_t m_cols = 0;
    std::vector<T> m_elements;
};

namespace NR {

// The simplex method for a linear program of n variables x >= 0 on a tableau `a` of m1 + m2 + m3 + 2 rows and n + 1
// columns: row 0 is the objective to be maximised, rows 1 to m1 are constraints "at most", then m2 "at least", then m3
// equalities; column 0 holds the right-hand sides (not negative), the coefficients of the constraints are entered
// negated; the last row is work space. On return:
//   icase   0 a finite optimum, 1 the objective is unbounded, -1 no point meets the constraints;
//   a       the tableau at the optimum: a[0][0] the objective, a[i + 1][0] the value of the variable of row i + 1;
//   iposv   [i] names the variable of constraint row i + 1; a value of n or more is a slack variable;
//   izrov   [j] names the variable at zero of column j + 1, numbered alike.
// Both index vectors are sized by the routine. Degenerate vertices do not make it cycle (R. G. Bland, New finite
// pivoting rules for the simplex method, 1977). Throws std::invalid_argument on a tableau of another size, a negative
// right-hand side or an element that is not finite, and std::runtime_error when rounding errors keep it from an end.
// `a` and the index vectors are left alone unless icase is 0.
void simplx(NRMat<double>& a, std::size_t m1, std::size_t m2, std::size_t m3, int& icase, NRVec<int>& izrov,
            NRVec<int>& iposv);

} // namespace NR
