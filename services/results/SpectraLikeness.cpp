// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/SpectraLikeness.h"

#include "XTNT/xtnt_svd.h"
#include "XTNT/xtnt_vector.h"

#include <algorithm>
#include <cmath>

namespace {

using XTNT::Matrix;

constexpr double infinite = std::numeric_limits<double>::infinity();

double dot(const double* a, const double* b, long long n)
{
    double sum = 0.0;
    for (long long j = 0; j < n; ++j) {
        sum += a[j] * b[j];
    }
    return sum;
}

// The rows scaled to length 1; one of zeros stays as it is.
Matrix<double> unitRows(const Matrix<double>& spectra, std::vector<double>& lengths)
{
    Matrix<double> unit(spectra.num_rows(), spectra.num_cols());
    for (long long k = 0; k < spectra.num_rows(); ++k) {
        const double length = std::sqrt(dot(spectra[k], spectra[k], spectra.num_cols()));
        lengths.push_back(length);
        for (long long j = 0; j < spectra.num_cols(); ++j) {
            unit[k][j] = length > 0.0 ? spectra[k][j] / length : 0.0;
        }
    }
    return unit;
}

// Diagonal of the inverse of A'A, from A = U diag(s) V'; infinite where a singular value that is none has a part in it.
std::vector<double> diagonalOfInverse(const XTNT::SVD& svd, double dNegligible)
{
    constexpr double epsilon = std::numeric_limits<double>::epsilon();
    std::vector<double> diagonal(static_cast<std::size_t>(svd.n), 0.0);
    for (long long i = 0; i < svd.n; ++i) {
        const double value = i < svd.s.n_ ? svd.s[i] : 0.0;
        for (long long k = 0; k < svd.n; ++k) {
            const double part = svd.V[k][i] * svd.V[k][i];
            if (value > dNegligible) {
                diagonal[static_cast<std::size_t>(k)] += part / (value * value);
            } else if (part > epsilon) {
                diagonal[static_cast<std::size_t>(k)] = infinite;
            }
        }
    }
    return diagonal;
}

} // namespace

SpectraLikeness SpectraLikeness::of(const Matrix<double>& spectra)
{
    SpectraLikeness likeness;
    const long long count = spectra.num_rows();
    if (count < 1) {
        return likeness;
    }
    std::vector<double> lengths;
    const Matrix<double> unit = unitRows(spectra, lengths);
    for (long long i = 0; i < count; ++i) {
        for (long long k = i + 1; k < count; ++k) {
            const double cosine = dot(unit[i], unit[k], unit.num_cols());
            if (likeness.first < 0 || cosine > likeness.cosine) {
                likeness.first = static_cast<int>(i);
                likeness.second = static_cast<int>(k);
                likeness.cosine = cosine;
            }
        }
    }
    const XTNT::SVD svd(unit.transpose());
    const double largest = svd.s.n_ > 0 ? svd.s[0] : 0.0;
    const double smallest = svd.s.n_ == count ? svd.s[count - 1] : 0.0;
    const auto sides = static_cast<double>(std::max(count, unit.num_cols()));
    const double negligible = largest * sides * std::numeric_limits<double>::epsilon();
    likeness.condition = smallest > negligible ? largest / smallest : infinite;
    const std::vector<double> squares = diagonalOfInverse(svd, negligible);
    for (std::size_t k = 0; k < squares.size(); ++k) {
        likeness.amplifications.push_back(std::sqrt(squares[k]));
        likeness.deviations.push_back(lengths[k] > 0.0 ? std::sqrt(squares[k]) / lengths[k] : infinite);
    }
    return likeness;
}
