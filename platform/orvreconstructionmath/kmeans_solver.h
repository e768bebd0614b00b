// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvreconstructionmath/kmeans_distances.h"

#include <vector>

namespace XTNT {

// Lloyd's clustering of finite rows, with or without acceleration by bounds; both give the same labels, bit for bit the
// same centres, sweep by sweep.
//
// A sweep gives each row to its nearest centre; a row changes only to a centre that is strictly nearer. The
// acceleration keeps for each row an upper bound of the distance to its own centre and a lower bound of that to any
// other (G. Hamerly, Making k-means even faster, 2010), widened by all roundings: a row whose bounds do not touch would
// come out of the comparison of computed distances with the label that it has, so it is not looked at.
//
// The sums behind the centres are kept up by the rows that change, and made anew in an audit every `auditInterval`
// sweeps. The clustering ends when no row changes from centres whose sums are new, when an audit finds that the
// objective did not fall since the last one (roundings going in circles), or at the limit of sweeps.
class KMeansSolver
{
public:
    enum class Method
    {
        Plain,
        Bounded
    };

    // `rows` are pointers to `columns` finite elements each, which stay the caller's and must outlive the object; at
    // least one row. 1 <= clusters <= number of rows. Squares of the elements must neither overflow nor vanish.
    KMeansSolver(std::vector<const double*> rows, long long columns, long long clusters);

    // Start and sweeps. No cluster is empty afterwards while there are `clusters` distinct rows. Passes cancellation
    // points.
    void run(long long maxIterations, Method method);

    // One label a row, 0 to clusters - 1.
    const std::vector<int>& labels() const { return m_labels; }
    // clusters x columns, as of the last sweep.
    const std::vector<double>& centres() const { return m_centres; }
    // Sweeps of the last run, and how many rows they compared with all centres.
    long long sweeps() const { return m_sweeps; }
    long long comparedRows() const { return m_comparedRows; }

    // The pieces of a run, for measurements. `start` draws the first centres; `fullSweep` compares every row with every
    // centre, makes the sums anew and returns the number of rows that changed; `moveCentres` takes the centres to the
    // means, fills empty clusters, and tells whether it had to.
    void start();
    long long fullSweep();
    bool moveCentres();
    // Sum of the squared distances of the rows to their centres in the last full sweep.
    double objective() const { return m_objective; }

private:
    static constexpr long long blockRows = 64;
    static constexpr long long auditInterval = 50;

    enum class Sums
    {
        Anew,
        Changes
    };

    // What one chunk of a sweep leaves for the ordered reduction.
    struct ChunkResult
    {
        long long changes = 0;
        long long compared = 0;
        double objective = 0;
        bool touched = false;
    };

    struct ChunkWork;

    void iterate(long long maxIterations, Method method);
    void sumAnew();
    long long sweep(Method method, bool useBounds, Sums sums);
    void sweepChunk(long long begin, long long end, ChunkWork& work);
    void compareRows(ChunkWork& work);
    void settleRow(long long row, const double* distances, ChunkWork& work);
    void addRow(long long row, int label, double sign, ChunkWork& work);
    bool boundsHold(long long row);
    void reduceChunks(Sums sums);
    void updateShifts(const std::vector<double>& former);
    void updateSeparations();

    bool fillEmptyClusters();
    bool splitFarthest(int emptyCluster);
    void findUniformClusters(std::vector<char>& uniform);

    std::vector<const double*> m_rows;
    long long m_columns;
    long long m_clusters;
    long long m_grain;
    long long m_chunks;
    // Widening of a bound for the roundings of a distance.
    double m_rounding;

    std::vector<int> m_labels;
    std::vector<double> m_centres;
    std::vector<double> m_sums;
    std::vector<long long> m_counts;
    double m_objective = 0;
    long long m_sweeps = 0;
    long long m_comparedRows = 0;

    std::vector<double> m_upper;
    std::vector<double> m_lower;
    std::vector<double> m_shifts;      // a centre: how far it moved at most
    std::vector<double> m_otherShifts; // a centre: how far any other moved at most
    std::vector<double> m_separations; // a centre: half the way to the nearest other at least

    std::vector<ChunkResult> m_results;
    std::vector<double> m_chunkSums;
    std::vector<long long> m_chunkCounts;
};

} // namespace XTNT
