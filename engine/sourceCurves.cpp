// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/sourceCurves.h"

#include "engine/EngineEnums.h"
#include "engine/keySelection.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double millimetresPerCentimetre = 10.0;
constexpr double pathLength = 5.0; // mm
constexpr int suffixLength = 2;

double atOrBetween(const QVector<double>& x, const QVector<double>& y, double at)
{
    const auto next = std::upper_bound(x.begin(), x.end(), at);
    if (next == x.begin()) {
        return y.first();
    }
    if (next == x.end()) {
        return y.last();
    }
    const int i = static_cast<int>(next - x.begin());
    return y.at(i - 1) + (y.at(i) - y.at(i - 1)) * (at - x.at(i - 1)) / (x.at(i) - x.at(i - 1));
}

} // namespace

QString sourceSuffix(int eAxis)
{
    return eAxis == SPECTRUMAXIS_EXCITATION ? QStringLiteral("Ex") : QStringLiteral("Em");
}

bool readSourceCurve(const QString& strName, int eSeqKind, bool bCherenkov, sSourceSpecFileParameters& curve)
{
    curve = sSourceSpecFileParameters();
    if (eSeqKind != SEQKIND_LUMINESCENT) {
        return CORVDatabase::readLIBSource(strName, &curve);
    }
    if (!bCherenkov) {
        return CORVDatabase::readSource(strName, &curve);
    }
    QString strIsotope = strName;
    strIsotope.remove("Em");
    strIsotope.remove("Ex");
    return CORVDatabase::readRADSource(strIsotope, &curve);
}

double curveValue(const sSourceSpecFileParameters& curve, double dWavelength)
{
    const QVector<double>& x = curve.wavelength;
    const QVector<double>& y = curve.intensity;
    for (int i = 0; i < curve.n; ++i) {
        if (x.at(i) == dWavelength) {
            return y.at(i);
        }
        if (x.at(i) > dWavelength) {
            if (i == 0) {
                break;
            }
            return ((dWavelength - x.at(i - 1)) * y.at(i - 1) + (x.at(i) - dWavelength) * y.at(i)) /
                   (x.at(i) - x.at(i - 1));
        }
    }
    return 1.0;
}

XTNT::Vector<double> spectrumOfSelection(const QList<KeyPair>& selection, int eAxis, QString strName, bool bFluorescent,
                                         const std::function<double(const QString&, const QString&)>& lookup)
{
    if (bFluorescent && (strName.endsWith("ex", Qt::CaseInsensitive) || strName.endsWith("em", Qt::CaseInsensitive))) {
        strName.chop(suffixLength);
    }
    strName += sourceSuffix(eAxis);
    XTNT::Vector<double> spectrum(selection.size());
    for (int i = 0; i < selection.size(); ++i) {
        const KeyPair& pair = selection.at(i);
        QString strPrimary = eAxis == SPECTRUMAXIS_EXCITATION ? pair.first : pair.second;
        QString strSecondary = eAxis == SPECTRUMAXIS_EXCITATION ? pair.second : pair.first;
        wavelengthDigits(strPrimary);
        spectrum[i] = lookup(strName, strPrimary);
        if (wavelengthDigits(strSecondary)) {
            spectrum[i] *= lookup(strName, strSecondary);
        }
    }
    return spectrum;
}

XTNT::Vector<double> sampledSource(const sSourceSpecFileParameters& curve, const QStringList& bandKeys)
{
    double largest = 0.0;
    for (const double intensity : curve.intensity) {
        largest = std::max(largest, intensity);
    }
    XTNT::Vector<double> values(bandKeys.size());
    for (int k = 0; k < bandKeys.size(); ++k) {
        const int i = curve.wavelength.indexOf(bandKeys.at(k).toDouble());
        if (i >= 0) {
            values[k] = curve.intensity.at(i) / largest;
        }
    }
    return values;
}

QString tissueOfSubject(const QString& strSubjectType)
{
    if (strSubjectType.contains("Phantom")) {
        return QStringLiteral("RMP-7");
    }
    return strSubjectType.contains("Mouse") ? QStringLiteral("Muscle") : QString();
}

XTNT::Vector<double> attenuationFactors(const sTissuePropFileParameters& tissue, const QStringList& bandKeys)
{
    XTNT::Vector<double> factors(bandKeys.size());
    factors.fill(1.0);
    if (tissue.n < 1) {
        return factors;
    }
    for (int k = 0; k < bandKeys.size(); ++k) {
        const double wavelength = bandKeys.at(k).toDouble();
        const double a = atOrBetween(tissue.wavelength, tissue.absorption, wavelength) / millimetresPerCentimetre;
        const double s = atOrBetween(tissue.wavelength, tissue.scattering, wavelength) / millimetresPerCentimetre;
        const double t = a + s;
        const double mu = std::sqrt(3.0 * a * t);
        const double d = 1.0 / (3.0 * t);
        factors[k] = std::exp(-mu * pathLength) / d;
    }
    return factors;
}
