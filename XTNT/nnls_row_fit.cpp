// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/nnls_row_fit.h"

#include "XTNT/nnls.h"

#include <algorithm>
#include <cmath>

namespace XTNT {

NnlsRowFit::NnlsRowFit(const Matrix<double>& spectra)
    : m_spectra(spectra), m_design(static_cast<std::size_t>(spectra.storage.n_)),
      m_pixel(static_cast<std::size_t>(spectra.num_cols())), m_dual(static_cast<std::size_t>(spectra.num_rows())),
      m_zz(static_cast<std::size_t>(spectra.num_cols())), m_index(static_cast<std::size_t>(spectra.num_rows()) + 1)
{
}

void NnlsRowFit::fit(const double* d, double* x)
{
    // The row-major spectra are, read column by column, the design matrix; NNLS destroys its copy.
    std::copy_n(m_spectra.storage.data, m_design.size(), m_design.data());
    std::copy_n(d, m_pixel.size(), m_pixel.data());
    solve(x);
}

void NnlsRowFit::fit(const double* d, const double* weights, double* x)
{
    const long long bands = m_spectra.num_cols();
    for (long long b = 0; b < bands; ++b) {
        const double root = std::sqrt(weights[b]);
        m_pixel[static_cast<std::size_t>(b)] = d[b] * root;
        for (long long k = 0; k < m_spectra.num_rows(); ++k) {
            m_design[static_cast<std::size_t>(k * bands + b)] = m_spectra[k][b] * root;
        }
    }
    solve(x);
}

void NnlsRowFit::solve(double* x)
{
    const int bands = static_cast<int>(m_spectra.num_cols());
    const int components = static_cast<int>(m_spectra.num_rows());
    double rnorm = 0;
    int mode = 0;
    NNLS(m_design.data(), bands, bands, components, m_pixel.data(), x, &rnorm, m_dual.data(), m_zz.data(),
         m_index.data(), &mode);
}

} // namespace XTNT
