// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/weighted_concentrations.h"

#include "XTNT/nnls_row_fit.h"
#include "XTNT/row_blocks.h"
#include "XTNT/thin_qr.h"
#include "XTNT/weighted_rows.h"
#include "XTNT/workspace_pool.h"
#include "XTNT/xtnt_assert.h"
#include "XTNT/xtnt_pages.h"
#include "XTNT/xtnt_parallel.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <numeric>

namespace XTNT {

namespace {

constexpr double notKnown = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();
// What spectra leave of another that they explain is rounding of this size, over its length.
constexpr double dependent = 1e-10;

void checkShapes(const Matrix<double>& S, const NoiseModel& noise, const Matrix<double>& C)
{
    XTNT_ASSERT(C.num_cols() == S.num_rows());
    XTNT_ASSERT(noise.slopes.num_cols() == S.num_cols() && noise.floors.num_cols() == S.num_cols());
    XTNT_ASSERT(noise.slopes.num_rows() == noise.floors.num_rows());
    XTNT_ASSERT(noise.slopes.num_rows() > 0 && C.num_rows() % noise.slopes.num_rows() == 0);
}

bool isFinite(const double* row, long long n)
{
    return std::all_of(row, row + n, [](double value) { return std::isfinite(value); });
}

// A row's expectation and the inverse variances there.
class RowWeights
{
public:
    RowWeights(const Matrix<double>& S, const NoiseModel& noise, long long rows)
        : m_spectra(S), m_noise(noise), m_rowsOfGroup(std::max(1LL, rows / noise.slopes.num_rows())),
          m_expected(static_cast<std::size_t>(S.num_cols())), m_weights(m_expected.size())
    {
    }

    void take(long long row, const double* amounts)
    {
        std::fill(m_expected.begin(), m_expected.end(), 0.0);
        for (long long k = 0; k < m_spectra.num_rows(); ++k) {
            for (std::size_t b = 0; b < m_expected.size(); ++b) {
                m_expected[b] += amounts[k] * m_spectra[k][b];
            }
        }
        const double* slopes = m_noise.slopes[row / m_rowsOfGroup];
        const double* floors = m_noise.floors[row / m_rowsOfGroup];
        for (std::size_t b = 0; b < m_expected.size(); ++b) {
            m_weights[b] = 1.0 / (slopes[b] * std::max(m_expected[b], 0.0) + floors[b]);
        }
    }

    const std::vector<double>& expected() const { return m_expected; }
    const std::vector<double>& weights() const { return m_weights; }

private:
    const Matrix<double>& m_spectra;
    const NoiseModel& m_noise;
    long long m_rowsOfGroup;
    std::vector<double> m_expected;
    std::vector<double> m_weights;
};

// What a thread needs to solve rows.
struct Workspace
{
    Workspace(const WeightedSpectra& problem, long long rows)
        : weights(problem.spectra, problem.noise, rows), nnls(problem.spectra)
    {
        if (problem.usable()) {
            rowsAtOnce = std::make_unique<WeightedRows>(problem);
        }
    }

    RowWeights weights;
    NnlsRowFit nnls;
    std::unique_ptr<WeightedRows> rowsAtOnce; // null where the components are too many
};

using RowPointers = std::array<const double*, WeightedRows::count>;

// Pointers to rows [first, last), the last one repeated.
RowPointers rowsFrom(const Matrix<double>& matrix, long long first, long long last)
{
    RowPointers rows{};
    for (std::size_t lane = 0; lane < rows.size(); ++lane) {
        rows[lane] = matrix[std::min(first + static_cast<long long>(lane), last - 1)];
    }
    return rows;
}

// Calls `work` for as many rows as are solved at once, all of one group of the noise.
template <class Work>
void forLanes(long long begin, long long end, long long rowsOfGroup, const Work& work)
{
    constexpr auto atOnce = static_cast<long long>(WeightedRows::count);
    for (long long first = begin; first < end;) {
        const long long endOfGroup = (first / rowsOfGroup + 1) * rowsOfGroup;
        const long long last = std::min({first + atOnce, end, endOfGroup});
        work(first, last);
        first = last;
    }
}

void forChunks(const WeightedSpectra& problem, long long rows,
               const std::function<void(long long begin, long long end, Workspace& work)>& body)
{
    WorkspacePool<Workspace> pool([&] { return std::make_unique<Workspace>(problem, rows); });
    parallelChunks(rows, passChunkRows(rows), [&](long long begin, long long end) {
        const WorkspacePool<Workspace>::Lease lease(pool);
        body(begin, end, *lease);
    });
}

bool fitByNnls(const double* d, long long row, double* amounts, Workspace& work)
{
    if (!isFinite(amounts, work.nnls.components())) {
        return false;
    }
    work.weights.take(row, amounts);
    work.nnls.fit(d, work.weights.weights().data(), amounts);
    return true;
}

// The rows' solutions; how many went to NNLS.
long long fitLanes(const Matrix<double>& D, Matrix<double>& C, long long first, long long last, long long group,
                   Workspace& work)
{
    WeightedRows& rows = *work.rowsAtOnce;
    rows.setAmounts(rowsFrom(C, first, last), group);
    rows.solve(rowsFrom(D, first, last));
    long long left = 0;
    for (long long row = first; row < last; ++row) {
        const auto lane = static_cast<std::size_t>(row - first);
        if (!rows.isSolved(lane)) {
            left += fitByNnls(D[row], row, C[row], work) ? 1 : 0;
            continue;
        }
        for (long long k = 0; k < C.num_cols(); ++k) {
            C[row][k] = rows.solution(k, lane);
        }
    }
    return left;
}

double squaresOf(const std::vector<double>& v)
{
    return std::inner_product(v.begin(), v.end(), v.begin(), 0.0);
}

// A spectrum times the roots of the weights.
std::vector<double> weightedSpectrum(const Matrix<double>& S, long long k, const std::vector<double>& weights)
{
    std::vector<double> column(weights.size());
    for (std::size_t b = 0; b < column.size(); ++b) {
        column[b] = S[k][b] * std::sqrt(weights[b]);
    }
    return column;
}

// What the first `count` columns of Q leave of it.
std::vector<double> besides(const ThinQr& factor, long long count, std::vector<double> column)
{
    for (long long j = 0; j < count; ++j) {
        const double* q = factor.q(j);
        const double part = std::inner_product(column.begin(), column.end(), q, 0.0);
        for (std::size_t b = 0; b < column.size(); ++b) {
            column[b] -= part * q[b];
        }
    }
    return column;
}

// Columns of the inverse of R, whose sums of squares by row are the variances of the members, which are 0 before.
void addMemberVariances(const ThinQr& factor, const std::vector<long long>& members, double* variances)
{
    const bool independent = members.empty() || factor.conditionBound() < 1.0 / dependent;
    std::vector<double> unit(members.size());
    for (std::size_t j = 0; j < members.size(); ++j) {
        std::fill(unit.begin(), unit.end(), 0.0);
        unit[j] = 1.0;
        factor.solveUpper(unit.data());
        for (std::size_t i = 0; i < unit.size(); ++i) {
            variances[members[i]] = independent ? variances[members[i]] + unit[i] * unit[i] : infinite;
        }
    }
}

// The variances of one row by an orthogonal factorisation of the weighted spectra of its set, column-major.
void variancesByFactor(const Matrix<double>& S, const std::vector<double>& weights, const double* amounts,
                       double* variances)
{
    std::vector<double> chosen;
    std::vector<long long> members;
    for (long long k = 0; k < S.num_rows(); ++k) {
        if (amounts[k] > 0.0) {
            const std::vector<double> column = weightedSpectrum(S, k, weights);
            chosen.insert(chosen.end(), column.begin(), column.end());
            members.push_back(k);
        }
    }
    const auto count = static_cast<long long>(members.size());
    if (count > S.num_cols()) {
        std::fill_n(variances, S.num_rows(), infinite);
        return;
    }
    const ThinQr factor(chosen.data(), S.num_cols(), count);
    std::fill_n(variances, S.num_rows(), 0.0);
    addMemberVariances(factor, members, variances);
    for (long long k = 0; k < S.num_rows(); ++k) {
        if (!(amounts[k] > 0.0)) {
            const std::vector<double> whole = weightedSpectrum(S, k, weights);
            const double left = squaresOf(besides(factor, count, whole));
            variances[k] = left > dependent * dependent * squaresOf(whole) ? 1.0 / left : infinite;
        }
    }
}

WeightedResidual totalOf(const std::vector<WeightedResidual>& parts)
{
    WeightedResidual total;
    for (const WeightedResidual& part : parts) {
        total.squares += part.squares;
        total.freedom += part.freedom;
    }
    return total;
}

void errorsOfRow(const Matrix<double>& S, const Matrix<double>& C, long long row, Workspace& work, double* errors)
{
    if (!isFinite(C[row], C.num_cols())) {
        std::fill_n(errors, C.num_cols(), notKnown);
        return;
    }
    work.weights.take(row, C[row]);
    variancesByFactor(S, work.weights.weights(), C[row], errors);
    std::transform(errors, errors + C.num_cols(), errors, [](double variance) { return std::sqrt(variance); });
}

} // namespace

long long weightedConcentrations(const Matrix<double>& D, const Matrix<double>& S, const NoiseModel& noise,
                                 Matrix<double>& C)
{
    checkShapes(S, noise, C);
    XTNT_ASSERT(D.num_rows() == C.num_rows() && D.num_cols() == S.num_cols());
    const WeightedSpectra problem(S, noise);
    const long long rowsOfGroup = std::max(1LL, C.num_rows() / noise.slopes.num_rows());
    std::atomic<long long> nnlsRows{0};
    forChunks(problem, C.num_rows(), [&](long long begin, long long end, Workspace& work) {
        long long left = 0;
        if (work.rowsAtOnce) {
            forLanes(begin, end, rowsOfGroup, [&](long long first, long long last) {
                left += fitLanes(D, C, first, last, first / rowsOfGroup, work);
            });
        } else {
            for (long long row = begin; row < end; ++row) {
                left += fitByNnls(D[row], row, C[row], work) ? 1 : 0;
            }
        }
        nnlsRows.fetch_add(left, std::memory_order_relaxed);
    });
    return nnlsRows;
}

void weightedConcentrationsPlain(const Matrix<double>& D, const Matrix<double>& S, const NoiseModel& noise,
                                 Matrix<double>& C)
{
    checkShapes(S, noise, C);
    XTNT_ASSERT(D.num_rows() == C.num_rows() && D.num_cols() == S.num_cols());
    const WeightedSpectra problem(S, noise);
    forChunks(problem, C.num_rows(), [&](long long begin, long long end, Workspace& work) {
        for (long long row = begin; row < end; ++row) {
            fitByNnls(D[row], row, C[row], work);
        }
    });
}

bool tellsOfNoise(const double* row, long long bands)
{
    return 8 * std::count_if(row, row + bands, [](double value) { return !(value > 0.0); }) <= bands;
}

WeightedResidual weightedResidual(const Matrix<double>& D, const Matrix<double>& S, const NoiseModel& noise,
                                  const Matrix<double>& C)
{
    checkShapes(S, noise, C);
    XTNT_ASSERT(D.num_rows() == C.num_rows() && D.num_cols() == S.num_cols());
    const WeightedSpectra problem(S, noise);
    const long long chunk = passChunkRows(C.num_rows());
    const auto chunks = static_cast<std::size_t>((C.num_rows() + chunk - 1) / chunk);
    std::vector<WeightedResidual> telling(chunks);
    std::vector<WeightedResidual> others(chunks);
    forChunks(problem, C.num_rows(), [&](long long begin, long long end, Workspace& work) {
        const auto place = static_cast<std::size_t>(begin / chunk);
        for (long long row = begin; row < end; ++row) {
            if (!isFinite(C[row], C.num_cols())) {
                continue;
            }
            work.weights.take(row, C[row]);
            WeightedResidual& part = (tellsOfNoise(D[row], D.num_cols()) ? telling : others)[place];
            for (long long b = 0; b < D.num_cols(); ++b) {
                const auto i = static_cast<std::size_t>(b);
                const double rest = D[row][b] - work.weights.expected()[i];
                part.squares += rest * rest * work.weights.weights()[i];
            }
            const auto above = std::count_if(C[row], C[row] + C.num_cols(), [](double c) { return c > 0.0; });
            part.freedom += static_cast<double>(std::max<long long>(D.num_cols() - above, 0));
        }
    });
    const WeightedResidual lit = totalOf(telling);
    const WeightedResidual dark = totalOf(others);
    constexpr double enough = 0.1;
    if (lit.freedom > enough * (lit.freedom + dark.freedom)) {
        return lit;
    }
    return {lit.squares + dark.squares, lit.freedom + dark.freedom};
}

Matrix<double> standardErrors(const Matrix<double>& S, const NoiseModel& noise, const Matrix<double>& C)
{
    checkShapes(S, noise, C);
    Matrix<double> errors(C.num_rows(), C.num_cols());
    preferLargePages(errors);
    const WeightedSpectra problem(S, noise);
    const long long rowsOfGroup = std::max(1LL, C.num_rows() / noise.slopes.num_rows());
    forChunks(problem, C.num_rows(), [&](long long begin, long long end, Workspace& work) {
        forLanes(begin, end, rowsOfGroup, [&](long long first, long long last) {
            WeightedRows* rows = work.rowsAtOnce.get();
            if (rows != nullptr) {
                rows->setAmounts(rowsFrom(C, first, last), first / rowsOfGroup);
                rows->findVariances();
            }
            for (long long row = first; row < last; ++row) {
                const auto lane = static_cast<std::size_t>(row - first);
                if (rows == nullptr || !rows->isSolved(lane)) {
                    errorsOfRow(S, C, row, work, errors[row]);
                    continue;
                }
                for (long long k = 0; k < C.num_cols(); ++k) {
                    errors[row][k] = std::sqrt(rows->variance(k, lane));
                }
            }
        });
    });
    return errors;
}

} // namespace XTNT
