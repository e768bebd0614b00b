// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/enclosingSpectra.h"

#include "algorithms/FreeAmounts.h"
#include "algorithms/PCA.h"

#include "XTNT/xtnt_assert.h"
#include "XTNT/xtnt_parallel.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <vector>

namespace {

using XTNT::Matrix;
using Column = FreeAmounts::Column;

// A row is clearly beyond a face where its amount is so many standard errors below 0. Noise takes one in 740 there of
// rows that lie on the face; with more than one in so many there is more than noise. In simulated scenes of mixtures it
// is one in 130 and more, in those with pure pixels one in 2000 at most.
constexpr double clearErrors = 3.0;
constexpr std::size_t oneClearRowIn = 200;

// That tells of mixtures only where a source's spectrum is the same in all pixels: else pure pixels are beyond, too.
// What the spectra leave is more than noise in some direction then. Its variance there, over the largest of noise
// alone, is 0.96 to 1.0 in simulated scenes whose spectra do not vary, and 1.25 where they do by half a percent; where
// they vary less, too few rows are beyond.
constexpr double mostOverNoise = 1.1;

// Mixtures of all sources do not lie on the faces, so that hardly a row's noise is beyond. The faces move until no more
// than one row in so many is farther below 0 than this.
constexpr double hardlyErrors = 0.5;
constexpr std::size_t oneRowIn = 1000;

// A face moves to where at most half of the rows beyond it are left.
constexpr std::size_t mostLeft = 2;

// Times that all faces are moved; less than ten are taken.
constexpr int sweeps = 100;

// What a spectrum gives up of another does not count below this part.
constexpr double nothing = 1e-7;

// How far each row is inside of what lies so many errors beyond face k, in amounts.
Column insideOf(const FreeAmounts& amounts, long long k, double dErrors)
{
    Column inside = amounts.amounts(k);
    for (std::size_t p = 0; p < inside.size(); ++p) {
        inside[p] += dErrors * amounts.error(k, p);
    }
    return inside;
}

std::size_t rowsBeyond(const Column& inside)
{
    const auto beyond = std::count_if(inside.begin(), inside.end(), [](double value) { return value < 0.0; });
    return static_cast<std::size_t>(beyond);
}

// Those that are beyond, by how much; no row counts for more than the one that may be there.
Column beyondOf(const Column& inside)
{
    Column sorted = inside;
    const auto at = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / oneRowIn);
    std::nth_element(sorted.begin(), at, sorted.end());
    Column beyond(inside.size());
    std::transform(inside.begin(), inside.end(), beyond.begin(),
                   [most = -*at](double value) { return std::clamp(-value, 0.0, std::max(most, 0.0)); });
    return beyond;
}

// What each spectrum has of spectrum k, by least squares from the amounts of the rows beyond; none below 0.
std::vector<double> partsOf(const FreeAmounts& amounts, const Column& beyond, const Matrix<double>& S, long long k)
{
    const long long count = amounts.components();
    Matrix<double> gram(count, count);
    std::vector<double> right(static_cast<std::size_t>(count));
    for (long long i = 0; i < count; ++i) {
        const Column& row = amounts.amounts(i);
        right[static_cast<std::size_t>(i)] = std::inner_product(row.begin(), row.end(), beyond.begin(), 0.0);
        for (long long l = 0; l < count; ++l) {
            gram[i][l] = std::inner_product(row.begin(), row.end(), amounts.amounts(l).begin(), 0.0);
        }
    }
    const Matrix<double> inverse = gram.inverse();
    std::vector<double> parts(right.size());
    if (inverse.empty()) {
        return parts;
    }
    for (long long i = 0; i < count; ++i) {
        const double part = std::inner_product(right.begin(), right.end(), inverse[i], 0.0);
        if (i != k && part > 0.0 && amounts.mostGivenUp(S, i, k) > 0.0) {
            parts[static_cast<std::size_t>(i)] = part;
        }
    }
    return parts;
}

// By how much the parts are to be multiplied so that half of the rows beyond, or what may be there, is left.
double stepOf(const FreeAmounts& amounts, const Column& inside, const std::vector<double>& parts)
{
    std::vector<double> steps;
    for (std::size_t p = 0; p < inside.size(); ++p) {
        if (inside[p] < 0.0) {
            double growth = 0.0;
            for (std::size_t i = 0; i < parts.size(); ++i) {
                growth += parts[i] * amounts.amounts(static_cast<long long>(i))[p];
            }
            if (growth > 0.0) {
                steps.push_back(-inside[p] / growth);
            }
        }
    }
    if (steps.empty()) {
        return 0.0;
    }
    const std::size_t beyond = rowsBeyond(inside);
    const std::size_t left = std::max(inside.size() / oneRowIn, beyond / mostLeft);
    // Those that the parts do not bring inside stay beyond.
    const std::size_t stay = beyond - steps.size();
    const std::size_t wanted = steps.size() - std::min(left > stay ? left - stay : 0, steps.size());
    if (wanted == 0) {
        return 0.0;
    }
    const auto at = steps.begin() + static_cast<std::ptrdiff_t>(wanted - 1);
    std::nth_element(steps.begin(), at, steps.end());
    return *at;
}

// Whether face k moved.
bool moveOut(FreeAmounts& amounts, Matrix<double>& S, long long k)
{
    const Column inside = insideOf(amounts, k, hardlyErrors);
    if (rowsBeyond(inside) <= inside.size() / oneRowIn) {
        return false;
    }
    const std::vector<double> parts = partsOf(amounts, beyondOf(inside), S, k);
    const double step = stepOf(amounts, inside, parts);
    bool bMoves = false;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const auto from = static_cast<long long>(i);
        const double given = parts[i] > 0.0 ? std::min(step * parts[i], amounts.mostGivenUp(S, from, k)) : 0.0;
        if (given > nothing) {
            amounts.giveUp(from, k, given, S);
            bMoves = true;
        }
    }
    return bMoves;
}

bool hasRowsBeyond(const FreeAmounts& amounts)
{
    for (long long k = 0; k < amounts.components(); ++k) {
        if (rowsBeyond(insideOf(amounts, k, clearErrors)) > amounts.rows() / oneClearRowIn) {
            return true;
        }
    }
    return false;
}

double squaresOf(const double* row, long long n)
{
    return std::inner_product(row, row + n, row, 0.0);
}

// Without the few rows of which most is left, as of broken pixels. The largest variance of noise alone is that of V. A.
// Marchenko, L. A. Pastur (Math. USSR Sb. 1 (1967) 457).
bool isNoise(Matrix<double> left, long long components)
{
    std::vector<long long> order(static_cast<std::size_t>(left.num_rows()));
    std::iota(order.begin(), order.end(), 0LL);
    const auto few = order.begin() + static_cast<std::ptrdiff_t>(order.size() / oneRowIn);
    std::nth_element(order.begin(), few, order.end(), [&left](long long a, long long b) {
        return squaresOf(left[a], left.num_cols()) > squaresOf(left[b], left.num_cols());
    });
    std::for_each(order.begin(), few, [&left](long long p) { std::fill_n(left[p], left.num_cols(), 0.0); });
    PCA pca;
    if (pca.decompose(left, 0) == 0) {
        return false;
    }
    const auto rows = static_cast<double>(left.num_rows());
    const double edge = 1.0 + std::sqrt(static_cast<double>(left.num_cols() - components) / rows);
    return pca.eigenvalues()[0] <= mostOverNoise * edge * edge * rows;
}

bool hasLight(const Matrix<double>& S)
{
    for (long long k = 0; k < S.num_rows(); ++k) {
        if (!(*std::max_element(S[k], S[k] + S.num_cols()) > 0.0)) {
            return false;
        }
    }
    return true;
}

} // namespace

bool encloseMixtures(const Matrix<double>& D, const Matrix<double>& C, const XTNT::NoiseModel& noise, Matrix<double>& S)
{
    XTNT_ASSERT(C.num_rows() == D.num_rows() && C.num_cols() == S.num_rows() && S.num_cols() == D.num_cols());
    const long long components = S.num_rows();
    FreeAmounts amounts;
    if (components < 2 || components >= D.num_cols() || D.num_rows() < static_cast<long long>(oneRowIn) ||
        !amounts.fit(D, C, noise, S) || !hasRowsBeyond(amounts) ||
        !isNoise(amounts.leftover(D, C, noise, S), components)) {
        return false;
    }
    Matrix<double> moved = S.deepCopy();
    bool bEver = false;
    bool bMoves = true;
    for (int sweep = 0; sweep < sweeps && bMoves; ++sweep) {
        bMoves = false;
        for (long long k = 0; k < components; ++k) {
            XTNT::cancellationPoint();
            bMoves = moveOut(amounts, moved, k) || bMoves;
        }
        bEver = bEver || bMoves;
    }
    if (!bEver || !hasLight(moved)) {
        return false;
    }
    S = moved;
    return true;
} // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the shares of a matrix are counted
