// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CIL1DData.h"

// Counts of an image's values in bins of equal width.
class CILHistogram : public CIL1DData
{
public:
    void setMaxBins(unsigned long long bins) { m_nBins = bins < 1 ? 1 : bins; }
    void setImageMin(double minimum) { m_dMin = minimum; }
    void setImageMax(double maximum) { m_dMax = maximum; }
    unsigned long long maxBins() const { return m_nBins; }
    double imageMin() const { return m_dMin; }
    double imageMax() const { return m_dMax; }

    // Makes maxBins() empty bins.
    void reset();
    // Adds a value; below the minimum it falls into the first bin, above the maximum into the last. NaNs do not count.
    // The first call makes the bins when reset() has not.
    void add(double value);

    // Running sums of the bins, into `out` or, with null, in place.
    void integrate(CILHistogram* out);

private:
    unsigned long long m_nBins = 256;
    double m_dMin = 0.0;
    double m_dMax = 0.0;
};
