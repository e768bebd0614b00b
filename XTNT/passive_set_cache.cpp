// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/passive_set_cache.h"

#include "XTNT/xtnt_assert.h"

#include <algorithm>
#include <cmath>

namespace XTNT {

namespace {

constexpr long long lanes = 4;

// Exponent e with norm * 2^-e in [1/2, 1), for a norm that is finite and not zero.
int exponentOf(double norm)
{
    int exponent = 0;
    std::frexp(norm, &exponent);
    return exponent;
}

// Norm of a row of spectra, with the largest element taken out so that its square cannot overflow or vanish.
double rowNorm(const double* row, long long n)
{
    double largest = 0;
    for (long long i = 0; i < n; ++i) {
        largest = std::max(largest, std::abs(row[i]));
    }
    if (!(largest > 0) || !std::isfinite(largest)) {
        return largest;
    }
    double sum = 0;
    for (long long i = 0; i < n; ++i) {
        sum += (row[i] / largest) * (row[i] / largest);
    }
    return largest * std::sqrt(sum);
}

} // namespace

ReducedSpectra::ReducedSpectra(const Matrix<double>& spectra) : m_components(spectra.num_rows())
{
    if (m_components >= 1 && m_components <= maxComponents && spectra.num_cols() >= m_components) {
        factorise(spectra);
    }
}

void ReducedSpectra::factorise(const Matrix<double>& spectra)
{
    const long long bands = spectra.num_cols();
    std::vector<double> scaled(static_cast<std::size_t>(m_components * bands));
    for (long long i = 0; i < m_components; ++i) {
        const double norm = rowNorm(spectra[i], bands);
        if (!std::isfinite(norm) || !std::isnormal(norm)) {
            return;
        }
        const int exponent = exponentOf(norm);
        m_scales.push_back(std::ldexp(1.0, -exponent));
        for (long long b = 0; b < bands; ++b) {
            scaled[static_cast<std::size_t>(i * bands + b)] = std::ldexp(spectra[i][b], -exponent);
        }
    }

    const ThinQr factor(scaled.data(), bands, m_components);
    // Written so that NaN fails.
    if (!(factor.conditionBound() <= maxCondition)) {
        return;
    }
    m_basis = Matrix<double>(bands, m_components);
    for (long long i = 0; i < m_components; ++i) {
        for (long long b = 0; b < bands; ++b) {
            m_basis[b][i] = factor.q(i)[b];
        }
        m_r.insert(m_r.end(), factor.rColumn(i), factor.rColumn(i) + m_components);
    }
    m_usable = true;
}

PassiveSetCache::PassiveSetCache(const ReducedSpectra& spectra)
    : m_spectra(spectra), m_stride((spectra.components() + lanes - 1) / lanes * lanes)
{
    XTNT_ASSERT(spectra.usable());
    const long long operatorBytes = m_stride * spectra.components() * static_cast<long long>(sizeof(double));
    const long long sets = 1LL << spectra.components();
    m_capacity = std::min(sets, maxBytes / operatorBytes);
    std::size_t slots = 2;
    while (slots < 2 * static_cast<std::size_t>(m_capacity)) {
        slots *= 2;
    }
    m_slots.assign(slots, -1);
}

// Where `mask` is or would be. A slot is always free: there are twice as many as operators.
std::size_t PassiveSetCache::slotOf(Mask mask) const
{
    // Fibonacci hashing: neighbouring masks land far apart.
    std::size_t slot = (mask * 0x9E3779B97F4A7C15ULL >> 32U) & (m_slots.size() - 1);
    while (m_slots[slot] >= 0 && m_masks[static_cast<std::size_t>(m_slots[slot])] != mask) {
        slot = (slot + 1) & (m_slots.size() - 1);
    }
    return slot;
}

void PassiveSetCache::clear()
{
    std::fill(m_slots.begin(), m_slots.end(), -1);
    m_masks.clear();
    m_operators.clear();
}

const double* PassiveSetCache::at(Mask mask)
{
    std::size_t slot = slotOf(mask);
    if (m_slots[slot] < 0) {
        if (size() == m_capacity) {
            clear();
            slot = slotOf(mask);
        }
        m_operators.push_back(makeOperator(mask));
        m_masks.push_back(mask);
        m_slots[slot] = static_cast<int>(m_operators.size()) - 1;
    }
    return m_operators[static_cast<std::size_t>(m_slots[slot])].data();
}

std::vector<double> PassiveSetCache::makeOperator(Mask mask) const
{
    const long long components = m_spectra.components();
    std::vector<double> chosen;
    long long count = 0;
    for (long long i = 0; i < components; ++i) {
        if ((mask >> i & 1U) != 0) {
            chosen.insert(chosen.end(), m_spectra.column(i), m_spectra.column(i) + components);
            ++count;
        }
    }
    const ThinQr factor(chosen.data(), components, count);
    std::vector<double> op(static_cast<std::size_t>(m_stride * components), 0.0);
    fillSolutionRows(mask, factor, op.data());
    fillDualRows(mask, factor, op.data());
    return op;
}

// Rows of the set: the inverse of the set's triangular factor times the transposed basis.
void PassiveSetCache::fillSolutionRows(Mask mask, const ThinQr& factor, double* op) const
{
    const long long components = m_spectra.components();
    std::vector<double> column(static_cast<std::size_t>(components));
    for (long long i = 0; i < components; ++i) {
        long long count = 0;
        for (Mask rest = mask; rest != 0; rest &= rest - 1, ++count) {
            column[static_cast<std::size_t>(count)] = factor.q(count)[i];
        }
        factor.solveUpper(column.data());
        long long position = 0;
        for (long long j = 0; j < components; ++j) {
            if ((mask >> j & 1U) != 0) {
                op[i * m_stride + j] = column[static_cast<std::size_t>(position++)];
            }
        }
    }
}

// Rows off the set: what is left of the component's column when its part within the set is taken out, negated.
void PassiveSetCache::fillDualRows(Mask mask, const ThinQr& factor, double* op) const
{
    const long long components = m_spectra.components();
    const int count = __builtin_popcount(mask);
    for (long long j = 0; j < components; ++j) {
        if ((mask >> j & 1U) != 0) {
            continue;
        }
        std::vector<double> rest(m_spectra.column(j), m_spectra.column(j) + components);
        for (int k = 0; k < count; ++k) {
            const double* q = factor.q(k);
            double share = 0;
            for (long long i = 0; i < components; ++i) {
                share += q[i] * rest[static_cast<std::size_t>(i)];
            }
            for (long long i = 0; i < components; ++i) {
                rest[static_cast<std::size_t>(i)] -= share * q[i];
            }
        }
        for (long long i = 0; i < components; ++i) {
            op[i * m_stride + j] = -rest[static_cast<std::size_t>(i)];
        }
    }
}

} // namespace XTNT
