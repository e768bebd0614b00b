// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/program/ConditionNumber.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace {

using Row = std::vector<double>;

double dot(const Row& a, const Row& b)
{
    return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
}

// Rotates two rows so that they become orthogonal; false when they were.
bool rotate(Row& a, Row& b)
{
    const double aa = dot(a, a);
    const double bb = dot(b, b);
    const double ab = dot(a, b);
    if (std::abs(ab) <= 1e-15 * std::sqrt(aa * bb)) {
        return false;
    }
    const double zeta = (bb - aa) / (2.0 * ab);
    const double t = std::copysign(1.0, zeta) / (std::abs(zeta) + std::hypot(1.0, zeta));
    const double c = 1.0 / std::hypot(1.0, t);
    const double s = c * t;
    for (std::size_t j = 0; j < a.size(); ++j) {
        const double x = a[j];
        a[j] = c * x - s * b[j];
        b[j] = s * x + c * b[j];
    }
    return true;
}

} // namespace

double conditionNumber(const XTNT::Matrix<double>& matrix)
{
    std::vector<Row> rows;
    for (long long k = 0; k < matrix.num_rows(); ++k) {
        rows.emplace_back(matrix[k], matrix[k] + matrix.num_cols());
    }
    constexpr int sweeps = 60;
    bool rotated = true;
    for (int sweep = 0; sweep < sweeps && rotated; ++sweep) {
        rotated = false;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            for (std::size_t k = i + 1; k < rows.size(); ++k) {
                rotated = rotate(rows[i], rows[k]) || rotated;
            }
        }
    }
    std::vector<double> norms;
    for (const auto& row : rows) {
        norms.push_back(std::sqrt(dot(row, row)));
    }
    const auto extremes = std::minmax_element(norms.begin(), norms.end());
    return *extremes.second / *extremes.first;
}
