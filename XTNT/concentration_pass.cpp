// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/concentration_pass.h"

#include "XTNT/row_blocks.h"
#include "XTNT/xtnt_assert.h"
#include "XTNT/xtnt_lanes.h"
#include "XTNT/xtnt_parallel.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>

namespace XTNT {

namespace {

using Mask = PassiveSetCache::Mask;

// Rounding of a dual per component, relative to the sum of the magnitudes of c: an element of the operator carries a
// few roundings for every component that was taken out, and the product one more each. A dual up to this is zero.
constexpr double dualRounding = 4 * std::numeric_limits<double>::epsilon();

// Range of magnitudes in which products neither overflow nor lose digits to underflow.
constexpr double smallestMagnitude = 1e-280;
constexpr double largestMagnitude = 1e280;

// Full exchanges that may pass without a new least number of offenders, as the method's authors have it.
constexpr int patience = 3;

// The pivoting ends within a few rounds; where rounding makes it go in circles the row is NNLS's.
constexpr int roundsPerComponent = 5;
constexpr int leastRounds = 10;

bool hasNegative(const double* row, long long n)
{
    bool negative = false;
    for (long long i = 0; i < n; ++i) {
        negative |= row[i] < 0;
    }
    return negative;
}

// y = the sum over i of c[i] times column i of `op`; n components in columns of `stride`, a multiple of the lanes.
void applyOperator(const double* __restrict op, const double* __restrict c, long long n, long long stride,
                   double* __restrict y)
{
    long long first = 0;
    for (; first + 2 * lanes <= stride; first += 2 * lanes) {
        Lanes y0{}, y1{};
        for (long long i = 0; i < n; ++i) {
            const double* column = op + i * stride + first;
            y0 += c[i] * lanesAt(column);
            y1 += c[i] * lanesAt(column + lanes);
        }
        putLanes(y + first, y0);
        putLanes(y + first + lanes, y1);
    }
    if (first < stride) {
        Lanes y0{};
        for (long long i = 0; i < n; ++i) {
            y0 += c[i] * lanesAt(op + i * stride + first);
        }
        putLanes(y + first, y0);
    }
}

// Variables that break their condition: on the set a value below 0, off it a negated dual below -tolerance.
Mask offenders(const double* y, long long n, Mask passive, double tolerance)
{
    const double limits[2] = {-tolerance, 0.0};
    Mask wrong = 0;
    for (long long i = 0; i < n; ++i) {
        wrong |= static_cast<Mask>(y[i] < limits[passive >> i & 1U]) << i;
    }
    return wrong;
}

Mask positives(const double* x, long long n)
{
    Mask mask = 0;
    for (long long i = 0; i < n; ++i) {
        mask |= static_cast<Mask>(x[i] > 0) << i;
    }
    return mask;
}

Mask highestBit(Mask mask)
{
    return Mask{1} << (31 - __builtin_clz(mask));
}

} // namespace

ConcentrationPass::Workspace::Workspace(const ConcentrationPass& pass)
    : nnls(pass.m_spectra), scratch(static_cast<std::size_t>(RowProduct::rowsAtOnce * pass.m_fit.paddedColumns()))
{
    negative.reserve(static_cast<std::size_t>(blockRows));
    left.reserve(static_cast<std::size_t>(blockRows));
    if (pass.m_reduced.usable()) {
        cache = std::make_unique<PassiveSetCache>(pass.m_reduced);
        reduced.resize(static_cast<std::size_t>(RowProduct::rowsAtOnce * pass.m_reduce->paddedColumns()));
        trial.resize(static_cast<std::size_t>(cache->stride()));
    }
}

ConcentrationPass::ConcentrationPass(const Matrix<double>& D, const Matrix<double>& S, const Matrix<double>& weights,
                                     Negative negative)
    : m_data(D), m_spectra(S), m_fit(weights), m_negative(negative),
      m_reduced(negative == Negative::Solve ? S : Matrix<double>())
{
    XTNT_ASSERT(D.num_cols() == S.num_cols());
    XTNT_ASSERT(weights.num_rows() == S.num_cols() && weights.num_cols() == S.num_rows());
    if (m_reduced.usable()) {
        m_reduce = std::make_unique<RowProduct>(m_reduced.basis());
    }
}

void ConcentrationPass::run(Matrix<double>& C, const BlockStep& step)
{
    XTNT_ASSERT(C.num_rows() == m_data.num_rows() && C.num_cols() == m_spectra.num_rows());
    std::atomic<long long> negativeRows{0};
    std::atomic<long long> nnlsRows{0};
    WorkspacePool<Workspace> pool([this] { return std::make_unique<Workspace>(*this); });
    parallelChunks(C.num_rows(), passChunkRows(C.num_rows()), [&](long long begin, long long end) {
        const WorkspacePool<Workspace>::Lease lease(pool);
        Workspace& work = *lease;
        long long negative = 0;
        long long left = 0;
        for (long long first = begin; first < end; first += blockRows) {
            const long long last = std::min(first + blockRows, end);
            runBlock(first, last, C, work);
            if (step) {
                step(first, last);
            }
            negative += static_cast<long long>(work.negative.size());
            left += static_cast<long long>(work.left.size());
        }
        negativeRows.fetch_add(negative, std::memory_order_relaxed);
        nnlsRows.fetch_add(left, std::memory_order_relaxed);
    });
    m_negativeRows = negativeRows;
    m_nnlsRows = nnlsRows;
}

// Leaves in the work space which rows were negative and which of them NNLS took.
void ConcentrationPass::runBlock(long long begin, long long end, Matrix<double>& C, Workspace& work) const
{
    m_fit.multiplyBlock(m_data, begin, end, C, work.scratch.data());
    findNegativeRows(begin, end, C, work);
    if (m_negative == Negative::Keep) {
        return;
    }
    if (work.cache) {
        solveNegativeRows(C, work);
    } else {
        work.left.assign(work.negative.begin(), work.negative.end());
    }
    for (long long row : work.left) {
        work.nnls.fit(m_data[row], C[row]);
    }
}

void ConcentrationPass::findNegativeRows(long long begin, long long end, const Matrix<double>& C, Workspace& work) const
{
    work.negative.clear();
    work.left.clear();
    for (long long row = begin; row < end; ++row) {
        if (hasNegative(C[row], C.num_cols())) {
            work.negative.push_back(row);
        }
    }
}

void ConcentrationPass::solveNegativeRows(Matrix<double>& C, Workspace& work) const
{
    constexpr std::size_t atOnce = RowProduct::rowsAtOnce;
    const std::size_t count = work.negative.size();
    for (std::size_t first = 0; first < count; first += atOnce) {
        const double* rows[atOnce];
        for (std::size_t r = 0; r < atOnce; ++r) {
            rows[r] = m_data[work.negative[std::min(first + r, count - 1)]];
        }
        m_reduce->multiply(rows, work.reduced.data());
        for (std::size_t r = 0; r < std::min(atOnce, count - first); ++r) {
            const long long row = work.negative[first + r];
            const double* c = work.reduced.data() + static_cast<long long>(r) * m_reduce->paddedColumns();
            if (!solveReduced(c, C[row], work)) {
                work.left.push_back(row);
            }
        }
    }
}

// x holds the unconstrained fit, whose signs are the start, and takes the solution. False when the row has to go to
// NNLS; x is then left alone.
bool ConcentrationPass::solveReduced(const double* c, double* x, Workspace& work) const
{
    const long long n = m_reduced.components();
    double magnitude = 0;
    for (long long i = 0; i < n; ++i) {
        magnitude += std::abs(c[i]);
    }
    // Written so that NaN fails.
    if (!(magnitude > smallestMagnitude && magnitude < largestMagnitude)) {
        return false;
    }

    const double tolerance = dualRounding * static_cast<double>(n) * magnitude;
    double* y = work.trial.data();
    Mask passive = positives(x, n);
    int fewest = static_cast<int>(n) + 1;
    int chances = patience;
    const int rounds = leastRounds + roundsPerComponent * static_cast<int>(n);
    for (int round = 0; round < rounds; ++round) {
        applyOperator(work.cache->at(passive), c, n, work.cache->stride(), y);
        Mask wrong = offenders(y, n, passive, tolerance);
        if (wrong == 0) {
            for (long long i = 0; i < n; ++i) {
                x[i] = (passive >> i & 1U) != 0 && y[i] > 0 ? y[i] * m_reduced.scale(i) : 0.0;
            }
            return true;
        }
        const int count = __builtin_popcount(wrong);
        if (count < fewest) {
            fewest = count;
            chances = patience;
        } else if (chances > 0) {
            --chances;
        } else {
            wrong = highestBit(wrong);
        }
        passive ^= wrong;
    }
    return false;
}

} // namespace XTNT
