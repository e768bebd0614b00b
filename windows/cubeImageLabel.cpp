// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/cubeImageLabel.h"

#include "spectra/SpectrumAxis.h"

namespace {

constexpr long long kSecondsPerMinute = 60;
constexpr long long kSecondsPerHour = 3600;
constexpr double kLatest = 1e15; // seconds; beyond it a double has no whole ones

QString twoDigits(long long nNumber)
{
    return QStringLiteral("%1").arg(nNumber, 2, 10, QLatin1Char('0'));
}

} // namespace

QString clockTime(const QString& strSeconds)
{
    const double dSeconds = strSeconds.trimmed().toDouble(); // 0 for what is none
    const long long nSeconds = dSeconds > 0.0 && dSeconds < kLatest ? static_cast<long long>(dSeconds) : 0;
    return twoDigits(nSeconds / kSecondsPerHour) + QLatin1Char(':') +
           twoDigits(nSeconds % kSecondsPerHour / kSecondsPerMinute) + QLatin1Char(':') +
           twoDigits(nSeconds % kSecondsPerMinute);
}

QString cubeImageLabel(const KeyPair& key, int nSpectrumType)
{
    if (nSpectrumType == SPECTRUMAXIS_TIME) {
        return QStringLiteral("Time(hh:mm:ss):%1, Interval: %2").arg(clockTime(key.second), key.first);
    }
    return QStringLiteral("Emission:%1, Excitation: %2").arg(key.second, key.first);
}

double cubeMaxScale(int nSliderValue)
{
    return (11.0 - nSliderValue) / 10.0;
}
