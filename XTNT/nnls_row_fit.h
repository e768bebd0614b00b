// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

#include <vector>

namespace XTNT {

// One non-negative fit a call, with the arrays that NNLS needs taken once: nothing is allocated per row. One object a
// thread.
class NnlsRowFit
{
public:
    // `spectra` (components x bands) must outlive the object.
    explicit NnlsRowFit(const Matrix<double>& spectra);

    long long components() const { return m_spectra.num_rows(); }

    // x (components) >= 0 that minimises |x S - d|, d of `bands` elements. When NNLS gives up, what it has.
    void fit(const double* d, double* x);
    // The same of sum over b of weights[b] (x S - d)[b]^2, the weights above 0.
    void fit(const double* d, const double* weights, double* x);

private:
    void solve(double* x);

    const Matrix<double>& m_spectra;
    std::vector<double> m_design;
    std::vector<double> m_pixel;
    std::vector<double> m_dual;
    std::vector<double> m_zz;
    std::vector<int> m_index;
};

} // namespace XTNT
