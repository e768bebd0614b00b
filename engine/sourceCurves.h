// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_vector.h"
#include "host/CORVDatabase.h"
#include "spectra/KeyPair.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

// Spectra of sources and tissues over the wavelengths of a selection.

// "Ex" along the excitation axis, else "Em": what a source's name ends in, in the host's database.
QString sourceSuffix(int eAxis);

// Reads a source from the table that belongs to the kind of sequence: luminescent sources, radioactive ones for
// Cherenkov light (whose names carry no suffix: every "Em" and "Ex" is cut), else the fluorescent library. False, and
// an empty record, when it is not there.
bool readSourceCurve(const QString& strName, int eSeqKind, bool bCherenkov, sSourceSpecFileParameters& curve);

// The curve at a wavelength; 1 outside its range and for an empty curve. Between two points each of them is weighted by
// its own distance from the wavelength, so that the farther one counts more: not linear, as users know their bounds.
double curveValue(const sSourceSpecFileParameters& curve, double dWavelength);

// The spectrum of the source `strName` (with or without a suffix when `bFluorescent`) over the selected images, by the
// suffix of the axis: at each image the value at its wavelength along the axis, times that at its other wavelength
// where it has one. `lookup` gives the value of a named curve at a wavelength text.
XTNT::Vector<double> spectrumOfSelection(const QList<KeyPair>& selection, int eAxis, QString strName, bool bFluorescent,
                                         const std::function<double(const QString&, const QString&)>& lookup);

// The intensities at the keys (wavelengths as texts), divided by the largest of the whole curve. A key that is not
// exactly a wavelength of the curve gives 0. A curve without an intensity above 0 divides by 0.
XTNT::Vector<double> sampledSource(const sSourceSpecFileParameters& curve, const QStringList& bandKeys);

// The tissue that stands for a subject: "RMP-7" for a "Phantom", "Muscle" for a "Mouse", else none.
QString tissueOfSubject(const QString& strSubjectType);

// What crosses the tissue at the keys, in the diffusion approximation: exp(-5 mu) / D with mu = sqrt(3 a (a + s)), D =
// 1 / (3 (a + s)), absorption a and reduced scattering s in 1/mm, and a path of 5 mm. Properties are interpolated
// linearly and held beyond the ends of the table. An empty table gives ones. (R. C. Haskell et al., Boundary conditions
// for the diffusion equation in radiative transfer, 1994.)
XTNT::Vector<double> attenuationFactors(const sTissuePropFileParameters& tissue, const QStringList& bandKeys);
