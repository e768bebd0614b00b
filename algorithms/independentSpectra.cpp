// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/independentSpectra.h"

#include "algorithms/FreeAmounts.h"
#include "host/corrcoef.h"

#include "XTNT/xtnt_assert.h"
#include "XTNT/xtnt_parallel.h"
#include "XTNT/xtnt_svd.h"
#include "XTNT/xtnt_vector.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

namespace {

using XTNT::Matrix;
using Column = FreeAmounts::Column;

// Of fewer rows no entropy is known.
constexpr long long fewestRows = 200;

// Times that all pairs are gone through; most is done after two.
constexpr int sweeps = 3;

// Moves that are tried to either side: their squares are even, as most are small.
constexpr int steps = 6;

// A spectrum takes up at most this much of another's maximum at once.
constexpr double largestMix = 0.5;

// A move ends where more rows than one in so many would come to have amounts that are so many standard errors below 0.
constexpr double clearErrors = 3.0;
constexpr std::size_t oneRowIn = 50;

// Noise that is added in any case, of the variance that there is: whole numbers lie on each other without it.
constexpr double leastSmoothing = 0.25;

// Independent amounts have a correlation matrix with eigenvalues near 1, parts of a whole one near 0. Of simulated
// sources the former keep 0.6 and more, the latter 0.11 at most.
constexpr double leastEigenvalue = 0.3;

// Where sources lie in the same places their amounts may be uncorrelated, but both are far from their means at once:
// the mean correlation of the distances is 0.07 at most for simulated sources that know nothing of each other, and 0.25
// at least for stains of the same cells. A distance counts up to so many standard deviations.
constexpr double mostTogether = 0.15;
constexpr double farthest = 3.0;

// Vasicek's estimate from the sorted values, with spacings over the square root of their number.
double entropyOf(Column& values)
{
    std::sort(values.begin(), values.end());
    const auto over = static_cast<std::size_t>(std::sqrt(static_cast<double>(values.size())));
    const double scale = (static_cast<double>(values.size()) + 1.0) / static_cast<double>(over);
    double sum = 0.0;
    for (std::size_t i = over; i < values.size(); ++i) {
        sum += std::log(std::max(values[i] - values[i - over], std::numeric_limits<double>::min()) * scale);
    }
    return sum / static_cast<double>(values.size() - over);
}

double largest(const double* row, long long n)
{
    return *std::max_element(row, row + n);
}

// The amounts of some rows, and what is asked of them here.
class Amounts : public FreeAmounts
{
public:
    // False where spectra depend on each other.
    bool fit(const Matrix<double>& D, const Matrix<double>& C, const XTNT::NoiseModel& noise, const Matrix<double>& S);

    // The entropy of the amounts of j once t times those of i are added, with the noise of any t within the ends.
    class Move
    {
    public:
        Move(const Amounts& amounts, long long i, long long j, double dLeast, double dMost);
        double entropy(double t, Column& work) const;
        std::size_t rows() const { return m_to.size(); }

    private:
        double variance(double t, std::size_t p) const { return m_jj[p] + t * (2.0 * m_ij[p] + t * m_ii[p]); }

        const Column& m_from;
        const Column& m_to;
        const Column& m_added;
        const Column& m_ii;
        const Column& m_ij;
        const Column& m_jj;
        double m_dLeast;
        double m_dMost;
        double m_dSmoothing = 0.0;
    };

    // The most that can be added to component j of component i with a negative sign.
    double mostTakenOff(long long i, long long j) const;
    // Whether component k is there in so many rows that these, not their noise, tell what belongs to it.
    bool isSeen(long long k) const;
    bool areIndependent() const;

private:
    std::vector<Column> m_added; // unit noise
};

bool Amounts::fit(const Matrix<double>& D, const Matrix<double>& C, const XTNT::NoiseModel& noise,
                  const Matrix<double>& S)
{
    if (!FreeAmounts::fit(D, C, noise, S)) {
        return false;
    }
    std::mt19937_64 generator(1); // a seed as good as any, so that a run can be repeated
    std::normal_distribution<double> unit(0.0, 1.0);
    m_added.assign(static_cast<std::size_t>(components()), Column(rows()));
    for (Column& added : m_added) {
        std::generate(added.begin(), added.end(), [&] { return unit(generator); });
    }
    return true;
}

Amounts::Move::Move(const Amounts& amounts, long long i, long long j, double dLeast, double dMost)
    : m_from(amounts.amounts(i)), m_to(amounts.amounts(j)), m_added(amounts.m_added[static_cast<std::size_t>(j)]),
      m_ii(amounts.covariance(i, i)), m_ij(amounts.covariance(i, j)), m_jj(amounts.covariance(j, j)), m_dLeast(dLeast),
      m_dMost(dMost)
{
    for (const double variance : m_jj) {
        m_dSmoothing += leastSmoothing * variance / static_cast<double>(m_jj.size());
    }
}

double Amounts::Move::entropy(double t, Column& work) const
{
    work.resize(m_to.size());
    for (std::size_t p = 0; p < work.size(); ++p) {
        const double most = std::max(variance(m_dLeast, p), variance(m_dMost, p)) + m_dSmoothing;
        work[p] = m_to[p] + t * m_from[p] + m_added[p] * std::sqrt(std::max(most - variance(t, p), 0.0));
    }
    return entropyOf(work);
}

double Amounts::mostTakenOff(long long i, long long j) const
{
    const Column& from = amounts(i);
    const Column& to = amounts(j);
    Column most;
    most.reserve(rows());
    for (std::size_t p = 0; p < rows(); ++p) {
        const double above = to[p] + clearErrors * error(j, p);
        if (above > 0.0) {
            most.push_back(from[p] > 0.0 ? above / from[p] : std::numeric_limits<double>::max());
        }
    }
    const std::size_t few = rows() / oneRowIn;
    if (few >= most.size()) {
        return 0.0;
    }
    const auto at = most.begin() + static_cast<std::ptrdiff_t>(few);
    std::nth_element(most.begin(), at, most.end());
    return *at;
}

bool Amounts::isSeen(long long k) const
{
    std::size_t seen = 0;
    for (std::size_t p = 0; p < rows(); ++p) {
        seen += amounts(k)[p] > clearErrors * error(k, p) ? 1 : 0;
    }
    return seen * oneRowIn >= rows();
}

// How far each value is from their mean, in standard deviations.
Column distances(const Column& values)
{
    const double count = static_cast<double>(values.size());
    const double mean = std::accumulate(values.begin(), values.end(), 0.0) / count;
    Column result(values.size());
    std::transform(values.begin(), values.end(), result.begin(), [mean](double v) { return std::abs(v - mean); });
    const double squares = std::inner_product(result.begin(), result.end(), result.begin(), 0.0);
    const double scale = squares > 0.0 ? std::sqrt(count / squares) : 0.0;
    std::for_each(result.begin(), result.end(), [scale](double& v) { v = std::min(v * scale, farthest); });
    return result;
}

Matrix<double> correlations(std::vector<Column> columns)
{
    const auto count = static_cast<long long>(columns.size());
    Matrix<double> result(count, count);
    for (long long k = 0; k < count; ++k) {
        for (long long l = 0; l < count; ++l) {
            Column& first = columns[static_cast<std::size_t>(k)];
            Column& second = columns[static_cast<std::size_t>(l)];
            XTNT::Vector<double> a(first.data(), static_cast<long long>(first.size()));
            XTNT::Vector<double> b(second.data(), static_cast<long long>(second.size()));
            result[k][l] = XTNT::corrcoef(a, b);
        }
    }
    return result;
} // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the shares of a matrix are counted

bool Amounts::areIndependent() const
{
    std::vector<Column> all;
    std::vector<Column> far;
    for (long long k = 0; k < components(); ++k) {
        all.push_back(amounts(k));
        far.push_back(distances(amounts(k)));
    }
    // Singular values of a correlation matrix are its eigenvalues.
    const long long count = components();
    if (!(XTNT::SVD(correlations(std::move(all))).s[count - 1] >= leastEigenvalue)) {
        return false;
    }
    const Matrix<double> together = correlations(far);
    double sum = 0.0;
    for (long long k = 0; k < count; ++k) {
        sum += std::accumulate(together[k], together[k] + count, -together[k][k]);
    }
    return sum <= mostTogether * static_cast<double>(count * (count - 1));
} // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the shares of a matrix are counted

// How far spectrum i may go from spectrum j, and towards it.
struct Range
{
    double least = 0.0;
    double most = 0.0;
};

Range rangeOf(const Amounts& amounts, const Matrix<double>& S, long long i, long long j)
{
    const double maximum = largest(S[j], S.num_cols());
    const double mix = largestMix * largest(S[i], S.num_cols()) / maximum;
    return {-std::min(mix, amounts.mostTakenOff(i, j)), amounts.mostGivenUp(S, i, j)};
}

// A move, and the entropy that it leaves.
struct Tried
{
    double t = 0.0;
    double entropy = 0.0;
};

std::vector<Tried> tryAll(const Amounts::Move& move, const Column& moves)
{
    std::vector<Tried> tried(moves.size());
    std::vector<Column> work(moves.size(), Column(move.rows()));
    XTNT::parallelChunks(static_cast<long long>(moves.size()), 1, [&](long long begin, long long end) {
        for (auto i = static_cast<std::size_t>(begin); i < static_cast<std::size_t>(end); ++i) {
            tried[i] = {moves[i], move.entropy(moves[i], work[i])};
        }
    });
    return tried;
}

// The best move of spectrum i away from spectrum j; 0 where none is clearly better than none.
double bestMove(const Amounts& amounts, const Matrix<double>& S, long long i, long long j)
{
    const Range range = rangeOf(amounts, S, i, j);
    const Amounts::Move move(amounts, i, j, range.least, range.most);
    const auto square = [](int s) { return static_cast<double>(s * s) / (steps * steps); };
    Column moves;
    for (int s = -steps; s <= steps; ++s) {
        moves.push_back(square(s) * (s < 0 ? range.least : range.most));
    }
    const std::vector<Tried> coarse = tryAll(move, moves);
    const auto less = [](const Tried& a, const Tried& b) { return a.entropy < b.entropy; };
    const auto best = std::min_element(coarse.begin(), coarse.end(), less);
    const double low = (best == coarse.begin() ? best : best - 1)->t;
    const double high = (best + 1 == coarse.end() ? best : best + 1)->t;
    moves.clear();
    for (int s = 1; s < steps; ++s) {
        moves.push_back(low + (high - low) * s / steps);
    }
    const std::vector<Tried> fine = tryAll(move, moves);
    const Tried chosen = std::min(*std::min_element(fine.begin(), fine.end(), less), *best, less);
    // What one more figure gains by chance (G. Schwarz, Ann. Statist. 6 (1978) 461).
    const double chance = 0.5 * std::log(static_cast<double>(amounts.rows()));
    const double gain =
        static_cast<double>(amounts.rows()) * (coarse[static_cast<std::size_t>(steps)].entropy - chosen.entropy);
    return gain > chance ? chosen.t : 0.0;
}

} // namespace

bool makeIndependent(const Matrix<double>& D, const Matrix<double>& C, const XTNT::NoiseModel& noise, Matrix<double>& S)
{
    XTNT_ASSERT(C.num_rows() == D.num_rows() && C.num_cols() == S.num_rows() && S.num_cols() == D.num_cols());
    const long long components = S.num_rows();
    Amounts amounts;
    if (components < 2 || components >= D.num_cols() || D.num_rows() < fewestRows || !amounts.fit(D, C, noise, S)) {
        return false;
    }
    Matrix<double> moved = S.deepCopy();
    bool bMoves = true;
    for (int sweep = 0; sweep < sweeps && bMoves; ++sweep) {
        bMoves = false;
        for (long long pair = 0; pair < components * components; ++pair) {
            const long long i = pair / components;
            const long long j = pair % components;
            const double t = i != j && amounts.isSeen(i) ? bestMove(amounts, moved, i, j) : 0.0;
            if (t == 0.0) {
                continue;
            }
            XTNT::cancellationPoint();
            amounts.giveUp(i, j, t, moved);
            if (!(largest(moved[i], moved.num_cols()) > 0.0)) {
                return false;
            }
            bMoves = true;
        }
    }
    if (!amounts.areIndependent()) {
        return false;
    }
    S = moved;
    return true;
} // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the shares of a matrix are counted
