// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

#include <QList>

class SpectrumPlotParams;

// The values of the spectra as rows of a K x nImages matrix, each divided by its largest value. There is no guard
// against a largest value of 0: the infinities and NaNs go on to the solver. False when a spectrum does not have
// nImages values; the rows before it are then filled.
bool scaledSpectra(const QList<SpectrumPlotParams*>& plots, int nImages, XTNT::Matrix<double>& spectra);

// The non-negative amounts of the spectra (K x images) in every row of the data (pixels x images), as a K x pixels
// matrix. False, and `concentrations` as it was, when there is no solution; exhausted memory counts as that too. Passes
// cancellation points.
bool fitConcentrations(const XTNT::Matrix<double>& data, const XTNT::Matrix<double>& spectra,
                       XTNT::Matrix<double>& concentrations);
