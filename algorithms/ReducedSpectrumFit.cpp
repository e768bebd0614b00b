// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/ReducedSpectrumFit.h"

#include "XTNT/least_squares.h"
#include "XTNT/residual_norm.h"
#include "XTNT/thin_qr.h"
#include "XTNT/xtnt_assert.h"

#include <algorithm>
#include <cmath>
#include <utility>

using XTNT::LeftReduction;
using XTNT::Matrix;
using XTNT::Vector;

namespace {

// Largest condition of the concentrations, columns scaled to one norm, with which the triangle is solved as it is. A
// factorisation calls columns dependent only well beyond.
constexpr double largestCondition = 1e10;

// Below this share of the data the residual that is left after the reduction is of the size of its rounding.
constexpr double smallestLackOfFit = 1e-9;

bool allFinite(const Matrix<double>& a)
{
    const double* values = a.storage.data;
    return std::all_of(values, values + a.storage.size(), [](double value) { return std::isfinite(value); });
}

double squaresOf(const Matrix<double>& a)
{
    double sum = 0;
    for (long long i = 0; i < a.storage.size(); ++i) {
        sum += a.storage[i] * a.storage[i];
    }
    return sum;
}

// Bound of the condition of an upper triangular matrix whose columns are scaled to one norm.
double scaledCondition(const Matrix<double>& triangle)
{
    const long long n = triangle.num_rows();
    Matrix<double> columns = triangle.transpose();
    for (long long k = 0; k < n; ++k) {
        double* column = columns[k];
        double squares = 0;
        for (long long i = 0; i <= k; ++i) {
            squares += column[i] * column[i];
        }
        for (long long i = 0; i <= k; ++i) {
            column[i] /= std::sqrt(squares);
        }
    }
    return XTNT::ThinQr(columns[0], n, n).conditionBound();
}

// X with triangle X = B, upper triangular.
Matrix<double> solveTriangle(const Matrix<double>& triangle, const Matrix<double>& B)
{
    Matrix<double> X = B.deepCopy();
    for (long long k = X.num_rows() - 1; k >= 0; --k) {
        double* __restrict row = X[k];
        for (long long l = k + 1; l < X.num_rows(); ++l) {
            const double factor = triangle[k][l];
            const double* __restrict known = X[l];
            for (long long j = 0; j < X.num_cols(); ++j) {
                row[j] -= factor * known[j];
            }
        }
        for (long long j = 0; j < X.num_cols(); ++j) {
            row[j] /= triangle[k][k];
        }
    }
    return X;
}

// The power of two that brings a magnitude near 1; 1 for a magnitude that has none.
double scaleToOne(double magnitude)
{
    return magnitude > 0 && std::isfinite(magnitude) ? std::ldexp(1.0, -std::clamp(std::ilogb(magnitude), -1000, 1000))
                                                     : 1.0;
}

} // namespace

ReducedSpectrumFit::ReducedSpectrumFit(const Matrix<double>& conc, const Matrix<double>& data)
    : ReducedSpectrumFit(conc, data, nullptr)
{
}

ReducedSpectrumFit::ReducedSpectrumFit(const Matrix<double>& conc, const Matrix<double>& data,
                                       std::unique_ptr<LeftReduction> reduction)
    : m_conc(conc), m_data(data), m_reduction(std::move(reduction)),
      m_scales(static_cast<std::size_t>(conc.num_cols()), 1.0)
{
    if (!m_reduction) {
        m_reduction = std::make_unique<LeftReduction>(m_data, m_conc.num_cols());
        m_reduction->addAll(m_conc);
    }
    if (!m_reduction->inRange()) {
        bringIntoRange();
    }
}

// Reduces a copy of the concentrations with columns of magnitudes near 1.
void ReducedSpectrumFit::bringIntoRange()
{
    Matrix<double> scaled = m_conc.deepCopy();
    const Vector<double> largest = m_conc.absolute().maxAlong(0);
    for (long long k = 0; k < scaled.num_cols(); ++k) {
        const double scale = scaleToOne(largest[k]);
        m_scales[static_cast<std::size_t>(k)] = scale;
        for (long long i = 0; i < scaled.num_rows(); ++i) {
            scaled[i][k] *= scale;
        }
    }
    m_reduction = std::make_unique<LeftReduction>(m_data, m_conc.num_cols());
    m_reduction->addAll(scaled);
}

Matrix<double> ReducedSpectrumFit::solve()
{
    const Matrix<double>& triangle = m_reduction->triangle();
    const Matrix<double>& head = m_reduction->head();
    // Written so that NaN fails.
    if (m_conc.num_rows() <= m_conc.num_cols() || !m_reduction->inRange() || !allFinite(head) ||
        !(scaledCondition(triangle) <= largestCondition)) {
        return XTNT::solveForLeft(m_conc, m_data);
    }
    Matrix<double> spec = solveTriangle(triangle, head);
    for (long long k = 0; k < spec.num_rows(); ++k) {
        for (long long j = 0; j < spec.num_cols(); ++j) {
            spec[k][j] *= m_scales[static_cast<std::size_t>(k)];
        }
    }
    return allFinite(spec) ? spec : XTNT::solveForLeft(m_conc, m_data);
}

const Vector<double>& ReducedSpectrumFit::nonNegative(long long band)
{
    if (!m_nonNegative) {
        m_nonNegative.emplace(m_reduction->triangle());
    }
    Vector<double>& x = m_nonNegative->fit(m_reduction->head(), band);
    for (long long k = 0; k < x.size(); ++k) {
        x[k] *= m_scales[static_cast<std::size_t>(k)];
    }
    return x;
}

Matrix<double> ReducedSpectrumFit::refit(const Vector<long long>& free, const Vector<long long>& fixed,
                                         const Vector<long long>& bands, const Matrix<double>& spec)
{
    const Matrix<double> design = m_reduction->triangle().columns(free);
    Matrix<double> known(fixed.size(), bands.size());
    for (long long i = 0; i < known.num_rows(); ++i) {
        for (long long j = 0; j < known.num_cols(); ++j) {
            known[i][j] = spec[fixed[i]][bands[j]] / m_scales[static_cast<std::size_t>(fixed[i])];
        }
    }
    const Matrix<double> target = m_reduction->head().columns(bands) - m_reduction->triangle().columns(fixed) * known;
    Matrix<double> solution = design.lssolve(target);
    std::optional<NonNegativeFit> nonNegative;
    for (long long j = 0; j < solution.num_cols(); ++j) {
        if (hasNegative(solution, j)) {
            if (!nonNegative) {
                nonNegative.emplace(design);
            }
            const Vector<double>& x = nonNegative->fit(target, j);
            for (long long i = 0; i < solution.num_rows(); ++i) {
                solution[i][j] = x[i];
            }
        }
        for (long long i = 0; i < solution.num_rows(); ++i) {
            solution[i][j] *= m_scales[static_cast<std::size_t>(free[i])];
        }
    }
    return solution;
}

void ReducedSpectrumFit::reorder(const Vector<long long>& order)
{
    m_reduction->reorder(order);
    m_nonNegative.reset();
    const std::vector<double> former = m_scales;
    for (long long i = 0; i < order.size(); ++i) {
        m_scales[static_cast<std::size_t>(i)] = former[static_cast<std::size_t>(order[i])];
    }
}

double ReducedSpectrumFit::residualNorm(const Matrix<double>& target, const Matrix<double>& spec)
{
    if (target.storage.data == m_data.storage.data) {
        const double squares = reducedResidualSquares(spec);
        const double all = m_reduction->restSquares() + squaresOf(m_reduction->head());
        if (std::isnormal(all) && squares > smallestLackOfFit * smallestLackOfFit * all && std::isnormal(squares)) {
            return std::sqrt(squares);
        }
    }
    return XTNT::residualNorm(target, m_conc, spec);
}

double ReducedSpectrumFit::reducedResidualSquares(const Matrix<double>& spec) const
{
    Matrix<double> scaled = spec.deepCopy();
    for (long long k = 0; k < scaled.num_rows(); ++k) {
        for (long long j = 0; j < scaled.num_cols(); ++j) {
            scaled[k][j] /= m_scales[static_cast<std::size_t>(k)];
        }
    }
    return m_reduction->restSquares() + squaresOf(m_reduction->head() - m_reduction->triangle() * scaled);
}
