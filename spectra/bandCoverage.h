// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectra/SpectrumPlotParams.h"

#include <QList>
#include <QVector>

// Which spectra have a value for every pair (SpectrumPlotParams::coversPairs). Spectra over the same bands, as those of
// one library are, are looked at once.
QVector<bool> bandCoverage(const QList<SpectrumPlotParams*>& spectra, const QList<KeyPair>& pairs);

// The first pair that a spectrum has no value for; empty texts when it has all.
KeyPair firstMissingPair(const SpectrumPlotParams& spectrum, const QList<KeyPair>& pairs);
