// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/thin_qr.h"
#include "XTNT/xtnt_matrix.h"

#include <cstdint>
#include <vector>

namespace XTNT {

// The problem "minimise |S' x - d| with x >= 0" for known spectra S (components x bands) and many measured rows d, in
// its reduced form: with S' = Q R (the columns of S' scaled by powers of two to norms in [1/2, 1)), c = Q' d holds all
// that d has to say, and the problem is "minimise |R z - c| with z >= 0", x = z times the scales. No Gram matrix is
// formed, so the error grows with the condition of S, not with its square.
//
// Read-only after construction; threads may share it.
class ReducedSpectra
{
public:
    // Components that a set of them fits into; more are not `usable`.
    static constexpr long long maxComponents = 32;
    // Largest condition (of the scaled spectra) that the fast path takes. Which components are zero turns on signs that
    // are lost in rounding when the condition's square nears 1 / epsilon; this stays well below.
    static constexpr double maxCondition = 1e5;

    explicit ReducedSpectra(const Matrix<double>& spectra);

    // False when the spectra are too many, fewer bands than components, not finite, or too near to dependent: then
    // nothing else may be asked.
    bool usable() const { return m_usable; }
    long long components() const { return m_components; }
    // Q, bands x components.
    const Matrix<double>& basis() const { return m_basis; }
    // Column `component` of R, `components()` elements.
    const double* column(long long component) const { return m_r.data() + component * m_components; }
    // Turns z into x: x[i] = z[i] * scale(i). A power of two.
    double scale(long long component) const { return m_scales[static_cast<std::size_t>(component)]; }

private:
    void factorise(const Matrix<double>& spectra);

    bool m_usable = false;
    long long m_components;
    Matrix<double> m_basis;
    std::vector<double> m_r;
    std::vector<double> m_scales;
};

// For each passive set (a bit mask: the components that may be above zero) the small matrix that turns c into the least
// squares solution on the set and, with the sign turned, the dual R' (c - R z) off it. Made on first use; a matrix
// follows from the spectra and the mask alone, bit by bit, so every thread keeps a cache of its own. Memory is bounded
// (`maxBytes` a cache); a full cache starts anew.
class PassiveSetCache
{
public:
    using Mask = std::uint32_t;
    static constexpr long long maxBytes = 8LL << 20;

    // `spectra` must be usable and outlive the cache.
    explicit PassiveSetCache(const ReducedSpectra& spectra);

    // Length of a column of an operator: the components, rounded up to whole vectors.
    long long stride() const { return m_stride; }

    // The operator of `mask`: column i, that of c[i], begins at i * stride(); beyond the components it is zero. Valid
    // until the next call.
    const double* at(Mask mask);

    // How many operators the cache holds, and may hold.
    long long size() const { return static_cast<long long>(m_operators.size()); }
    long long capacity() const { return m_capacity; }

private:
    std::size_t slotOf(Mask mask) const;
    void clear();
    std::vector<double> makeOperator(Mask mask) const;
    void fillSolutionRows(Mask mask, const ThinQr& factor, double* op) const;
    void fillDualRows(Mask mask, const ThinQr& factor, double* op) const;

    const ReducedSpectra& m_spectra;
    long long m_stride;
    long long m_capacity;
    // Open addressing: the index of an operator, or -1.
    std::vector<int> m_slots;
    std::vector<Mask> m_masks;
    std::vector<std::vector<double>> m_operators;
};

} // namespace XTNT
