// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectra/KeyPair.h"

#include <QList>

class SpectrumPlotParams;

// Copies of spectra brought to the images of an analysis: one point a pair, in that order, along that axis. One that
// lacks an image keeps its own points, so that the run refuses it. The caller owns the copies.
QList<SpectrumPlotParams*> spectraForPairs(const QList<SpectrumPlotParams*>& spectra, const QList<KeyPair>& pairs,
                                           int eAxis);
