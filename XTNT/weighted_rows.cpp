// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/weighted_rows.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace XTNT {

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

// A pivot of a Gram matrix over its diagonal element is the part of a spectrum's weighted square that the spectra
// before it do not explain. Below this the condition of the matrix is above 1e7, and the row is left to NNLS.
constexpr double smallestPivot = 1e-7;

// Range of magnitudes in which products neither overflow nor lose digits to underflow.
constexpr double smallestMagnitude = 1e-280;
constexpr double largestMagnitude = 1e280;

// As for rows of one weight, see ConcentrationPass.
constexpr int patience = 3;
constexpr int roundsPerComponent = 5;
constexpr int leastRounds = 10;

std::size_t sizeOf(long long n)
{
    return static_cast<std::size_t>(n * lanes);
}

Matrix<double> pairProducts(const Matrix<double>& spectra)
{
    const long long k = spectra.num_rows();
    Matrix<double> products(spectra.num_cols(), k * (k + 1) / 2);
    for (long long b = 0; b < spectra.num_cols(); ++b) {
        double* product = products[b];
        for (long long i = 0; i < k; ++i) {
            for (long long j = 0; j <= i; ++j) {
                *product++ = spectra[i][b] * spectra[j][b];
            }
        }
    }
    return products;
}

WeightedRows::Mask highestBit(WeightedRows::Mask mask)
{
    return WeightedRows::Mask{1} << (31 - __builtin_clz(mask));
}

} // namespace

WeightedSpectra::WeightedSpectra(const Matrix<double>& given, const NoiseModel& model)
    : spectra(given), noise(model), components(given.num_rows()), bands(given.num_cols()), fit(given),
      share(given.transpose()),
      gram(given.num_rows() <= ReducedSpectra::maxComponents ? pairProducts(given) : Matrix<double>())
{
}

WeightedRows::WeightedRows(const WeightedSpectra& problem)
    : m_problem(problem), m_amounts(sizeOf(problem.components)),
      m_expected(static_cast<std::size_t>(problem.fit.resultSize())), m_weights(sizeOf(problem.bands)),
      m_gram(static_cast<std::size_t>(problem.gram.resultSize())), m_data(sizeOf(problem.bands)),
      m_weighted(sizeOf(problem.bands)), m_right(static_cast<std::size_t>(problem.share.resultSize())),
      m_limits(sizeOf(problem.components)), m_masks(sizeOf(problem.components)), m_factor(m_gram.size()),
      m_factorTimesPivots(m_gram.size()), m_pivots(sizeOf(problem.components)), m_trial(sizeOf(problem.components)),
      m_duals(m_right.size()), m_step(sizeOf(problem.components))
{
}

void WeightedRows::setAmounts(const std::array<const double*, count>& amounts, long long nGroup)
{
    m_passive = {};
    m_regular.fill(true);
    for (long long k = 0; k < m_problem.components; ++k) {
        for (std::size_t lane = 0; lane < count; ++lane) {
            const double amount = amounts[lane][k];
            m_amounts[at(k, lane)] = amount;
            m_passive[lane] |= static_cast<Mask>(amount > 0.0) << k;
            m_regular[lane] = m_regular[lane] && std::isfinite(amount);
        }
    }
    m_problem.fit.multiply(m_amounts.data(), m_expected.data());
    const double* slopes = m_problem.noise.slopes[nGroup];
    const double* floors = m_problem.noise.floors[nGroup];
    const Lanes zero{};
    for (long long b = 0; b < m_problem.bands; ++b) {
        const Lanes expected = lanesAt(m_expected.data() + b * lanes);
        putLanes(m_weights.data() + b * lanes, 1.0 / (slopes[b] * (expected > zero ? expected : zero) + floors[b]));
    }
    m_problem.gram.multiply(m_weights.data(), m_gram.data());
}

void WeightedRows::setMasks()
{
    for (long long k = 0; k < m_problem.components; ++k) {
        for (std::size_t lane = 0; lane < count; ++lane) {
            m_masks[at(k, lane)] = static_cast<double>(m_passive[lane] >> k & 1U);
        }
    }
}

// The Gram matrix of each lane's set, as L D L': what lies off the set is that of an identity.
void WeightedRows::factorise()
{
    using Truth = decltype(Lanes{} < Lanes{});
    Truth singular{};
    for (long long j = 0; j < m_problem.components; ++j) {
        const Lanes ofColumn = lanesAt(m_masks.data() + j * lanes);
        for (long long i = j; i < m_problem.components; ++i) {
            const Lanes both = ofColumn * lanesAt(m_masks.data() + i * lanes);
            Lanes value = gram(i, j) * both + (i == j ? 1.0 - both : Lanes{});
            for (long long t = 0; t < j; ++t) {
                value -= lanesAt(m_factor.data() + lanes * pair(i, t)) *
                         lanesAt(m_factorTimesPivots.data() + lanes * pair(j, t));
            }
            if (i == j) {
                // Written so that NaN is singular.
                singular |= ~(value > smallestPivot * (gram(j, j) * both));
                putLanes(m_pivots.data() + lanes * j, 1.0 / value);
                continue;
            }
            putLanes(m_factorTimesPivots.data() + lanes * pair(i, j), value);
            putLanes(m_factor.data() + lanes * pair(i, j), value * lanesAt(m_pivots.data() + lanes * j));
        }
    }
    for (std::size_t lane = 0; lane < count; ++lane) {
        m_singular[lane] = singular[lane] != 0;
    }
}

// 0 off the set of each lane.
void WeightedRows::solveFactored(const double* right, double* x) const
{
    const long long n = m_problem.components;
    for (long long i = 0; i < n; ++i) {
        Lanes value = lanesAt(right + lanes * i) * lanesAt(m_masks.data() + lanes * i);
        for (long long t = 0; t < i; ++t) {
            value -= lanesAt(m_factor.data() + lanes * pair(i, t)) * lanesAt(x + lanes * t);
        }
        putLanes(x + lanes * i, value);
    }
    for (long long i = n - 1; i >= 0; --i) {
        Lanes value = lanesAt(x + lanes * i) * lanesAt(m_pivots.data() + lanes * i);
        for (long long t = i + 1; t < n; ++t) {
            value -= lanesAt(m_factor.data() + lanes * pair(t, i)) * lanesAt(x + lanes * t);
        }
        putLanes(x + lanes * i, value);
    }
}

void WeightedRows::findDuals(double* duals) const
{
    for (long long k = 0; k < m_problem.components; ++k) {
        Lanes value = lanesAt(m_right.data() + lanes * k);
        for (long long i = 0; i < m_problem.components; ++i) {
            value -= gram(k, i) * lanesAt(m_trial.data() + lanes * i);
        }
        putLanes(duals + lanes * k, value);
    }
}

// Weighted data and what becomes of them for the components. A dual S W (d - x S) is a sum over the bands: rounding
// leaves of a zero up to some epsilon of the lengths of what is summed.
void WeightedRows::load(const std::array<const double*, count>& data)
{
    Lanes squares{};
    for (long long b = 0; b < m_problem.bands; ++b) {
        const Lanes values{data[0][b], data[1][b], data[2][b], data[3][b]};
        const Lanes weighted = values * lanesAt(m_weights.data() + lanes * b);
        putLanes(m_data.data() + lanes * b, values);
        putLanes(m_weighted.data() + lanes * b, weighted);
        squares += values * weighted;
    }
    m_problem.share.multiply(m_weighted.data(), m_right.data());
    const double roundings = 4.0 * epsilon * static_cast<double>(m_problem.bands);
    for (std::size_t lane = 0; lane < count; ++lane) {
        // Written so that NaN fails.
        const bool small = squares[lane] == 0.0;
        m_regular[lane] =
            m_regular[lane] && (small || (squares[lane] > smallestMagnitude && squares[lane] < largestMagnitude));
    }
    for (long long k = 0; k < m_problem.components; ++k) {
        putLanes(m_limits.data() + lanes * k, roundings * roundings * gram(k, k) * squares);
    }
}

WeightedRows::Mask WeightedRows::offenders(std::size_t lane, const double* x, const double* duals) const
{
    Mask wrong = 0;
    for (long long k = 0; k < m_problem.components; ++k) {
        const bool inside = (m_passive[lane] >> k & 1U) != 0;
        const double dual = duals[at(k, lane)];
        const bool broken = inside ? x[at(k, lane)] < 0.0 : dual > 0.0 && dual * dual > m_limits[at(k, lane)];
        wrong |= static_cast<Mask>(broken) << k;
    }
    return wrong;
}

// Exchanges what breaks its condition; true when nothing does. See ConcentrationPass.
bool WeightedRows::exchange(std::size_t lane, const double* x, const double* duals)
{
    Mask wrong = offenders(lane, x, duals);
    if (wrong == 0) {
        return true;
    }
    const int broken = __builtin_popcount(wrong);
    if (broken < m_fewest[lane]) {
        m_fewest[lane] = broken;
        m_chances[lane] = patience;
    } else if (m_chances[lane] > 0) {
        --m_chances[lane];
    } else {
        wrong = highestBit(wrong);
    }
    m_passive[lane] ^= wrong;
    return false;
}

// A lane that is done keeps its set, and with it its solution, while others go on.
void WeightedRows::pivot()
{
    std::array<bool, count> open = m_regular;
    m_fewest.fill(static_cast<int>(m_problem.components) + 1);
    m_chances.fill(patience);
    const int rounds = leastRounds + roundsPerComponent * static_cast<int>(m_problem.components);
    for (int round = 0; round < rounds; ++round) {
        setMasks();
        factorise();
        solveFactored(m_right.data(), m_trial.data());
        findDuals(m_duals.data());
        bool anyOpen = false;
        for (std::size_t lane = 0; lane < count; ++lane) {
            if (open[lane] && (m_singular[lane] || exchange(lane, m_trial.data(), m_duals.data()))) {
                open[lane] = false;
                m_solved[lane] = !m_singular[lane];
            }
            anyOpen = anyOpen || open[lane];
        }
        if (!anyOpen) {
            return;
        }
    }
}

// One step of iterative refinement, whose residual also tells the duals: those of the Gram matrix have lost the digits
// that it lost.
void WeightedRows::improve()
{
    m_problem.fit.multiply(m_trial.data(), m_expected.data());
    for (long long b = 0; b < m_problem.bands; ++b) {
        const Lanes rest = lanesAt(m_data.data() + lanes * b) - lanesAt(m_expected.data() + lanes * b);
        putLanes(m_weighted.data() + lanes * b, rest * lanesAt(m_weights.data() + lanes * b));
    }
    m_problem.share.multiply(m_weighted.data(), m_duals.data());
    solveFactored(m_duals.data(), m_step.data());
    for (std::size_t i = 0; i < m_trial.size(); ++i) {
        m_trial[i] += m_step[i];
    }
    for (std::size_t lane = 0; lane < count; ++lane) {
        for (long long k = 0; k < m_problem.components; ++k) {
            // What the step takes below 0 was 0 within rounding.
            m_trial[at(k, lane)] = std::max(m_trial[at(k, lane)], 0.0);
            m_limits[at(k, lane)] *= 16.0;
        }
        m_solved[lane] = m_solved[lane] && offenders(lane, m_trial.data(), m_duals.data()) == 0;
    }
}

void WeightedRows::solve(const std::array<const double*, count>& data)
{
    m_solved.fill(false);
    load(data);
    pivot();
    improve();
}

double WeightedRows::solution(long long component, std::size_t lane) const
{
    return (m_passive[lane] >> component & 1U) != 0 ? m_trial[at(component, lane)] : 0.0;
}

// For a component of the set an element of the inverse of its matrix; for another the inverse of what the set leaves of
// its weighted square, the element that it would have as one more.
void WeightedRows::findVariances()
{
    setMasks();
    factorise();
    std::vector<double>& right = m_right;
    const Lanes zero{};
    std::array<bool, count> solved = m_regular;
    for (long long k = 0; k < m_problem.components; ++k) {
        const Lanes inside = lanesAt(m_masks.data() + lanes * k);
        for (long long i = 0; i < m_problem.components; ++i) {
            const Lanes ofUnit = i == k ? Lanes{} + 1.0 : zero;
            putLanes(right.data() + lanes * i, inside > zero ? ofUnit : gram(i, k));
        }
        solveFactored(right.data(), m_step.data());
        Lanes left = gram(k, k);
        for (long long i = 0; i < m_problem.components; ++i) {
            left -= gram(k, i) * lanesAt(m_step.data() + lanes * i);
        }
        const Lanes own = lanesAt(m_step.data() + lanes * k);
        putLanes(m_trial.data() + lanes * k, inside > zero ? own : 1.0 / left);
        for (std::size_t lane = 0; lane < count; ++lane) {
            const bool clear = inside[lane] > 0.0 || left[lane] > smallestPivot * m_gram[at(pair(k, k), lane)];
            solved[lane] = solved[lane] && clear;
        }
    }
    for (std::size_t lane = 0; lane < count; ++lane) {
        m_solved[lane] = solved[lane] && !m_singular[lane];
    }
}

} // namespace XTNT
