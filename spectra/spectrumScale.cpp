// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/spectrumScale.h"

#include <algorithm>
#include <cmath>

XTNT::Vector<double> dividedByLargest(const XTNT::Vector<double>& values)
{
    const double dLargest = values.Max();
    XTNT::Vector<double> scaled = values.deepCopy();
    for (long long i = 0; i < scaled.n_; ++i) {
        scaled[i] /= dLargest;
    }
    return scaled;
}

QVector<double> curveValues(const XTNT::Vector<double>& values)
{
    QVector<double> list(static_cast<int>(values.n_));
    std::copy(values.data, values.data + values.n_, list.begin());
    return list;
}

bool hasFiniteValue(const QVector<double>& values)
{
    return std::any_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); });
}
