// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/SpectralCurve.h"

#include "XTNT/xtnt_assert.h"

#include <algorithm>

SpectralCurve::SpectralCurve(QVector<double> wavelengths, QVector<double> values, Beyond beyond)
    : m_wavelengths(std::move(wavelengths)), m_values(std::move(values)), m_beyond(beyond)
{
    XTNT_ASSERT(!m_wavelengths.isEmpty() && m_wavelengths.size() == m_values.size());
}

double SpectralCurve::at(double nm) const
{
    if (m_wavelengths.isEmpty()) {
        return 0.0;
    }
    const bool before = nm < m_wavelengths.first();
    if (before || nm > m_wavelengths.last()) {
        return m_beyond == Beyond::Zero ? 0.0 : (before ? m_values.first() : m_values.last());
    }
    const auto next = std::upper_bound(m_wavelengths.begin(), m_wavelengths.end(), nm);
    if (next == m_wavelengths.end()) {
        return m_values.last();
    }
    const int i = static_cast<int>(next - m_wavelengths.begin());
    const double t = (nm - m_wavelengths.at(i - 1)) / (m_wavelengths.at(i) - m_wavelengths.at(i - 1));
    return m_values.at(i - 1) + t * (m_values.at(i) - m_values.at(i - 1));
}

double SpectralCurve::peak() const
{
    if (m_wavelengths.isEmpty()) {
        return 0.0;
    }
    const auto top = std::max_element(m_values.begin(), m_values.end());
    return m_wavelengths.at(static_cast<int>(top - m_values.begin()));
}
