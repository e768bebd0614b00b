// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/halfLife.h"

#include <QDoubleValidator>
#include <QLocale>

#include <cmath>

namespace {

constexpr double kSecondsPerMinute = 60.0;
constexpr int kDigits = 6;
constexpr double kLeastHalfLife = 0.01; // minutes
constexpr double kLargestHalfLife = 999999999.0;
constexpr int kHalfLifeDecimals = 2;

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

QString noDecayFactorsText(const QString& strIsotope, const QString& strMinutes, const QString& strSequenceID,
                           int nImages)
{
    return QStringLiteral("Fail to obtain Decay Factor of Isotope %1 : Half Life (m) %2 SequenceID %3 Image Count %4.")
        .arg(strIsotope, strMinutes, strSequenceID, QString::number(nImages));
}

QValidator* halfLifeValidator(QObject* pParent)
{
    auto* pValidator = new QDoubleValidator(kLeastHalfLife, kLargestHalfLife, kHalfLifeDecimals, pParent);
    QLocale plain = QLocale::c();
    plain.setNumberOptions(plain.numberOptions() | QLocale::RejectGroupSeparator);
    pValidator->setLocale(plain);
    return pValidator;
}
