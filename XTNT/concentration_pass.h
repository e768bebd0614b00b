// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/nnls_row_fit.h"
#include "XTNT/passive_set_cache.h"
#include "XTNT/row_product.h"
#include "XTNT/workspace_pool.h"
#include "XTNT/xtnt_matrix.h"

#include <functional>
#include <memory>
#include <vector>

namespace XTNT {

// The pass behind constrainedConcentrations: for every row d of D (pixels x bands) the unconstrained fit, and on
// request for a row with an element below 0 the x >= 0 that minimises |x S - d|.
//
// The rows are walked in blocks that stay in the first cache. A negative row is solved in the reduced form of
// ReducedSpectra by block principal pivoting (J. J. Judice, F. M. Pires, A block principal pivoting algorithm for large
// scale strictly monotone linear complementarity problems, 1994): from the signs of the unconstrained fit on, all
// variables that break an optimality condition change sides at once, and one at a time when their number does not fall.
// A row leaves this loop only with both conditions met (solution not below 0 on the passive set, dual not above
// rounding off it); what cannot be solved so goes to NNLS: spectra that are not `usable`, rows that are not finite or
// beyond the range in which the tolerance means something, rows on which the pivoting does not end.
//
// A row's result follows from that row, S and the weights alone.
class ConcentrationPass
{
public:
    // What becomes of a row with an element below 0.
    enum class Negative
    {
        Solve, // the non-negative fit takes its place
        Keep   // it stays as it is
    };

    // Work on rows [begin, end) once they are final and while they and their data are in the cache. Called on the
    // threads of the pass for blocks of at most blockRows rows, those of a chunk of passChunkRows(rows) one after the
    // other on one thread (XTNT/row_blocks.h). Bound by what binds a parallel body: it may not throw.
    using BlockStep = std::function<void(long long begin, long long end)>;

    // `weights` (bands x components) is the unconstrained fit: c = d * weights. D and S must outlive the object.
    ConcentrationPass(const Matrix<double>& D, const Matrix<double>& S, const Matrix<double>& weights,
                      Negative negative = Negative::Solve);

    // Fills C (pixels x components) in parallel, whatever it held before, and calls `step`, if there is one, for each
    // block. An abort unwinds from here between two slices and leaves rows unfilled.
    void run(Matrix<double>& C, const BlockStep& step = BlockStep());

    // Rows of the last run that had an element below 0, and those of them that went to NNLS.
    long long negativeRows() const { return m_negativeRows; }
    long long nnlsRows() const { return m_nnlsRows; }

private:
    struct Workspace
    {
        explicit Workspace(const ConcentrationPass& pass);

        std::unique_ptr<PassiveSetCache> cache; // null when the spectra are not usable
        NnlsRowFit nnls;
        std::vector<double> scratch;
        std::vector<double> reduced;
        std::vector<double> trial;
        std::vector<long long> negative;
        std::vector<long long> left;
    };

    void runBlock(long long begin, long long end, Matrix<double>& C, Workspace& work) const;
    void findNegativeRows(long long begin, long long end, const Matrix<double>& C, Workspace& work) const;
    void solveNegativeRows(Matrix<double>& C, Workspace& work) const;
    bool solveReduced(const double* c, double* x, Workspace& work) const;

    const Matrix<double>& m_data;
    const Matrix<double>& m_spectra;
    RowProduct m_fit;
    Negative m_negative;
    ReducedSpectra m_reduced;
    std::unique_ptr<RowProduct> m_reduce;
    long long m_negativeRows = 0;
    long long m_nnlsRows = 0;
};

} // namespace XTNT
