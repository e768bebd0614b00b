// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/nnls_row_fit.h"
#include "XTNT/xtnt_matrix.h"
#include "XTNT/xtnt_vector.h"

#include <vector>

// Whether column `column` has an element below 0.
bool hasNegative(const XTNT::Matrix<double>& a, long long column);

// The non-negative fits with one design matrix, by XTNT::NNLS on copies: what a fit needs is taken once, nothing is
// allocated per fit. One object a thread.
class NonNegativeFit
{
public:
    // Keeps a transposed copy.
    explicit NonNegativeFit(const XTNT::Matrix<double>& design);
    NonNegativeFit(const NonNegativeFit&) = delete;
    NonNegativeFit& operator=(const NonNegativeFit&) = delete;

    // The x >= 0 that minimises |design x - column `column` of rightHandSides|; what NNLS has where it gives up. The
    // object's own: the next fit overwrites its elements.
    XTNT::Vector<double>& fit(const XTNT::Matrix<double>& rightHandSides, long long column);

private:
    XTNT::Matrix<double> m_design; // a row a component
    std::vector<double> m_column;
    XTNT::Vector<double> m_solution;
    XTNT::NnlsRowFit m_fit;
};
