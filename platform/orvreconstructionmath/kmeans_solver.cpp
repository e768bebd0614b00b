// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvreconstructionmath/kmeans_solver.h"

#include "XTNT/xtnt_assert.h"
#include "XTNT/xtnt_parallel.h"
#include "platform/orvreconstructionmath/kmeans_seeds.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace XTNT {

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

// Distances below this may have lost all digits when they were squared; it is far below the elements' own magnitude.
constexpr double absoluteSlack = 1e-150;

// A distance has a rounding a column and a few more; this stands well above them.
constexpr double roundingsBesideColumns = 16;

constexpr long long leastChunkRows = 1024;

// Memory for the partial sums of all chunks, in elements.
constexpr long long partialElements = 4LL << 20;
constexpr long long leastChunks = 8;

std::size_t at(long long i)
{
    return static_cast<std::size_t>(i);
}

// Chunk size from the sizes of the problem alone.
long long chunkRows(long long rows, long long clusters, long long columns)
{
    const long long wanted = (rows - 1) / leastChunkRows + 1;
    const long long bearable = std::max(leastChunks, partialElements / std::max(1LL, clusters * columns));
    const long long chunks = std::min(wanted, bearable);
    return (rows - 1) / chunks + 1;
}

} // namespace

// The state of one chunk during a sweep. `sums` and `counts` are this chunk's part of the partial sums.
struct KMeansSolver::ChunkWork
{
    const CentreDistances& distances;
    bool useBounds;
    bool setBounds;
    Sums mode;
    double* sums;
    long long* counts;
    ChunkResult result;
    std::vector<double> tile;
    long long rows[blockRows];
    long long rowCount = 0;
};

KMeansSolver::KMeansSolver(std::vector<const double*> rows, long long columns, long long clusters)
    : m_rows(std::move(rows)), m_columns(columns), m_clusters(clusters),
      m_grain(chunkRows(static_cast<long long>(m_rows.size()), clusters, columns)),
      m_chunks((static_cast<long long>(m_rows.size()) - 1) / m_grain + 1),
      m_rounding((static_cast<double>(columns) + roundingsBesideColumns) * epsilon)
{
    XTNT_ASSERT(clusters >= 1 && clusters <= static_cast<long long>(m_rows.size()));
    m_centres.resize(at(clusters * columns));
    m_sums.resize(at(clusters * columns));
    m_counts.resize(at(clusters));
    m_shifts.resize(at(clusters));
    m_otherShifts.resize(at(clusters));
    m_separations.resize(at(clusters));
    m_results.resize(at(m_chunks));
    m_chunkSums.resize(at(m_chunks * clusters * columns));
    m_chunkCounts.resize(at(m_chunks * clusters));
}

void KMeansSolver::run(long long maxIterations, Method method)
{
    m_sweeps = 0;
    m_comparedRows = 0;
    start();
    // All rows coincide with a drawn one when nothing is left between them: there is nothing to sweep.
    if (m_clusters > 1 && m_objective > 0) {
        iterate(maxIterations, method);
    }
    fillEmptyClusters();
}

void KMeansSolver::start()
{
    KMeansSeeds seeds = drawSeeds(m_rows, m_columns, m_clusters);
    m_labels = std::move(seeds.labels);
    m_objective = seeds.objective;
    for (long long j = 0; j < m_clusters; ++j) {
        const long long row = seeds.rows[std::min(at(j), seeds.rows.size() - 1)];
        std::copy_n(m_rows[at(row)], m_columns, m_centres.data() + j * m_columns);
    }
    sumAnew();
}

void KMeansSolver::iterate(long long maxIterations, Method method)
{
    if (method == Method::Bounded) {
        m_upper.assign(m_rows.size(), 0.0);
        m_lower.assign(m_rows.size(), 0.0);
    }
    double lastAudit = std::numeric_limits<double>::infinity();
    bool sumsAreNew = true;
    while (m_sweeps < maxIterations) {
        const std::vector<double> former = m_centres;
        const bool split = moveCentres();
        if (method == Method::Bounded) {
            updateShifts(former);
        }
        const bool audit = m_sweeps % auditInterval == 0;
        const long long changes =
            sweep(method, method == Method::Bounded && !audit, audit ? Sums::Anew : Sums::Changes);
        ++m_sweeps;
        if (changes == 0 && sumsAreNew && !split) {
            return;
        }
        sumsAreNew = audit;
        if (changes == 0) {
            sumAnew();
            sumsAreNew = true;
        } else if (audit) {
            if (!(m_objective < lastAudit)) {
                return;
            }
            lastAudit = m_objective;
        }
    }
}

long long KMeansSolver::fullSweep()
{
    return sweep(Method::Plain, false, Sums::Anew);
}

void KMeansSolver::sumAnew()
{
    parallelChunks(static_cast<long long>(m_rows.size()), m_grain, [this](long long begin, long long end) {
        const long long chunk = begin / m_grain;
        double* sums = m_chunkSums.data() + chunk * m_clusters * m_columns;
        long long* counts = m_chunkCounts.data() + chunk * m_clusters;
        std::fill_n(sums, m_clusters * m_columns, 0.0);
        std::fill_n(counts, m_clusters, 0);
        for (long long row = begin; row < end; ++row) {
            const int label = m_labels[at(row)];
            const double* __restrict x = m_rows[at(row)];
            double* __restrict sum = sums + label * m_columns;
            for (long long i = 0; i < m_columns; ++i) {
                sum[i] += x[i];
            }
            ++counts[label];
        }
        m_results[at(chunk)].touched = true;
    });
    reduceChunks(Sums::Anew);
}

// One pass over the rows; returns how many changed their label. Afterwards m_sums and m_counts are those of the new
// labels; with Sums::Anew m_objective is that of the pass.
long long KMeansSolver::sweep(Method method, bool useBounds, Sums sums)
{
    const CentreDistances distances(m_centres, m_clusters, m_columns);
    if (useBounds) {
        updateSeparations();
    }
    parallelChunks(static_cast<long long>(m_rows.size()), m_grain, [&](long long begin, long long end) {
        const long long chunk = begin / m_grain;
        ChunkWork work{distances,
                       useBounds,
                       method == Method::Bounded,
                       sums,
                       m_chunkSums.data() + chunk * m_clusters * m_columns,
                       m_chunkCounts.data() + chunk * m_clusters,
                       {},
                       std::vector<double>(at(CentreDistances::rowsAtOnce * distances.stride())),
                       {}};
        sweepChunk(begin, end, work);
        m_results[at(chunk)] = work.result;
    });
    long long changes = 0;
    double objective = 0;
    for (const ChunkResult& result : m_results) {
        changes += result.changes;
        m_comparedRows += result.compared;
        objective += result.objective;
    }
    if (sums == Sums::Anew) {
        m_objective = objective;
    }
    reduceChunks(sums);
    return changes;
}

void KMeansSolver::sweepChunk(long long begin, long long end, ChunkWork& work)
{
    for (long long first = begin; first < end; first += blockRows) {
        const long long last = std::min(first + blockRows, end);
        work.rowCount = 0;
        for (long long row = first; row < last; ++row) {
            work.rows[work.rowCount] = row;
            work.rowCount += work.useBounds && boundsHold(row) ? 0 : 1;
        }
        compareRows(work);
    }
}

// Compares the listed rows with all centres, four at once.
void KMeansSolver::compareRows(ChunkWork& work)
{
    constexpr long long atOnce = CentreDistances::rowsAtOnce;
    for (long long first = 0; first < work.rowCount; first += atOnce) {
        const double* rows[atOnce];
        for (long long r = 0; r < atOnce; ++r) {
            rows[r] = m_rows[at(work.rows[std::min(first + r, work.rowCount - 1)])];
        }
        work.distances.compute(rows, work.tile.data());
        for (long long r = 0; r < std::min(atOnce, work.rowCount - first); ++r) {
            settleRow(work.rows[first + r], work.tile.data() + r * work.distances.stride(), work);
        }
    }
    work.result.compared += work.rowCount;
}

void KMeansSolver::settleRow(long long row, const double* distances, ChunkWork& work)
{
    const int former = m_labels[at(row)];
    double nearest = distances[0];
    double second = std::numeric_limits<double>::infinity();
    int label = 0;
    for (int j = 1; j < static_cast<int>(m_clusters); ++j) {
        const double distance = distances[j];
        second = std::min(second, std::max(nearest, distance));
        label = distance < nearest ? j : label;
        nearest = std::min(nearest, distance);
    }
    // At a tie the row stays where it is.
    label = distances[former] > nearest ? label : former;

    if (work.setBounds) {
        m_upper[at(row)] = std::sqrt(nearest) * (1 + m_rounding) + absoluteSlack;
        m_lower[at(row)] = std::sqrt(second) * (1 - m_rounding) - absoluteSlack;
    }
    if (work.mode == Sums::Anew) {
        work.result.objective += nearest;
        addRow(row, label, 1, work);
    } else if (label != former) {
        addRow(row, former, -1, work);
        addRow(row, label, 1, work);
    }
    if (label != former) {
        m_labels[at(row)] = label;
        ++work.result.changes;
    }
}

void KMeansSolver::addRow(long long row, int label, double sign, ChunkWork& work)
{
    if (!work.result.touched) {
        std::fill_n(work.sums, m_clusters * m_columns, 0.0);
        std::fill_n(work.counts, m_clusters, 0);
        work.result.touched = true;
    }
    const double* __restrict x = m_rows[at(row)];
    double* __restrict sum = work.sums + label * m_columns;
    for (long long i = 0; i < m_columns; ++i) {
        sum[i] += sign * x[i];
    }
    work.counts[label] += sign > 0 ? 1 : -1;
}

// Moves the row's bounds with the centres and looks whether they still tell its label.
bool KMeansSolver::boundsHold(long long row)
{
    const int label = m_labels[at(row)];
    const double upper = (m_upper[at(row)] + m_shifts[at(label)]) * (1 + m_rounding);
    const double lower = (m_lower[at(row)] - m_otherShifts[at(label)]) * (1 - m_rounding);
    m_upper[at(row)] = upper;
    m_lower[at(row)] = lower;
    return upper < std::max(lower, m_separations[at(label)]);
}

// Adds the chunks' parts in their order: the same bits for any number of threads.
void KMeansSolver::reduceChunks(Sums sums)
{
    if (sums == Sums::Anew) {
        std::fill(m_sums.begin(), m_sums.end(), 0.0);
        std::fill(m_counts.begin(), m_counts.end(), 0);
    }
    const long long elements = m_clusters * m_columns;
    for (long long chunk = 0; chunk < m_chunks; ++chunk) {
        if (!m_results[at(chunk)].touched) {
            continue;
        }
        const double* __restrict part = m_chunkSums.data() + chunk * elements;
        double* __restrict sum = m_sums.data();
        for (long long i = 0; i < elements; ++i) {
            sum[i] += part[i];
        }
        for (long long j = 0; j < m_clusters; ++j) {
            m_counts[at(j)] += m_chunkCounts[at(chunk * m_clusters + j)];
        }
    }
}

bool KMeansSolver::moveCentres()
{
    for (long long j = 0; j < m_clusters; ++j) {
        if (m_counts[at(j)] < 1) {
            continue;
        }
        const auto count = static_cast<double>(m_counts[at(j)]);
        for (long long i = 0; i < m_columns; ++i) {
            m_centres[at(j * m_columns + i)] = m_sums[at(j * m_columns + i)] / count;
        }
    }
    return fillEmptyClusters();
}

void KMeansSolver::updateShifts(const std::vector<double>& former)
{
    double largest = 0;
    double second = 0;
    long long mover = 0;
    for (long long j = 0; j < m_clusters; ++j) {
        const double way =
            std::sqrt(squaredDistance(former.data() + j * m_columns, m_centres.data() + j * m_columns, m_columns));
        const double shift = way * (1 + m_rounding) + absoluteSlack;
        m_shifts[at(j)] = shift;
        if (shift > largest) {
            second = largest;
            largest = shift;
            mover = j;
        } else {
            second = std::max(second, shift);
        }
    }
    std::fill(m_otherShifts.begin(), m_otherShifts.end(), largest);
    m_otherShifts[at(mover)] = second;
}

void KMeansSolver::updateSeparations()
{
    std::fill(m_separations.begin(), m_separations.end(), 0.0);
    // With very many clusters this would cost more than it saves.
    if (m_clusters * m_clusters > static_cast<long long>(m_rows.size())) {
        return;
    }
    for (long long j = 0; j < m_clusters; ++j) {
        double nearest = std::numeric_limits<double>::infinity();
        for (long long other = 0; other < m_clusters; ++other) {
            if (other != j) {
                nearest = std::min(nearest, squaredDistance(m_centres.data() + j * m_columns,
                                                            m_centres.data() + other * m_columns, m_columns));
            }
        }
        m_separations[at(j)] = 0.5 * std::sqrt(nearest) * (1 - 4 * m_rounding) - absoluteSlack;
    }
}

// Gives each empty cluster a row of its own while there are more distinct rows than clusters in use. True when a label
// changed. Sums, counts and the bounds of the rows concerned are kept right.
bool KMeansSolver::fillEmptyClusters()
{
    bool changed = false;
    for (long long j = 0; j < m_clusters; ++j) {
        if (m_counts[at(j)] == 0) {
            cancellationPoint();
            if (!splitFarthest(static_cast<int>(j))) {
                break;
            }
            changed = true;
        }
    }
    return changed;
}

// Moves the row that lies farthest from its centre, the first at a tie, into the empty cluster. Clusters of equal rows
// are left whole; false when there are no others.
bool KMeansSolver::splitFarthest(int emptyCluster)
{
    std::vector<char> uniform(at(m_clusters), 1);
    findUniformClusters(uniform);
    long long farthest = -1;
    double distance = -1;
    for (long long row = 0; row < static_cast<long long>(m_rows.size()); ++row) {
        const int label = m_labels[at(row)];
        if (uniform[at(label)] != 0) {
            continue;
        }
        const double candidate = squaredDistance(m_rows[at(row)], m_centres.data() + label * m_columns, m_columns);
        if (candidate > distance) {
            distance = candidate;
            farthest = row;
        }
    }
    if (farthest < 0) {
        return false;
    }

    const int former = m_labels[at(farthest)];
    m_labels[at(farthest)] = emptyCluster;
    --m_counts[at(former)];
    m_counts[at(emptyCluster)] = 1;
    const double* x = m_rows[at(farthest)];
    for (long long i = 0; i < m_columns; ++i) {
        m_sums[at(former * m_columns + i)] -= x[i];
        m_sums[at(emptyCluster * m_columns + i)] = x[i];
        m_centres[at(emptyCluster * m_columns + i)] = x[i];
    }
    if (!m_upper.empty()) {
        // Bounds that cannot hold: the next sweep compares this row with all centres.
        m_upper[at(farthest)] = std::numeric_limits<double>::infinity();
        m_lower[at(farthest)] = 0;
    }
    return true;
}

// Marks the clusters whose rows are all equal (empty ones too) and puts their centres on that row exactly: rounding of
// the mean must not make equal rows look apart.
void KMeansSolver::findUniformClusters(std::vector<char>& uniform)
{
    std::vector<const double*> first(at(m_clusters), nullptr);
    for (std::size_t row = 0; row < m_rows.size(); ++row) {
        const auto label = at(m_labels[row]);
        if (first[label] == nullptr) {
            first[label] = m_rows[row];
        } else if (uniform[label] != 0 && !std::equal(first[label], first[label] + m_columns, m_rows[row])) {
            uniform[label] = 0;
        }
    }
    for (long long j = 0; j < m_clusters; ++j) {
        if (uniform[at(j)] != 0 && first[at(j)] != nullptr) {
            std::copy_n(first[at(j)], m_columns, m_centres.data() + j * m_columns);
        }
    }
}

} // namespace XTNT
