// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/ProbeChoice.h"

#include "host/CORVDatabase.h"
#include "services/basis/ProbeNames.h"
#include "services/basis/similarNames.h"
#include "workbench/simulator/SimulationKind.h"

#include <cmath>

namespace {

constexpr double kStokesShiftNm = 23.0;

using ReadSource = bool (*)(const QString& strName, sSourceSpecFileParameters* pSource);

bool readCurve(const QString& strSource, SpectralCurve* pCurve, ReadSource pRead = &CORVDatabase::readLIBSource)
{
    sSourceSpecFileParameters source;
    if (!pRead(strSource, &source) || source.n < 1) {
        return false;
    }
    *pCurve = SpectralCurve(source.wavelength, source.intensity, SpectralCurve::Beyond::Zero);
    return true;
}

QString lightName(ProbeLight eLight)
{
    return eLight == ProbeLight::Luciferase ? QStringLiteral("luciferase") : QStringLiteral("fluorophore");
}

QString unknownProbe(const QString& strName, ProbeLight eLight)
{
    QStringList known;
    for (const sProbeParameters& probe : CORVDatabase::probeList()) {
        known.append(probe.kind == lightName(eLight) ? QStringList(probe.name) : QStringList());
    }
    if (known.isEmpty()) {
        return QStringLiteral("There is no probe \"%1\", and the reference data hold none at all.").arg(strName);
    }
    return QStringLiteral("There is no probe \"%1\"%2").arg(strName, nearestProbesText(strName, known));
}

bool resolveProbe(const QString& strName, ProbeLight eLight, Probe* pProbe, QString* pError)
{
    sProbeParameters parameters;
    if (!CORVDatabase::findProbe(strName.trimmed(), &parameters)) {
        *pError = unknownProbe(strName.trimmed(), eLight);
        return false;
    }
    if (parameters.kind != lightName(eLight)) {
        const QString process =
            eLight == ProbeLight::Luciferase ? QStringLiteral("bioluminescence") : QStringLiteral("fluorescence");
        *pError = QStringLiteral("\"%1\" is no %3 but a %2; %4 needs a %3.")
                      .arg(parameters.name, parameters.kind, lightName(eLight), process);
        return false;
    }
    pProbe->name = parameters.name;
    const ReadSource read = eLight == ProbeLight::Luciferase ? &CORVDatabase::readSource : &CORVDatabase::readLIBSource;
    if (!readCurve(parameters.name + QStringLiteral("Em"), &pProbe->emission, read)) {
        *pError = QStringLiteral("The reference data hold no emission of \"%1\".").arg(parameters.name);
        return false;
    }
    if (eLight == ProbeLight::Luciferase) {
        return true;
    }
    if (!readCurve(parameters.name + QStringLiteral("Ex"), &pProbe->excitation)) {
        pProbe->excitation = estimateExcitation(parameters.name, pProbe->emission);
        pProbe->excitationIsEstimate = true;
    }
    return true;
}

} // namespace

SpectralCurve estimateExcitation(const QString& strName, const SpectralCurve& emission)
{
    const bool nanocrystal = strName.startsWith(QLatin1String("QDot"));
    const double peak = emission.peak();
    const double mirror = 2.0 * peak - kStokesShiftNm;
    QVector<double> wavelengths;
    QVector<double> values;
    for (int nm = 350; nm <= 1000; ++nm) {
        wavelengths.append(nm);
        const double edge = 1.0 / (1.0 + std::exp((nm - peak + 15.0) / 8.0));
        values.append(nanocrystal ? edge * std::exp(-(nm - 350.0) / 130.0) : emission.at(mirror - nm));
    }
    return SpectralCurve(wavelengths, values, SpectralCurve::Beyond::Zero);
}

bool resolveProbes(const QStringList& names, ProbeLight eLight, QList<Probe>* pProbes, QString* pError)
{
    if (names.isEmpty() || names.size() > kMostProbes) {
        *pError = QStringLiteral("A simulation takes 1 to %1 probes, not %2.").arg(kMostProbes).arg(names.size());
        return false;
    }
    QList<Probe> probes;
    for (const QString& name : names) {
        Probe probe;
        if (!resolveProbe(name, eLight, &probe, pError)) {
            return false;
        }
        for (const Probe& other : probes) {
            if (other.name == probe.name) {
                *pError = QStringLiteral("The probe \"%1\" is given twice.").arg(probe.name);
                return false;
            }
        }
        probes.append(probe);
    }
    *pProbes = probes;
    return true;
}

ProbeLight lightOf(SimulationKind eKind)
{
    return eKind == SimulationKind::Luminescent ? ProbeLight::Luciferase : ProbeLight::Fluorophore;
}

bool readIsotope(const QString& strIsotope, Probe* pProbe)
{
    return CORVDatabase::isCherenkovIsotope(strIsotope, &pProbe->name) &&
           readCurve(pProbe->name, &pProbe->emission, &CORVDatabase::readRADSource);
}

bool readAutofluorescence(const QString& strName, Probe* pProbe)
{
    pProbe->name = strName;
    return readCurve(strName + QStringLiteral("Em"), &pProbe->emission) &&
           readCurve(strName + QStringLiteral("Ex"), &pProbe->excitation);
}

QString probeText(const QString& strName)
{
    QString text = strName;
    if (text.startsWith(QLatin1String("AlexaFluor "))) {
        return text.replace(QLatin1String("AlexaFluor "), QLatin1String("AF"));
    }
    if (text.startsWith(QLatin1String("QDot "))) {
        return text.replace(QLatin1String("QDot "), QLatin1String("QD"));
    }
    return text;
}
