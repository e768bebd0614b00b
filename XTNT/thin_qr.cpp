// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/thin_qr.h"

#include "XTNT/xtnt_assert.h"

#include <algorithm>
#include <cmath>

namespace XTNT {

namespace {

double dot(const double* a, const double* b, long long n)
{
    double sum = 0;
    for (long long i = 0; i < n; ++i) {
        sum += a[i] * b[i];
    }
    return sum;
}

} // namespace

ThinQr::ThinQr(const double* a, long long rows, long long columns)
    : m_rows(rows), m_columns(columns), m_q(a, a + rows * columns),
      m_r(static_cast<std::size_t>(columns * columns), 0.0)
{
    XTNT_ASSERT(rows >= columns);
    for (long long column = 0; column < columns; ++column) {
        orthogonalise(column);
    }
}

void ThinQr::orthogonalise(long long column)
{
    double* v = m_q.data() + column * m_rows;
    double* coefficients = m_r.data() + column * m_columns;
    for (int pass = 0; pass < 2; ++pass) {
        for (long long j = 0; j < column; ++j) {
            const double share = dot(q(j), v, m_rows);
            coefficients[j] += share;
            for (long long i = 0; i < m_rows; ++i) {
                v[i] -= share * q(j)[i];
            }
        }
    }
    const double norm = std::sqrt(dot(v, v, m_rows));
    coefficients[column] = norm;
    for (long long i = 0; i < m_rows && norm > 0; ++i) {
        v[i] /= norm;
    }
}

void ThinQr::solveUpper(double* y) const
{
    for (long long j = m_columns - 1; j >= 0; --j) {
        y[j] /= r(j, j);
        for (long long i = 0; i < j; ++i) {
            y[i] -= y[j] * r(i, j);
        }
    }
}

double ThinQr::conditionBound() const
{
    double norm = 0;
    double inverseNorm = 0;
    std::vector<double> unit(static_cast<std::size_t>(m_columns));
    for (long long j = 0; j < m_columns; ++j) {
        norm += dot(rColumn(j), rColumn(j), m_columns);
        std::fill(unit.begin(), unit.end(), 0.0);
        unit[static_cast<std::size_t>(j)] = 1;
        solveUpper(unit.data());
        inverseNorm += dot(unit.data(), unit.data(), m_columns);
    }
    return std::sqrt(norm) * std::sqrt(inverseNorm);
}

} // namespace XTNT
