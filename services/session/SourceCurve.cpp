// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/SourceCurve.h"

#include <algorithm>
#include <limits>

namespace {

bool oneExcitation(const QList<KeyPair>& pairs)
{
    return std::all_of(pairs.begin(), pairs.end(),
                       [&](const KeyPair& pair) { return pair.first == pairs.first().first; });
}

} // namespace

double SourceCurve::valueAt(const sSourceSpecFileParameters& curve, double dWavelength)
{
    if (curve.n < 1 || dWavelength < curve.wavelength.first() || dWavelength > curve.wavelength.last()) {
        return 0.0;
    }
    const auto upper = std::lower_bound(curve.wavelength.begin(), curve.wavelength.end(), dWavelength);
    const auto i = static_cast<int>(upper - curve.wavelength.begin());
    if (*upper == dWavelength || i == 0) {
        return curve.intensity[i];
    }
    const double t = (dWavelength - curve.wavelength[i - 1]) / (curve.wavelength[i] - curve.wavelength[i - 1]);
    return curve.intensity[i - 1] + t * (curve.intensity[i] - curve.intensity[i - 1]);
}

bool SourceCurve::read(const QString& strName, sSourceSpecFileParameters* pCurve)
{
    return CORVDatabase::readLIBSource(strName, pCurve) || CORVDatabase::readSource(strName, pCurve);
}

QString SourceCurve::nameOf(const QString& strName)
{
    sProbeParameters probe;
    return !read(strName + QStringLiteral("Em"), nullptr) && CORVDatabase::findProbe(strName, &probe) ? probe.name
                                                                                                      : strName;
}

double SourceCurve::peakOf(const QString& strCurve)
{
    sSourceSpecFileParameters curve;
    if (!read(strCurve, &curve) || curve.n < 1) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    const auto peak = std::max_element(curve.intensity.begin(), curve.intensity.end());
    return curve.wavelength.at(static_cast<int>(peak - curve.intensity.begin()));
}

bool SourceCurve::coversExcitations(const QString& strName, const QList<KeyPair>& pairs)
{
    return oneExcitation(pairs) || read(nameOf(strName) + QStringLiteral("Ex"), nullptr);
}

XTNT::Vector<double> SourceCurve::valuesAt(const QString& strName, const QList<KeyPair>& pairs)
{
    sSourceSpecFileParameters emission;
    sSourceSpecFileParameters excitation;
    const QString name = nameOf(strName);
    if (!read(name + QStringLiteral("Em"), &emission)) {
        return XTNT::Vector<double>();
    }
    const bool weighted = !oneExcitation(pairs) && read(name + QStringLiteral("Ex"), &excitation);
    XTNT::Vector<double> values(pairs.size());
    for (int j = 0; j < pairs.size(); ++j) {
        values[j] = valueAt(emission, pairs[j].second.toDouble()) *
                    (weighted ? valueAt(excitation, pairs[j].first.toDouble()) : 1.0);
    }
    return values;
}
