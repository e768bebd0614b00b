// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectra/SpectrumPlotParams.h"

// A copy of the spectrum at these pairs alone, in their order, along nAxis and without a row. One that has no value for
// a pair is copied with the points that it has.
SpectrumPlotParams spectrumOnPairs(const SpectrumPlotParams& spectrum, const QList<KeyPair>& pairs, int nAxis);
