// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"
#include "XTNT/xtnt_vector.h"

// The spectra that belong to given concentrations: everything of an iteration that asks C (M x K) and the data D (M x
// N) together. C and D stay as they are while an object of this kind is in use, but for reorder().
class SpectrumFit
{
public:
    SpectrumFit() = default;
    virtual ~SpectrumFit() = default;
    SpectrumFit(const SpectrumFit&) = delete;
    SpectrumFit& operator=(const SpectrumFit&) = delete;

    // S (K x N) that minimises |C S - D|; as XTNT::solveForLeft, empty when that fails.
    virtual XTNT::Matrix<double> solve() = 0;

    // The s >= 0 (K values) that minimises |C s - column `band` of D|. The object's own: the next call overwrites its
    // elements, as the arrays of the solver are taken once for all bands.
    virtual const XTNT::Vector<double>& nonNegative(long long band) = 0;

    // With the components `fixed` taken from `spec` (K x N): the spectra of the components `free` at `bands`, as a
    // matrix of free rows and band columns, by least squares; a column with a negative element is replaced by its
    // non-negative solution. Empty when the least squares fail. Both lists are ascending and not empty.
    virtual XTNT::Matrix<double> refit(const XTNT::Vector<long long>& free, const XTNT::Vector<long long>& fixed,
                                       const XTNT::Vector<long long>& bands, const XTNT::Matrix<double>& spec) = 0;

    // The columns of C have been put into another order: column i is what was column order[i].
    virtual void reorder(const XTNT::Vector<long long>& order) = 0;

    // |T - C spec|, T the target of the residual: D itself unless the update of the data is weighted.
    virtual double residualNorm(const XTNT::Matrix<double>& target, const XTNT::Matrix<double>& spec) = 0;
};
