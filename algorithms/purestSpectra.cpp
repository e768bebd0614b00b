// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/purestSpectra.h"

#include "algorithms/PCA.h"
#include "algorithms/rowPasses.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>
#include <vector>

namespace {

using XTNT::Matrix;
using Row = std::vector<double>;

// A row is bright enough to tell a spectrum above this part of the bright ones, which one row in a thousand passes: a
// broken pixel is no measure.
constexpr double dimmest = 0.1;
constexpr std::size_t brightest = 1000;

// A mean is of one row in so many, within these ends; of a few rows in all it is of one in `largestPart` at most.
constexpr std::size_t meanOf = 200;
constexpr std::size_t largestPart = 20;
constexpr std::size_t fewest = 5;
constexpr std::size_t most = 100;

// What is left of the farthest row, over its length, where there is one more direction.
constexpr double nothingLeft = 1e-6;

double dot(const Row& a, const Row& b)
{
    return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
}

double squaredDistance(const Row& a, const Row& b)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += (a[i] - b[i]) * (a[i] - b[i]);
    }
    return sum;
}

// The scores of the bright rows, each over the sum of what its components explain.
std::vector<Row> levelledScores(const PCA& pca, int components)
{
    const Matrix<double> scores = pca.scores();
    const Matrix<double> loadings = pca.loadings();
    const auto count = static_cast<std::size_t>(components);
    Row sums(count);
    for (std::size_t k = 0; k < count; ++k) {
        for (long long b = 0; b < loadings.num_rows(); ++b) {
            sums[k] += loadings[b][static_cast<long long>(k)];
        }
    }
    std::vector<Row> rows;
    Row sizes;
    for (long long p = 0; p < scores.num_rows(); ++p) {
        rows.emplace_back(scores[p], scores[p] + components);
        sizes.push_back(std::sqrt(dot(rows.back(), rows.back())));
    }
    Row sorted = sizes;
    const auto bright = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / brightest);
    std::nth_element(sorted.begin(), bright, sorted.end(), [](double a, double b) { return a > b; });
    const double limit = dimmest * *bright;
    std::vector<Row> levelled;
    for (std::size_t p = 0; p < rows.size(); ++p) {
        const double sum = dot(rows[p], sums);
        if (sizes[p] > limit && sum > limit) {
            for (double& value : rows[p]) {
                value /= sum;
            }
            levelled.push_back(rows[p]);
        }
    }
    return levelled;
}

// The mean of the rows nearest to one, itself among them.
Row meanAround(const std::vector<Row>& rows, const Row& centre)
{
    std::vector<std::pair<double, std::size_t>> order;
    order.reserve(rows.size());
    for (std::size_t p = 0; p < rows.size(); ++p) {
        order.emplace_back(squaredDistance(rows[p], centre), p);
    }
    const std::size_t few = std::max<std::size_t>(rows.size() / largestPart, 1);
    const std::size_t count = std::min(std::clamp(rows.size() / meanOf, fewest, most), few);
    std::partial_sort(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(count), order.end());
    Row mean(centre.size());
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t k = 0; k < mean.size(); ++k) {
            mean[k] += rows[order[i].second][k] / static_cast<double>(count);
        }
    }
    return mean;
}

// The means around the rows farthest out; fewer where the rest leaves no direction.
std::vector<Row> corners(const std::vector<Row>& rows, int components)
{
    std::vector<Row> found;
    std::vector<Row> left = rows;
    for (int k = 0; k < components && !rows.empty(); ++k) {
        const auto farthest = std::max_element(left.begin(), left.end(),
                                               [](const Row& a, const Row& b) { return dot(a, a) < dot(b, b); });
        const auto chosen = static_cast<std::size_t>(farthest - left.begin());
        found.push_back(meanAround(rows, rows[chosen]));
        Row direction = meanAround(left, *farthest);
        const double length = std::sqrt(dot(direction, direction));
        if (!(length > nothingLeft * std::sqrt(dot(rows[chosen], rows[chosen])))) {
            found.pop_back();
            break;
        }
        for (double& value : direction) {
            value /= length;
        }
        for (Row& row : left) {
            const double along = dot(row, direction);
            for (std::size_t i = 0; i < row.size(); ++i) {
                row[i] -= along * direction[i];
            }
        }
    }
    return found;
}

} // namespace

Matrix<double> purestSpectra(const Matrix<double>& D, int components)
{
    PCA pca;
    if (components < 1 || D.num_rows() < components || D.num_cols() < components || !rowpass::allFinite(D) ||
        pca.decompose(D, 0) == 0 || pca.rank < components) {
        return Matrix<double>();
    }
    const std::vector<Row> found = corners(levelledScores(pca, components), components);
    if (static_cast<int>(found.size()) < components) {
        return Matrix<double>();
    }
    const Matrix<double> loadings = pca.loadings();
    Matrix<double> spectra(components, D.num_cols());
    for (int k = 0; k < components; ++k) {
        bool bLight = false;
        for (long long b = 0; b < D.num_cols(); ++b) {
            double value = 0.0;
            for (int i = 0; i < components; ++i) {
                value += found[static_cast<std::size_t>(k)][static_cast<std::size_t>(i)] * loadings[b][i];
            }
            spectra[k][b] = std::max(value, 0.0);
            bLight = bLight || value > 0.0;
        }
        if (!bLight) {
            return Matrix<double>();
        }
    }
    return spectra;
} // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the shares of a matrix are counted
