// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

#include <vector>

namespace XTNT {

// A small matrix applied to several pixels side by side: what RowProduct does for rows, for numbers that lie as the
// registers have them (element i of pixel p at i * lanes + p). Read-only after construction; threads may share it.
//
// Each result is a sum over the inputs in ascending order, of that pixel's numbers alone.
class LaneProduct
{
public:
    // `factor` is inputs x outputs.
    explicit LaneProduct(const Matrix<double>& factor);

    // Doubles that `multiply` writes: the outputs, rounded up to whole strips, for each lane.
    long long resultSize() const;

    // results[j * lanes + p] = sum over i of values[i * lanes + p] * factor[i][j]; 0 beyond the outputs, for finite
    // values.
    void multiply(const double* values, double* results) const;

private:
    long long m_inputs;
    long long m_strips;
    std::vector<double> m_packed; // strip by strip, input by input
};

} // namespace XTNT
