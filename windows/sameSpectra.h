// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectra/SpectrumPlotParams.h"

#include <QList>

// Whether two spectra are the same to an unmixing and to a saved result: axis, selection, name, colour, origin, points.
// Their place, their drawing tool and what else a row carries do not count; a NaN equals a NaN.
bool sameSpectrum(const SpectrumPlotParams& a, const SpectrumPlotParams& b);

// Of as many spectra, each as its counterpart.
bool sameSpectra(const QList<SpectrumPlotParams*>& a, const QList<SpectrumPlotParams*>& b);
