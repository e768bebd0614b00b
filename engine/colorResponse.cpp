// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/colorResponse.h"

#include "engine/EngineEnums.h"
#include "engine/keySelection.h"

#include <algorithm>

KeyLimits keyLimits(const QStringList& keys, int eAxis)
{
    KeyLimits limits;
    for (QString strKey : keys) {
        const bool bWavelength = eAxis != SPECTRUMAXIS_TIME && wavelengthDigits(strKey);
        if (eAxis == SPECTRUMAXIS_EXCITATION && !bWavelength) {
            continue;
        }
        const double dValue = strKey.toDouble();
        limits.lowest = std::min(limits.lowest, dValue);
        limits.highest = std::max(limits.highest, dValue);
    }
    return limits;
}

int curveIndex(const sColorSensorRGBspecFileParameters& curve, double dValue, const KeyLimits& limits)
{
    const double dFirst = curve.wavelength.first();
    const double dLast = curve.wavelength.at(curve.n - 1);
    const double dSpan = dLast - dFirst;
    if (!(dSpan > 0.0)) {
        return -1;
    }
    double t = (dValue - limits.lowest) * dSpan / (limits.highest - limits.lowest) + dFirst;
    // Limits that coincide divide by zero: the place is then an end, or, for 0 / 0, the first one.
    t = t > dFirst ? std::min(t, dLast) : dFirst;
    return static_cast<int>((t - dFirst) / dSpan * (curve.n - 1));
}

XTNT::Matrix<double> responseWeights(const sColorSensorRGBspecFileParameters& curve, const QList<KeyPair>& selection,
                                     int eAxis, const KeyLimits& limits)
{
    constexpr int channels = 3;
    XTNT::Matrix<double> weights(selection.size(), channels);
    for (int i = 0; i < selection.size(); ++i) {
        const QString& strValue = eAxis == SPECTRUMAXIS_EXCITATION ? selection.at(i).first : selection.at(i).second;
        const int n = curveIndex(curve, strValue.toDouble(), limits);
        if (n < 0) {
            continue;
        }
        double* const row = weights[i];
        row[0] = curve.red.at(n);
        row[1] = curve.green.at(n);
        row[2] = curve.blue.at(n);
    }
    return weights;
}
