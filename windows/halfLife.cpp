// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/halfLife.h"

#include <cmath>

namespace {

constexpr double kSecondsPerMinute = 60.0;
constexpr int kDigits = 6;

} // namespace

bool parseHalfLife(const QString& strMinutes, double& dMinutes, double& dSeconds)
{
    bool bOk = false;
    dMinutes = strMinutes.toDouble(&bOk); // 0 when it fails
    if (!bOk || !(dMinutes > 0.0) || !std::isfinite(dMinutes * kSecondsPerMinute)) {
        return false;
    }
    dSeconds = dMinutes * kSecondsPerMinute;
    return true;
}

QString halfLifeText(double dSeconds)
{
    return QString::number(dSeconds / kSecondsPerMinute, 'g', kDigits);
}

QString invalidHalfLifeText(const QString& strIsotope, double dMinutes, const QString& strSequenceID)
{
    return QStringLiteral("Invalid half life time of Isotope %1 Half Life (m) %2 SequenceID %3.")
        .arg(strIsotope, QString::number(dMinutes, 'g', kDigits), strSequenceID);
}
