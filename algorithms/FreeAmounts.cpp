// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/FreeAmounts.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace {

using XTNT::Matrix;

// More rows cost time and change little. They lie in steps that are not even, by parts of the golden ratio: even ones
// could fall on a few columns of the images.
constexpr long long mostRows = 5000;
constexpr double golden = 0.6180339887498949;

constexpr double errorsBelow = 2.0;
constexpr double dimBand = 0.05;

// Of the elements of a row with such amounts.
FreeAmounts::Column variancesOf(const double* amounts, const XTNT::NoiseModel& noise, const Matrix<double>& S)
{
    FreeAmounts::Column variances;
    for (long long b = 0; b < S.num_cols(); ++b) {
        double expected = 0.0;
        for (long long k = 0; k < S.num_rows(); ++k) {
            expected += amounts[k] * S[k][b];
        }
        variances.push_back(noise.slopes[0][b] * std::max(expected, 0.0) + noise.floors[0][b]);
    }
    return variances;
}

// The i-th of `count` rows out of so many.
long long rowOf(long long i, long long count, long long rows)
{
    const double part = std::fmod(golden * static_cast<double>(i), 1.0);
    const double at = (static_cast<double>(i) + part) * static_cast<double>(rows) / static_cast<double>(count);
    return std::min(static_cast<long long>(at), rows - 1);
}

void addTimes(double t, const FreeAmounts::Column& what, FreeAmounts::Column& target)
{
    std::transform(what.begin(), what.end(), target.begin(), target.begin(),
                   [t](double a, double b) { return b + t * a; });
}

} // namespace

bool FreeAmounts::addRow(const double* data, const Column& variances, const Matrix<double>& S)
{
    const long long count = components();
    Matrix<double> gram(count, count);
    Column right(static_cast<std::size_t>(count));
    for (long long b = 0; b < S.num_cols(); ++b) {
        const double weight = 1.0 / variances[static_cast<std::size_t>(b)];
        for (long long k = 0; k < count; ++k) {
            const double weighted = weight * S[k][b];
            right[static_cast<std::size_t>(k)] += weighted * data[b];
            for (long long l = 0; l < count; ++l) {
                gram[k][l] += weighted * S[l][b];
            }
        }
    }
    const Matrix<double> inverse = gram.inverse();
    if (inverse.empty()) {
        return false;
    }
    for (long long k = 0; k < count; ++k) {
        const double amount = std::inner_product(right.begin(), right.end(), inverse[k], 0.0);
        for (long long l = 0; l < count; ++l) {
            m_covariances[place(k, l)].push_back(inverse[k][l]);
        }
        if (!std::isfinite(amount)) {
            return false;
        }
        m_amounts[static_cast<std::size_t>(k)].push_back(amount);
    }
    return true;
}

bool FreeAmounts::fit(const Matrix<double>& D, const Matrix<double>& C, const XTNT::NoiseModel& noise,
                      const Matrix<double>& S)
{
    const long long bands = S.num_cols();
    m_amounts.assign(static_cast<std::size_t>(S.num_rows()), {});
    m_covariances.assign(m_amounts.size() * m_amounts.size(), {});
    m_bandVariances.assign(static_cast<std::size_t>(bands), 0.0);
    const long long count = std::min(D.num_rows(), mostRows);
    for (long long i = 0; i < count; ++i) {
        const long long p = rowOf(i, count, D.num_rows());
        const Column variances = variancesOf(C[p], noise, S);
        std::transform(variances.begin(), variances.end(), m_bandVariances.begin(), m_bandVariances.begin(),
                       [](double variance, double sum) { return sum + variance; });
        if (!addRow(D[p], variances, S)) {
            return false;
        }
    }
    for (double& variance : m_bandVariances) {
        variance /= static_cast<double>(rows());
    }
    return true;
}

Matrix<double> FreeAmounts::leftover(const Matrix<double>& D, const Matrix<double>& C, const XTNT::NoiseModel& noise,
                                     const Matrix<double>& S) const
{
    const auto count = static_cast<long long>(rows());
    Matrix<double> left(count, S.num_cols());
    for (long long i = 0; i < count; ++i) {
        const long long p = rowOf(i, count, D.num_rows());
        const Column variances = variancesOf(C[p], noise, S);
        for (long long b = 0; b < S.num_cols(); ++b) {
            double explained = 0.0;
            for (long long k = 0; k < components(); ++k) {
                explained += amounts(k)[static_cast<std::size_t>(i)] * S[k][b];
            }
            left[i][b] = (D[p][b] - explained) / std::sqrt(variances[static_cast<std::size_t>(b)]);
        }
    }
    return left;
} // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the shares of a matrix are counted

double FreeAmounts::error(long long k, std::size_t p) const
{
    return std::sqrt(std::max(covariance(k, k)[p], 0.0));
}

double FreeAmounts::mostGivenUp(const Matrix<double>& S, long long i, long long j) const
{
    const Column& ours = amounts(i);
    const double squares =
        std::max(std::inner_product(ours.begin(), ours.end(), ours.begin(), 0.0), std::numeric_limits<double>::min());
    const double maximum = *std::max_element(S[j], S[j] + S.num_cols());
    double most = std::numeric_limits<double>::infinity();
    for (long long b = 0; b < S.num_cols(); ++b) {
        if (S[j][b] > dimBand * maximum) {
            const double error = std::sqrt(m_bandVariances[static_cast<std::size_t>(b)]) / std::sqrt(squares);
            most = std::min(most, (S[i][b] + errorsBelow * error) / S[j][b]);
        }
    }
    return most;
}

void FreeAmounts::giveUp(long long i, long long j, double t, Matrix<double>& S)
{
    addTimes(t, amounts(i), m_amounts[static_cast<std::size_t>(j)]);
    for (long long l = 0; l < components(); ++l) {
        addTimes(t, covariance(i, l), m_covariances[place(j, l)]);
    }
    for (long long l = 0; l < components(); ++l) {
        addTimes(t, covariance(l, i), m_covariances[place(l, j)]);
    }
    for (long long b = 0; b < S.num_cols(); ++b) {
        S[i][b] = std::max(S[i][b] - t * S[j][b], 0.0);
    }
}
