// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/PlainSpectrumFit.h"

#include "XTNT/least_squares.h"
#include "XTNT/nnls.h"

#include <algorithm>
#include <iostream>
#include <vector>

using XTNT::Matrix;
using XTNT::Vector;

namespace {

// The x >= 0 that minimises |C x - d|. The solver destroys its inputs: d is a copy, the design matrix is made anew.
Vector<double> solveNonNegative(const Matrix<double>& conc, Vector<double> d)
{
    const int pixels = static_cast<int>(conc.num_rows());
    const int components = static_cast<int>(conc.num_cols());
    Matrix<double> design = conc.transpose(); // row-major K x M is column-major M x K
    Vector<double> x(components);
    std::vector<double> dual(static_cast<std::size_t>(components));
    std::vector<double> work(static_cast<std::size_t>(pixels));
    std::vector<int> index(static_cast<std::size_t>(components) + 1);
    double rnorm = 0;
    int mode = 0;
    XTNT::NNLS(design.storage.data, pixels, pixels, components, d.data, x.data, &rnorm, dual.data(), work.data(),
               index.data(), &mode);
    return x;
}

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

Vector<double> PlainSpectrumFit::nonNegative(long long band)
{
    const Vector<double> column = m_data.column(band);
    const Vector<double> x = solveNonNegative(m_conc, column.deepCopy());
    if (m_trace) {
        std::cout << "SPEC[*][i]\n" << column << "x\n" << x;
    }
    return x;
}

Matrix<double> PlainSpectrumFit::refit(const Vector<long long>& free, const Vector<long long>& fixed,
                                       const Vector<long long>& bands, const Matrix<double>& spec)
{
    const Matrix<double> design = m_conc.columns(free);
    const Matrix<double> target = m_data.columns(bands) - m_conc.columns(fixed) * rowsOf(spec, fixed, bands);
    Matrix<double> solution = XTNT::solveForLeft(design, target);
    for (long long j = 0; j < solution.num_cols(); ++j) {
        const Vector<double> column = solution.column(j);
        if (std::none_of(column.data, column.data + column.size(), [](double value) { return value < 0; })) {
            continue;
        }
        const Vector<double> x = solveNonNegative(design, target.column(j));
        for (long long i = 0; i < solution.num_rows(); ++i) {
            solution[i][j] = x[i];
        }
    }
    return solution;
}

void PlainSpectrumFit::reorder(const Vector<long long>&)
{
    // The matrix itself has been reordered, and m_conc shares it.
}

double PlainSpectrumFit::residualNorm(const Matrix<double>& target, const Matrix<double>& spec)
{
    return (target - m_conc * spec).norm(2);
}
