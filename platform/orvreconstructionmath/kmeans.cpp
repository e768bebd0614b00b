// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/kmeans.h"

#include "XTNT/xtnt_parallel.h"
#include "platform/orvreconstructionmath/kmeans_solver.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace XTNT {

namespace {

constexpr long long chunkRows = 2048;

// Binary exponents of the largest magnitude between which squares neither overflow nor vanish.
constexpr int largestExponent = 400;

// What a look at all rows tells.
struct Survey
{
    std::vector<char> counts; // one flag a row: it takes part
    double largest = 0;       // magnitude over the finite rows
};

Survey surveyRows(const Matrix<double>& data)
{
    Survey survey;
    survey.counts.resize(static_cast<std::size_t>(data.num_rows()));
    std::vector<double> largest(static_cast<std::size_t>((data.num_rows() - 1) / chunkRows + 1), 0.0);
    parallelChunks(data.num_rows(), chunkRows, [&](long long begin, long long end) {
        double chunkLargest = 0;
        for (long long row = begin; row < end; ++row) {
            const double* x = data[row];
            double rowLargest = 0;
            double nothing = 0;
            for (long long i = 0; i < data.num_cols(); ++i) {
                rowLargest = std::max(rowLargest, std::abs(x[i]));
                nothing += x[i] * 0.0;
            }
            const bool finite = nothing == 0;
            // A cluster of rows without content would have a centre of zeros, which nobody can scale.
            survey.counts[static_cast<std::size_t>(row)] = finite && rowLargest > 0 ? 1 : 0;
            chunkLargest = finite ? std::max(chunkLargest, rowLargest) : chunkLargest;
        }
        largest[static_cast<std::size_t>(begin / chunkRows)] = chunkLargest;
    });
    survey.largest = *std::max_element(largest.begin(), largest.end());
    return survey;
}

// The data times a power of two, so that the largest magnitude comes near 1.
Matrix<double> rescaled(const Matrix<double>& data, int exponent)
{
    Matrix<double> result(data.num_rows(), data.num_cols());
    for (long long i = 0; i < data.storage.n_; ++i) {
        result.storage[i] = std::ldexp(data.storage[i], -exponent);
    }
    return result;
}

std::vector<const double*> rowsThatCount(const Matrix<double>& data, const Survey& survey)
{
    std::vector<const double*> rows;
    rows.reserve(survey.counts.size());
    for (long long row = 0; row < data.num_rows(); ++row) {
        if (survey.counts[static_cast<std::size_t>(row)] != 0) {
            rows.push_back(data[row]);
        }
    }
    return rows;
}

} // namespace

void kmeans(Matrix<double>& data, long long k, Vector<long long>& labels, long long maxIterations,
            KMEANS_DISTFUN /*distance*/, int /*option*/)
{
    labels.reshape(data.num_rows());
    if (data.empty()) {
        return;
    }
    const Survey survey = surveyRows(data);
    int exponent = 0;
    std::frexp(survey.largest, &exponent);
    const Matrix<double> scaled = std::abs(exponent) > largestExponent ? rescaled(data, exponent) : data;
    std::vector<const double*> rows = rowsThatCount(scaled, survey);
    const auto count = static_cast<long long>(rows.size());
    const long long clusters = std::min(std::max(k, 1LL), count);
    if (clusters < 1) {
        return;
    }

    KMeansSolver solver(std::move(rows), data.num_cols(), clusters);
    solver.run(maxIterations, KMeansSolver::Method::Bounded);
    std::size_t next = 0;
    for (long long row = 0; row < data.num_rows(); ++row) {
        if (survey.counts[static_cast<std::size_t>(row)] != 0) {
            labels[row] = solver.labels()[next++];
        }
    }
}

} // namespace XTNT
