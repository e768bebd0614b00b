// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/constrained_concentrations.h"

#include "XTNT/concentration_pass.h"
#include "XTNT/least_squares.h"
#include "XTNT/nnls_row_fit.h"
#include "XTNT/workspace_pool.h"
#include "XTNT/xtnt_pages.h"
#include "XTNT/xtnt_parallel.h"

#include <algorithm>
#include <memory>

namespace XTNT {

namespace {

// NNLS takes some microseconds a row, so this many stay a small part of a slice.
constexpr long long rowsPerChunk = 64;

void checkSizes(const Matrix<double>& D, const Matrix<double>& S)
{
    if (D.num_cols() != S.num_cols() || D.num_rows() < S.num_rows()) {
        throw -1;
    }
}

} // namespace

int constrainedConcentrationsPlain(const Matrix<double>& D, const Matrix<double>& S, Matrix<double>& C)
{
    checkSizes(D, S);
    Matrix<double> fit = solveForRight(D, S);
    if (fit.empty()) {
        C = fit;
        throw -2;
    }
    WorkspacePool<NnlsRowFit> pool([&S] { return std::make_unique<NnlsRowFit>(S); });
    parallelChunks(D.num_rows(), rowsPerChunk, [&](long long begin, long long end) {
        const WorkspacePool<NnlsRowFit>::Lease lease(pool);
        for (long long p = begin; p < end; ++p) {
            double* c = fit[p];
            if (std::any_of(c, c + fit.num_cols(), [](double value) { return value < 0; })) {
                (*lease).fit(D[p], c);
            }
        }
    });
    C = fit;
    return 0;
}

// The steps of the plain path, taken block by block: a block's rows are fitted, looked at and solved while they are in
// the cache.
int constrainedConcentrations(const Matrix<double>& D, const Matrix<double>& S, Matrix<double>& C)
{
    checkSizes(D, S);
    const Matrix<double> weights = D.empty() ? Matrix<double>() : rightSolutionOperator(S);
    if (weights.empty()) {
        C = Matrix<double>();
        throw -2;
    }
    Matrix<double> result(D.num_rows(), S.num_rows());
    preferLargePages(result);
    ConcentrationPass(D, S, weights).run(result);
    C = result;
    return 0;
}

} // namespace XTNT
