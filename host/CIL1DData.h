// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

// A row of values, one a bin.
class CIL1DData
{
public:
    const std::vector<double>& bins() const { return m_counts; }
    std::vector<double>& bins() { return m_counts; }

    // Of values that do not fall, such as running sums: the first bin whose value reaches `level`; the last bin when
    // none does, 0 without bins.
    int findLevel(float level) const;

protected:
    std::vector<double> m_counts;
};
