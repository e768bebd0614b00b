// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/plotCurve.h"

#include "spectra/spectrumScale.h"

QVector<double> plotCurve(const XTNT::Vector<double>& values, bool bNormalized)
{
    QVector<double> curve = curveValues(values);
    double dLargest = 0.0;
    for (const double value : qAsConst(curve)) {
        dLargest = value > dLargest ? value : dLargest; // NaNs are not
    }
    if (bNormalized && dLargest > 0.0) {
        for (double& value : curve) {
            value /= dLargest;
        }
    }
    return curve;
}
