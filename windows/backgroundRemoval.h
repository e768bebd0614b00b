// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_vector.h"
#include "spectra/SpectrumPlotParams.h"

#include <QList>

// The background of a drawing step: the one spectrum that is taken off the others before they are shown or unmixed.

// The first spectrum that is selected and has data, or -1.
int backgroundRow(const QList<SpectrumPlotParams*>& spectra);

// Takes off as much of the background as leaves no band below 0 (XTNT::simplexFit without tolerance). False, with the
// spectrum unchanged, when the fit fails; that is told in the log.
bool removeBackground(XTNT::Vector<double>& spectrum, const XTNT::Vector<double>& background);

// Copies of the spectra that have data, in their order, as an unmixing takes them: without the background (if there is
// one, and but for the background itself), selected, numbered from 0, and without a row. The caller owns them.
QList<SpectrumPlotParams*> spectraToUnmix(const QList<SpectrumPlotParams*>& spectra, bool bBackgroundMode);
