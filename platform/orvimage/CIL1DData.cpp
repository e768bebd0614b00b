// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CIL1DData.h"

#include <algorithm>

int CIL1DData::findLevel(float level) const
{
    if (m_counts.empty()) {
        return 0;
    }
    const auto wanted = static_cast<double>(level);
    const auto found =
        std::find_if(m_counts.cbegin(), m_counts.cend(), [wanted](double value) { return value >= wanted; });
    return static_cast<int>((found == m_counts.cend() ? found - 1 : found) - m_counts.cbegin());
}
