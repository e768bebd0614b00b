// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/simulator/SpectralCurve.h"

#include <QList>
#include <QString>
#include <QStringList>

// A light source with its spectra.
struct Probe
{
    QString name; // as the reference data have it
    SpectralCurve emission;
    SpectralCurve excitation;
    bool excitationIsEstimate = false; // no measured curve, see estimateExcitation()
};

enum class SimulationKind;

// What sends out the light of a probe.
enum class ProbeLight
{
    Fluorophore,
    Luciferase // has no excitation
};
ProbeLight lightOf(SimulationKind eKind);

// The fluorophores, or luciferases, of that name, or of another name in use. False with one sentence in *pError, which
// names the likeliest candidates for a name that is unknown, and *pProbes as it was: no name, more than kMostProbes,
// the same probe twice, one of another light.
constexpr int kMostProbes = 8;
bool resolveProbes(const QStringList& names, ProbeLight eLight, QList<Probe>* pProbes, QString* pError);
inline bool resolveProbes(const QStringList& names, QList<Probe>* pProbes, QString* pError)
{
    return resolveProbes(names, ProbeLight::Fluorophore, pProbes, pError);
}

// An isotope's Cherenkov light; false when it has none.
bool readIsotope(const QString& strIsotope, Probe* pProbe);

// A source of the reference data with an emission and an excitation curve ("ALFree", "ALFood"); false when it is not
// there.
bool readAutofluorescence(const QString& strName, Probe* pProbe);

// Excitation where none was measured. A dye's is its emission mirrored (the mirror-image rule, see J. R. Lakowicz,
// Principles of Fluorescence Spectroscopy, section 1.3.2) with its peak 23 nm before the emission's, as with the
// far-red cyanine dyes; a nanocrystal ("QDot") absorbs the more the bluer the light, falling to nothing at its
// emission.
SpectralCurve estimateExcitation(const QString& strName, const SpectralCurve& emission);

// The text that a sequence holds for a probe, from which its name is made again: "AF680" for "AlexaFluor 680", "QD800"
// for "QDot 800", else the name.
QString probeText(const QString& strName);
