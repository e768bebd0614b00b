// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CILHistogram.h"

#include <algorithm>
#include <cmath>
#include <numeric>

void CILHistogram::reset()
{
    m_counts.assign(static_cast<std::size_t>(m_nBins), 0.0);
}

void CILHistogram::add(double value)
{
    if (std::isnan(value)) {
        return;
    }
    if (m_counts.empty()) {
        reset();
    }
    const std::size_t last = m_counts.size() - 1;
    std::size_t bin = 0;
    if (value >= m_dMax) {
        bin = m_dMax > m_dMin || value > m_dMax ? last : 0;
    } else if (value > m_dMin) {
        // Halves, so that the width of a range over the whole of the doubles stays finite.
        const double fraction = (value / 2 - m_dMin / 2) / (m_dMax / 2 - m_dMin / 2);
        bin = std::min(last, static_cast<std::size_t>(fraction * static_cast<double>(m_counts.size())));
    }
    m_counts[bin] += 1.0;
}

void CILHistogram::integrate(CILHistogram* out)
{
    if (out != nullptr && out != this) {
        *out = *this;
        out->integrate(nullptr);
        return;
    }
    std::partial_sum(m_counts.begin(), m_counts.end(), m_counts.begin());
}
