// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/independentSpectra.h"

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
#include <vector>

namespace {

using XTNT::Matrix;
using Column = std::vector<double>;

// Rows that an entropy is of. More cost time and change little; of fewer than the least none is known. They lie
// in steps that are not even, by parts of the golden ratio: even ones could fall on a few columns of the images.
constexpr long long mostRows = 5000;
constexpr long long fewestRows = 200;
constexpr double golden = 0.6180339887498949;

// Times that all pairs are gone through; most is done after two.
constexpr int sweeps = 3;

// Moves that are tried to either side: their squares are even, as most are small.
constexpr int steps = 6;

// A spectrum takes up at most this much of another's maximum at once.
constexpr double largestMix = 0.5;

// A move ends where a band of the spectrum would be so many standard errors below 0; bands in which the other spectrum
// has less than this part of its maximum do not limit it. It also ends where more rows than one in so many would come
// to have amounts farther than that below 0.
constexpr double errorsBelow = 2.0;
constexpr double dimBand = 0.05;
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

// The i-th of `count` rows out of so many.
long long rowOf(long long i, long long count, long long rows)
{
    const double part = std::fmod(golden * static_cast<double>(i), 1.0);
    const double at = (static_cast<double>(i) + part) * static_cast<double>(rows) / static_cast<double>(count);
    return std::min(static_cast<long long>(at), rows - 1);
}

double largest(const double* row, long long n)
{
    return *std::max_element(row, row + n);
}

// The amounts of some rows, with what is known of their noise.
class Amounts
{
public:
    explicit Amounts(long long components)
        : m_count(static_cast<std::size_t>(components)), m_amounts(m_count), m_added(m_count),
          m_covariances(m_count * m_count)
    {
    }

    // The unconstrained weighted fits. False where spectra depend on each other.
    bool fit(const Matrix<double>& D, const Matrix<double>& C, const XTNT::NoiseModel& noise, const Matrix<double>& S);

    // The entropy of the amounts of j once t times those of i are added, with the noise of any t within the ends.
    class Move
    {
    public:
        Move(const Amounts& amounts, long long i, long long j, double dLeast, double dMost);
        double entropy(double t, Column& work) const;

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

    void apply(long long i, long long j, double t);
    std::size_t rows() const { return m_amounts.front().size(); }
    double squares(long long k) const;
    // Mean variance of the elements of band b.
    double bandVariance(long long b) const { return m_bandVariances[static_cast<std::size_t>(b)]; }
    // The most that can be added to component j of component i with a negative sign.
    double mostTakenOff(long long i, long long j) const;
    // Whether component k is there in so many rows that these, not their noise, tell what belongs to it.
    bool isSeen(long long k) const;
    bool areIndependent();

private:
    Column& covariance(std::size_t k, std::size_t l) { return m_covariances[k * m_count + l]; }
    const Column& covariance(std::size_t k, std::size_t l) const { return m_covariances[k * m_count + l]; }
    double error(std::size_t k, std::size_t p) const { return std::sqrt(std::max(covariance(k, k)[p], 0.0)); }
    bool addRow(const double* data, const Column& variances, const Matrix<double>& S);

    std::size_t m_count;
    std::vector<Column> m_amounts;
    std::vector<Column> m_added; // unit noise
    std::vector<Column> m_covariances;
    Column m_bandVariances;
};

bool Amounts::addRow(const double* data, const Column& variances, const Matrix<double>& S)
{
    const auto count = static_cast<long long>(m_count);
    Matrix<double> gram(count, count);
    Column right(m_count);
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
    for (std::size_t k = 0; k < m_count; ++k) {
        const double* row = inverse[static_cast<long long>(k)];
        double amount = 0.0;
        for (std::size_t l = 0; l < m_count; ++l) {
            amount += row[l] * right[l];
            covariance(k, l).push_back(row[l]);
        }
        if (!std::isfinite(amount)) {
            return false;
        }
        m_amounts[k].push_back(amount);
    }
    return true;
}

bool Amounts::fit(const Matrix<double>& D, const Matrix<double>& C, const XTNT::NoiseModel& noise,
                  const Matrix<double>& S)
{
    const long long bands = S.num_cols();
    m_bandVariances.assign(static_cast<std::size_t>(bands), 0.0);
    Column variances(static_cast<std::size_t>(bands));
    const long long count = std::min(D.num_rows(), mostRows);
    for (long long i = 0; i < count; ++i) {
        const long long p = rowOf(i, count, D.num_rows());
        for (long long b = 0; b < bands; ++b) {
            double expected = 0.0;
            for (long long k = 0; k < S.num_rows(); ++k) {
                expected += C[p][k] * S[k][b];
            }
            const auto at = static_cast<std::size_t>(b);
            variances[at] = noise.slopes[0][b] * std::max(expected, 0.0) + noise.floors[0][b];
            m_bandVariances[at] += variances[at];
        }
        if (!addRow(D[p], variances, S)) {
            return false;
        }
    }
    for (double& variance : m_bandVariances) {
        variance /= static_cast<double>(rows());
    }
    std::mt19937_64 generator(1); // a seed as good as any, so that a run can be repeated
    std::normal_distribution<double> unit(0.0, 1.0);
    for (Column& added : m_added) {
        added.resize(rows());
        std::generate(added.begin(), added.end(), [&] { return unit(generator); });
    }
    return true;
}

Amounts::Move::Move(const Amounts& amounts, long long i, long long j, double dLeast, double dMost)
    : m_from(amounts.m_amounts[static_cast<std::size_t>(i)]), m_to(amounts.m_amounts[static_cast<std::size_t>(j)]),
      m_added(amounts.m_added[static_cast<std::size_t>(j)]),
      m_ii(amounts.covariance(static_cast<std::size_t>(i), static_cast<std::size_t>(i))),
      m_ij(amounts.covariance(static_cast<std::size_t>(i), static_cast<std::size_t>(j))),
      m_jj(amounts.covariance(static_cast<std::size_t>(j), static_cast<std::size_t>(j))), m_dLeast(dLeast),
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

void Amounts::apply(long long i, long long j, double t)
{
    const auto from = static_cast<std::size_t>(i);
    const auto to = static_cast<std::size_t>(j);
    const auto add = [t](const Column& what, Column& target) {
        std::transform(what.begin(), what.end(), target.begin(), target.begin(),
                       [t](double a, double b) { return b + t * a; });
    };
    add(m_amounts[from], m_amounts[to]);
    for (std::size_t l = 0; l < m_count; ++l) {
        add(covariance(from, l), covariance(to, l));
    }
    for (std::size_t l = 0; l < m_count; ++l) {
        add(covariance(l, from), covariance(l, to));
    }
}

double Amounts::squares(long long k) const
{
    double sum = 0.0;
    for (const double amount : m_amounts[static_cast<std::size_t>(k)]) {
        sum += amount * amount;
    }
    return sum;
}

double Amounts::mostTakenOff(long long i, long long j) const
{
    const auto from = static_cast<std::size_t>(i);
    const auto to = static_cast<std::size_t>(j);
    Column most;
    most.reserve(rows());
    for (std::size_t p = 0; p < rows(); ++p) {
        const double above = m_amounts[to][p] + clearErrors * error(to, p);
        if (above > 0.0) {
            most.push_back(m_amounts[from][p] > 0.0 ? above / m_amounts[from][p] : std::numeric_limits<double>::max());
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
    const auto at = static_cast<std::size_t>(k);
    std::size_t seen = 0;
    for (std::size_t p = 0; p < rows(); ++p) {
        seen += m_amounts[at][p] > clearErrors * error(at, p) ? 1 : 0;
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

Matrix<double> correlations(std::vector<Column>& columns)
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

bool Amounts::areIndependent()
{
    std::vector<Column> far;
    for (const Column& amounts : m_amounts) {
        far.push_back(distances(amounts));
    }
    // Singular values of a correlation matrix are its eigenvalues.
    const auto count = static_cast<long long>(m_count);
    if (!(XTNT::SVD(correlations(m_amounts)).s[count - 1] >= leastEigenvalue)) {
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
    const double squares = std::max(amounts.squares(i), std::numeric_limits<double>::min());
    const double mix = largestMix * largest(S[i], S.num_cols()) / maximum;
    Range range{-std::min(mix, amounts.mostTakenOff(i, j)), std::numeric_limits<double>::infinity()};
    for (long long b = 0; b < S.num_cols(); ++b) {
        if (S[j][b] > dimBand * maximum) {
            const double error = std::sqrt(amounts.bandVariance(b)) / std::sqrt(squares);
            range.most = std::min(range.most, (S[i][b] + errorsBelow * error) / S[j][b]);
        }
    }
    return range;
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
    std::vector<Column> work(moves.size(), Column(mostRows));
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
    Amounts amounts(components);
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
            amounts.apply(i, j, t);
            for (long long b = 0; b < moved.num_cols(); ++b) {
                moved[i][b] = std::max(moved[i][b] - t * moved[j][b], 0.0);
            }
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
