// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/FitStatistics.h"

#include "XTNT/xtnt_parallel.h"
#include "XTNT/xtnt_vector.h"
#include "host/corrcoef.h"

#include <algorithm>
#include <cmath>

namespace {

using XTNT::Matrix;

constexpr double notKnown = std::numeric_limits<double>::quiet_NaN();
constexpr long long rowsPerChunk = 4096;

struct Sums
{
    double squares = 0.0;
    double residualSquares = 0.0;
};

// One chunk of rows; the residual is formed explicitly, so a nearly perfect fit does not cancel.
Sums residualOfRows(const Matrix<double>& data, const Matrix<double>& concentrations, const Matrix<double>& spectra,
                    long long begin, long long end)
{
    Sums sums;
    const long long bands = data.num_cols();
    const long long components = spectra.num_rows();
    std::vector<double> fit(static_cast<std::size_t>(bands));
    for (long long p = begin; p < end; ++p) {
        std::fill(fit.begin(), fit.end(), 0.0);
        for (long long k = 0; k < components; ++k) {
            const double amount = concentrations[k][p];
            const double* spectrum = spectra[k];
            for (long long j = 0; j < bands; ++j) {
                fit[static_cast<std::size_t>(j)] += amount * spectrum[j];
            }
        }
        const double* row = data[p];
        for (long long j = 0; j < bands; ++j) {
            const double rest = row[j] - fit[static_cast<std::size_t>(j)];
            sums.squares += row[j] * row[j];
            sums.residualSquares += rest * rest;
        }
    }
    return sums;
}

double sumOfRow(const Matrix<double>& matrix, long long i)
{
    double sum = 0.0;
    for (long long j = 0; j < matrix.num_cols(); ++j) {
        sum += matrix[i][j];
    }
    return sum;
}

// Whether the values are finite and not all the same.
bool varies(const std::vector<double>& values)
{
    const bool finite = std::all_of(values.begin(), values.end(), [](double v) { return std::isfinite(v); });
    return finite && std::any_of(values.begin(), values.end(), [&](double v) { return v != values.front(); });
}

} // namespace

std::vector<double> FitStatistics::signalShares(const Matrix<double>& data, const Matrix<double>& concentrations,
                                                const Matrix<double>& spectra)
{
    double total = 0.0;
    for (long long p = 0; p < data.num_rows(); ++p) {
        total += sumOfRow(data, p);
    }
    std::vector<double> shares;
    for (long long k = 0; k < spectra.num_rows(); ++k) {
        shares.push_back(total == 0.0 ? notKnown : sumOfRow(concentrations, k) * sumOfRow(spectra, k) / total);
    }
    return shares;
}

double FitStatistics::relativeResidual(const Matrix<double>& data, const Matrix<double>& concentrations,
                                       const Matrix<double>& spectra)
{
    const long long chunks = (data.num_rows() + rowsPerChunk - 1) / rowsPerChunk;
    std::vector<Sums> parts(static_cast<std::size_t>(chunks));
    XTNT::parallelChunks(data.num_rows(), rowsPerChunk, [&](long long begin, long long end) {
        parts[static_cast<std::size_t>(begin / rowsPerChunk)] =
            residualOfRows(data, concentrations, spectra, begin, end);
    });
    Sums total;
    for (const auto& part : parts) {
        total.squares += part.squares;
        total.residualSquares += part.residualSquares;
    }
    return total.squares == 0.0 ? notKnown : std::sqrt(total.residualSquares / total.squares);
}

double FitStatistics::correlation(const std::vector<double>& a, const std::vector<double>& b)
{
    if (a.size() != b.size() || !varies(a) || !varies(b)) {
        return notKnown;
    }
    // Views of what stays the caller's: nothing is written through them.
    XTNT::Vector<double> first(const_cast<double*>(a.data()), static_cast<long long>(a.size()));
    XTNT::Vector<double> second(const_cast<double*>(b.data()), static_cast<long long>(b.size()));
    return XTNT::corrcoef(first, second);
}

double FitStatistics::cosine(const std::vector<double>& a, const std::vector<double>& b)
{
    if (a.size() != b.size()) {
        return notKnown;
    }
    double product = 0.0;
    double squaresA = 0.0;
    double squaresB = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        product += a[i] * b[i];
        squaresA += a[i] * a[i];
        squaresB += b[i] * b[i];
    }
    const double norms = std::sqrt(squaresA) * std::sqrt(squaresB);
    return norms > 0.0 ? product / norms : notKnown;
}

double FitStatistics::relativeError(const std::vector<double>& map, const std::vector<double>& truth)
{
    if (map.size() != truth.size()) {
        return notKnown;
    }
    double difference = 0.0;
    double size = 0.0;
    for (std::size_t i = 0; i < map.size(); ++i) {
        difference += (map[i] - truth[i]) * (map[i] - truth[i]);
        size += truth[i] * truth[i];
    }
    return size > 0.0 ? std::sqrt(difference / size) : notKnown;
}
