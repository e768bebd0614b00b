// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/SpectraLikeness.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

using Row = std::vector<double>;

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr int mostSweeps = 60;

double dot(const Row& a, const Row& b)
{
    return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
}

void turn(Row& a, Row& b, double c, double s)
{
    for (std::size_t j = 0; j < a.size(); ++j) {
        const double x = a[j];
        a[j] = c * x - s * b[j];
        b[j] = s * x + c * b[j];
    }
}

// Rotates rows i and k of both so that those of `rows` become orthogonal; false when they were.
bool rotate(std::vector<Row>& rows, std::vector<Row>& turns, std::size_t i, std::size_t k)
{
    const double aa = dot(rows[i], rows[i]);
    const double bb = dot(rows[k], rows[k]);
    const double ab = dot(rows[i], rows[k]);
    if (!(std::abs(ab) > std::numeric_limits<double>::epsilon() * std::sqrt(aa * bb))) {
        return false;
    }
    const double zeta = (bb - aa) / (2.0 * ab);
    const double t = std::copysign(1.0, zeta) / (std::abs(zeta) + std::hypot(1.0, zeta));
    const double c = 1.0 / std::hypot(1.0, t);
    turn(rows[i], rows[k], c, c * t);
    turn(turns[i], turns[k], c, c * t);
    return true;
}

void makeOrthogonal(std::vector<Row>& rows, std::vector<Row>& turns)
{
    bool rotated = true;
    for (int sweep = 0; sweep < mostSweeps && rotated; ++sweep) {
        rotated = false;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            for (std::size_t k = i + 1; k < rows.size(); ++k) {
                rotated = rotate(rows, turns, i, k) || rotated;
            }
        }
    }
}

} // namespace

SpectraLikeness SpectraLikeness::of(const XTNT::Matrix<double>& spectra)
{
    SpectraLikeness likeness;
    const auto count = static_cast<std::size_t>(spectra.num_rows());
    std::vector<Row> rows;
    std::vector<Row> turns;
    std::vector<double> lengths;
    for (std::size_t k = 0; k < count; ++k) {
        const double* values = spectra[static_cast<long long>(k)];
        rows.emplace_back(values, values + spectra.num_cols());
        lengths.push_back(std::sqrt(dot(rows[k], rows[k])));
        for (double& value : rows[k]) {
            value = lengths[k] > 0.0 ? value / lengths[k] : 0.0;
        }
        turns.emplace_back(count, 0.0);
        turns[k][k] = 1.0;
    }
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t k = i + 1; k < count; ++k) {
            const double cosine = dot(rows[i], rows[k]);
            if (likeness.first < 0 || cosine > likeness.cosine) {
                likeness.first = static_cast<int>(i);
                likeness.second = static_cast<int>(k);
                likeness.cosine = cosine;
            }
        }
    }
    makeOrthogonal(rows, turns);
    double largest = 0.0;
    double smallest = infinite;
    std::vector<double> squares(count, 0.0);
    for (const Row& row : rows) {
        largest = std::max(largest, std::sqrt(dot(row, row)));
    }
    const double negligible = largest * static_cast<double>(count) * std::numeric_limits<double>::epsilon();
    for (std::size_t i = 0; i < count; ++i) {
        const double length = std::sqrt(dot(rows[i], rows[i]));
        const bool dependent = !(length > negligible);
        smallest = dependent ? 0.0 : std::min(smallest, length);
        for (std::size_t k = 0; k < count; ++k) {
            const double part = turns[i][k] * turns[i][k];
            if (!dependent) {
                squares[k] += part / (length * length);
            } else if (part > std::numeric_limits<double>::epsilon()) {
                squares[k] = infinite;
            }
        }
    }
    likeness.condition = smallest > 0.0 ? largest / smallest : infinite;
    for (std::size_t k = 0; k < count; ++k) {
        likeness.amplifications.push_back(std::sqrt(squares[k]));
        likeness.deviations.push_back(lengths[k] > 0.0 ? std::sqrt(squares[k]) / lengths[k] : infinite);
    }
    return likeness;
}
