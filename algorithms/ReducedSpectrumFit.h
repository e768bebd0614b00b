// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "algorithms/NonNegativeFit.h"
#include "algorithms/SpectrumFit.h"

#include "XTNT/left_reduction.h"

#include <memory>
#include <optional>
#include <vector>

// The spectra of given concentrations from the reduced problem (XTNT::LeftReduction): after one pass over C and D every
// question is one of K rows, and the norm of the residual needs no second pass. Orthogonal transformations only, so the
// answers are as good as those of a factorisation of C. Where that would see dependent columns in C, or is not asked
// for least squares at all (as many rows as components), solve() is XTNT::solveForLeft itself.
class ReducedSpectrumFit : public SpectrumFit
{
public:
    // The columns of `conc` are to be reordered in place, so that this object, which keeps shares, sees it. Passes
    // cancellation points. Neither matrix is empty.
    ReducedSpectrumFit(const XTNT::Matrix<double>& conc, const XTNT::Matrix<double>& data);

    // With a reduction of just these matrices that another pass has made and finished.
    ReducedSpectrumFit(const XTNT::Matrix<double>& conc, const XTNT::Matrix<double>& data,
                       std::unique_ptr<XTNT::LeftReduction> reduction);

    XTNT::Matrix<double> solve() override;
    const XTNT::Vector<double>& nonNegative(long long band) override;
    XTNT::Matrix<double> refit(const XTNT::Vector<long long>& free, const XTNT::Vector<long long>& fixed,
                               const XTNT::Vector<long long>& bands, const XTNT::Matrix<double>& spec) override;
    void reorder(const XTNT::Vector<long long>& order) override;

    // From the reduced problem when `target` is a share of the data and the residual is not all rounding; else by a
    // pass over the rows.
    double residualNorm(const XTNT::Matrix<double>& target, const XTNT::Matrix<double>& spec) override;

private:
    void bringIntoRange();
    double reducedResidualSquares(const XTNT::Matrix<double>& spec) const;

    XTNT::Matrix<double> m_conc;
    XTNT::Matrix<double> m_data;
    std::unique_ptr<XTNT::LeftReduction> m_reduction;
    // What the columns of C were multiplied by before the reduction: powers of two, 1 but for extreme magnitudes.
    std::vector<double> m_scales;
    std::optional<NonNegativeFit> m_nonNegative; // of the triangle; made for the first band that needs it
};
