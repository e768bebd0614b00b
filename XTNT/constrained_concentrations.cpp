// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/constrained_concentrations.h"

#include "XTNT/least_squares.h"
#include "XTNT/nnls.h"
#include "XTNT/xtnt_parallel.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace XTNT {

namespace {

constexpr long long rowsPerChunk = 64;
constexpr long long chunksPerSlice = 64;

// What one chunk's calls of NNLS need, taken once a pass: NNLS and its callers must not allocate a row.
struct NnlsWorkspace
{
    NnlsWorkspace(std::size_t bands, std::size_t components)
        : spectra(bands * components), pixel(bands), solution(components), dual(components), zz(bands),
          index(components)
    {
    }

    std::vector<double> spectra;
    std::vector<double> pixel;
    std::vector<double> solution;
    std::vector<double> dual;
    std::vector<double> zz;
    std::vector<int> index;
};

// The row-major K x N spectra are, read column by column, the N x K design matrix; NNLS destroys its copy.
void fitRow(const double* d, const Matrix<double>& S, NnlsWorkspace& work, double* c)
{
    const int bands = static_cast<int>(S.num_cols());
    const int components = static_cast<int>(S.num_rows());
    std::copy_n(S.storage.data, work.spectra.size(), work.spectra.data());
    std::copy_n(d, work.pixel.size(), work.pixel.data());
    double rnorm = 0;
    int mode = 0;
    NNLS(work.spectra.data(), bands, bands, components, work.pixel.data(), work.solution.data(), &rnorm,
         work.dual.data(), work.zz.data(), work.index.data(), &mode);
    std::copy_n(work.solution.data(), work.solution.size(), c);
}

void unconstrainedFit(const Matrix<double>& D, const Matrix<double>& S, Matrix<double>& C)
{
    if (D.num_cols() != S.num_cols() || D.num_rows() < S.num_rows()) {
        throw -1;
    }
    C = solveForRight(D, S);
    if (C.empty()) {
        throw -2;
    }
}

} // namespace

int constrainedConcentrationsPlain(const Matrix<double>& D, const Matrix<double>& S, Matrix<double>& C)
{
    unconstrainedFit(D, S, C);
    const long long rows = D.num_rows();
    std::vector<NnlsWorkspace> workspaces(
        static_cast<std::size_t>(chunksPerSlice),
        NnlsWorkspace(static_cast<std::size_t>(S.num_cols()), static_cast<std::size_t>(S.num_rows())));
    // A slice at a time, so that a workspace a chunk stays a small number of them.
    const long long rowsPerSlice = rowsPerChunk * chunksPerSlice;
    for (long long first = 0; first < rows; first += rowsPerSlice) {
        parallelChunks(std::min(rowsPerSlice, rows - first), rowsPerChunk, [&](long long begin, long long end) {
            NnlsWorkspace& work = workspaces[static_cast<std::size_t>(begin / rowsPerChunk)];
            for (long long p = first + begin; p < first + end; ++p) {
                double* c = C[p];
                if (std::any_of(c, c + C.num_cols(), [](double value) { return value < 0; })) {
                    fitRow(D[p], S, work, c);
                }
            }
        });
    }
    return 0;
}

int constrainedConcentrations(const Matrix<double>& D, const Matrix<double>& S, Matrix<double>& C)
{
    return constrainedConcentrationsPlain(D, S, C);
}

} // namespace XTNT
