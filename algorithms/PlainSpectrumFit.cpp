// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/PlainSpectrumFit.h"

#include "XTNT/least_squares.h"

#include <iostream>
#include <vector>

using XTNT::Matrix;
using XTNT::Vector;

namespace {

Matrix<double> rowsOf(const Matrix<double>& a, const Vector<long long>& rows, const Vector<long long>& columns)
{
    Matrix<double> part(rows.size(), columns.size());
    for (long long i = 0; i < rows.size(); ++i) {
        for (long long j = 0; j < columns.size(); ++j) {
            part[i][j] = a[rows[i]][columns[j]];
        }
    }
    return part;
}

} // namespace

PlainSpectrumFit::PlainSpectrumFit(const Matrix<double>& conc, const Matrix<double>& data, bool trace)
    : m_conc(conc), m_data(data), m_trace(trace)
{
}

Matrix<double> PlainSpectrumFit::solve()
{
    return XTNT::solveForLeft(m_conc, m_data);
}

const Vector<double>& PlainSpectrumFit::nonNegative(long long band)
{
    if (!m_nonNegative) {
        m_nonNegative.emplace(m_conc);
    }
    const Vector<double>& x = m_nonNegative->fit(m_data, band);
    if (m_trace) {
        std::cout << "SPEC[*][i]\n" << m_data.column(band) << "x\n" << x;
    }
    return x;
}

Matrix<double> PlainSpectrumFit::refit(const Vector<long long>& free, const Vector<long long>& fixed,
                                       const Vector<long long>& bands, const Matrix<double>& spec)
{
    const Matrix<double> design = m_conc.columns(free);
    const Matrix<double> target = m_data.columns(bands) - m_conc.columns(fixed) * rowsOf(spec, fixed, bands);
    Matrix<double> solution = XTNT::solveForLeft(design, target);
    std::optional<NonNegativeFit> nonNegative;
    for (long long j = 0; j < solution.num_cols(); ++j) {
        if (!hasNegative(solution, j)) {
            continue;
        }
        if (!nonNegative) {
            nonNegative.emplace(design);
        }
        const Vector<double>& x = nonNegative->fit(target, j);
        for (long long i = 0; i < solution.num_rows(); ++i) {
            solution[i][j] = x[i];
        }
    }
    return solution;
}

void PlainSpectrumFit::reorder(const Vector<long long>&)
{
    // The matrix itself has been reordered, and m_conc shares it; a transposed copy does not.
    m_nonNegative.reset();
}

double PlainSpectrumFit::residualNorm(const Matrix<double>& target, const Matrix<double>& spec)
{
    return (target - m_conc * spec).norm(2);
}
