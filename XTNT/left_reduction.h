// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/workspace_pool.h"
#include "XTNT/xtnt_matrix.h"

#include <memory>
#include <vector>

namespace XTNT {

// The least-squares problems min |C s - d| for the columns d of D (M x N), all with one tall C (M x K), brought to K
// rows: with C = Q R, Q orthonormal and R upper triangular,
//
//   |C s - d|^2 = |R s - Q' d|^2 + |rest of d outside the range of C|^2   for every s,
//
// so R, Q' D and the norm of the rest answer everything about the spectra that belong to C, constrained or not.
// Householder reflections, block of rows after block of rows (J. Demmel, L. Grigori, M. Hoemmen, J. Langou,
// Communication-optimal parallel and sequential QR and LU factorizations, 2012), in compact form (R. Schreiber, C. Van
// Loan, A storage-efficient WY representation for products of Householder transformations, 1989): the data are read
// where they lie, twice a block, and no Gram matrix is formed, so a nearly dependent C loses no more digits than it
// must and the rest does not cancel.
//
// A zero or dependent column of C leaves a singular R and is otherwise no trouble. Elements that are not finite spoil
// what they meet. Elements of C below about 1e-140 count as zero and those above 1e140 overflow: see inRange().
//
// Each chunk of passChunkRows(M) rows has a partial result of its own and they are folded in order: the same bits
// whatever the number of threads.
class LeftReduction
{
public:
    // Takes a share of D, which is only read.
    LeftReduction(const Matrix<double>& D, long long components);
    ~LeftReduction();
    LeftReduction(const LeftReduction&) = delete;
    LeftReduction& operator=(const LeftReduction&) = delete;

    // Takes rows [begin, end) of C and of D, as a step of a parallel pass (ConcentrationPass::run): blocks of at most
    // blockRows rows, those of one chunk in ascending order and by one thread at a time. Every row once.
    void add(const Matrix<double>& C, long long begin, long long end);

    // Folds the partial results; to be called once after the last row.
    void finish();

    // The whole in a pass of its own: add() for all rows of C, and finish(). Passes cancellation points.
    void addAll(const Matrix<double>& C);

    // Puts column order[i] of C in the place of column i.
    void reorder(const Vector<long long>& order);

    // After finish(): R, K x K, zero below the diagonal (whose signs are as they come), and Q' D, K x N.
    const Matrix<double>& triangle() const { return m_triangles; }
    const Matrix<double>& head() const { return m_heads; }
    // Sum of the squares of what D has outside the range of C.
    double restSquares() const { return m_rests[0]; }

    // Whether the columns of C had magnitudes with which the above is right: norms between 1e-120 and 1e120. A zero
    // column is not in range: it cannot be told from a tiny one.
    bool inRange() const;

private:
    class Reducer;

    std::unique_ptr<Reducer> makeReducer() const;

    Matrix<double> m_data;
    long long m_components;
    long long m_chunkRows;
    // K rows a chunk; K rows in all once they are folded.
    Matrix<double> m_triangles;
    Matrix<double> m_heads;
    std::vector<double> m_rests;
    std::unique_ptr<WorkspacePool<Reducer>> m_pool;
};

} // namespace XTNT
