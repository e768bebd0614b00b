// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/simplex_fit.h"

#include "host/simplx.h"

#include <algorithm>
#include <cstddef>

namespace XTNT {

namespace {

// Row 0 the objective, then a constraint "at most" a band; the last row is the solver's work space.
NRMat<double> makeTableau(const Vector<double>& d, const Matrix<double>& A, double tolerance)
{
    const long long bands = A.num_cols();
    const long long spectra = A.num_rows();
    NRMat<double> tableau(static_cast<std::size_t>(bands) + 2, static_cast<std::size_t>(spectra) + 1, 0.0);
    const double allowance = tolerance * d.Max();
    for (long long i = 0; i < bands; ++i) {
        double* row = tableau[static_cast<std::size_t>(i) + 1];
        row[0] = std::max(0.0, d[i] + allowance);
        for (long long j = 0; j < spectra; ++j) {
            row[j + 1] = -A[j][i];
            tableau[0][j + 1] += A[j][i];
        }
    }
    return tableau;
}

Vector<double> remainder(const Vector<double>& d, const Matrix<double>& A, const Vector<double>& x)
{
    Vector<double> rest = d.deepCopy();
    for (long long j = 0; j < A.num_rows(); ++j) {
        for (long long i = 0; i < A.num_cols(); ++i) {
            rest[i] -= x[j] * A[j][i];
        }
    }
    for (long long i = 0; i < rest.n_; ++i) {
        if (rest[i] < 0) {
            rest[i] = 0;
        }
    }
    return rest;
}

} // namespace

int simplexFit(const Vector<double>& d, const Matrix<double>& A, Vector<double>& residual, Vector<double>& x,
               double tolerance) noexcept
{
    if (d.n_ != A.num_cols()) {
        return 2;
    }
    try {
        NRMat<double> tableau = makeTableau(d, A, tolerance);
        int icase = 0;
        NRVec<int> izrov;
        NRVec<int> iposv;
        NR::simplx(tableau, static_cast<std::size_t>(d.n_), 0, 0, icase, izrov, iposv);
        if (icase != 0) {
            return icase;
        }
        Vector<double> amounts(A.num_rows());
        for (std::size_t i = 0; i < iposv.size(); ++i) {
            if (iposv[i] < A.num_rows()) {
                amounts[iposv[i]] = tableau[i + 1][0];
            }
        }
        residual = remainder(d, A, amounts);
        x = amounts;
        return 0;
    } catch (...) {
        // Nothing above passes a cancellation point, so no thread's unwinding can end here.
        return 3;
    }
}

int subtractAmounts(const Vector<double>& d, const Matrix<double>& A, Vector<double>& residual, const Vector<double>& x)
{
    if (x.n_ != A.num_rows() || d.n_ != A.num_cols()) {
        return 2;
    }
    residual = remainder(d, A, x);
    return 0;
}

} // namespace XTNT
