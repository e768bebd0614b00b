// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/plotCurve.h"

#include <algorithm>

QVector<double> plotValues(const XTNT::Vector<double>& values)
{
    QVector<double> list(static_cast<int>(values.n_));
    std::copy(values.data, values.data + values.n_, list.begin());
    return list;
}

QVector<double> plotCurve(const XTNT::Vector<double>& values, bool bNormalized)
{
    QVector<double> curve = plotValues(values);
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
