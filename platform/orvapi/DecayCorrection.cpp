// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/DecayCorrection.h"

#include <algorithm>
#include <cmath>

bool decayCorrectionFactors(const QVector<Exposure>& exposures, double dHalfLifeSec, QVector<double>& factors)
{
    factors.clear();
    if (!(dHalfLifeSec > 0.0)) {
        return false;
    }
    double earliest = 0.0;
    for (int i = 0; i < exposures.size(); ++i) {
        const Exposure& exposure = exposures.at(i);
        if (!std::isfinite(exposure.start) || !std::isfinite(exposure.length) || !(exposure.length > 0.0)) {
            return false;
        }
        earliest = i == 0 ? exposure.start : std::min(earliest, exposure.start);
    }
    const double rate = std::log(2.0) / dHalfLifeSec;
    QVector<double> result;
    result.reserve(exposures.size());
    for (const Exposure& exposure : exposures) {
        const double x = rate * exposure.length;
        // x / (1 - exp(-x)), without loss of digits for a small x; 1 at 0.
        const double duringExposure = x > 0.0 ? x / -std::expm1(-x) : 1.0;
        const double factor = std::exp(rate * (exposure.start - earliest)) * duringExposure;
        if (!std::isfinite(factor)) {
            return false;
        }
        result.append(factor);
    }
    factors = result;
    return true;
}
