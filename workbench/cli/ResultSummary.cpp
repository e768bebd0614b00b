// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/cli/ResultSummary.h"

#include "XTNT/xtnt_parallel.h"

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
            for (long long j = 0; j < bands; ++j)
                fit[static_cast<std::size_t>(j)] += amount * spectrum[j];
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
    for (long long j = 0; j < matrix.num_cols(); ++j)
        sum += matrix[i][j];
    return sum;
}

} // namespace

std::vector<double> ResultSummary::signalShares(const Matrix<double>& data, const Matrix<double>& concentrations,
                                                const Matrix<double>& spectra)
{
    double total = 0.0;
    for (long long p = 0; p < data.num_rows(); ++p)
        total += sumOfRow(data, p);
    std::vector<double> shares;
    for (long long k = 0; k < spectra.num_rows(); ++k)
        shares.push_back(total == 0.0 ? notKnown : sumOfRow(concentrations, k) * sumOfRow(spectra, k) / total);
    return shares;
}

double ResultSummary::relativeResidual(const Matrix<double>& data, const Matrix<double>& concentrations,
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

double ResultSummary::correlation(const std::vector<double>& a, const std::vector<double>& b)
{
    if (a.size() != b.size() || a.empty())
        return notKnown;
    const auto n = static_cast<double>(a.size());
    double meanA = 0.0;
    double meanB = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        meanA += a[i] / n;
        meanB += b[i] / n;
    }
    double ab = 0.0;
    double aa = 0.0;
    double bb = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        ab += (a[i] - meanA) * (b[i] - meanB);
        aa += (a[i] - meanA) * (a[i] - meanA);
        bb += (b[i] - meanB) * (b[i] - meanB);
    }
    return aa > 0.0 && bb > 0.0 ? ab / std::sqrt(aa * bb) : notKnown;
}

double ResultSummary::relativeError(const std::vector<double>& map, const std::vector<double>& truth)
{
    if (map.size() != truth.size())
        return notKnown;
    double difference = 0.0;
    double size = 0.0;
    for (std::size_t i = 0; i < map.size(); ++i) {
        difference += (map[i] - truth[i]) * (map[i] - truth[i]);
        size += truth[i] * truth[i];
    }
    return size > 0.0 ? std::sqrt(difference / size) : notKnown;
}
