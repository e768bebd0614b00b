// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/noise_model.h"
#include "XTNT/xtnt_matrix.h"

// Of the spectra whose mixtures hold the rows of D (pixels x bands) those near to S (components x bands). Spectra of
// the purest pixels are mixtures themselves where no pixel is pure, and rows beyond them have an amount clearly below
// 0. The spectra belong to the smallest set of mixtures that holds all rows (M. D. Craig, Minimum-volume transforms for
// remotely sensed data, IEEE Trans. Geosci. Remote Sens. 32 (1994) 542), but for noise (as with the soft bounds of
// J. M. Bioucas-Dias, A variable splitting augmented Lagrangian approach to linear spectral unmixing, WHISPERS (2009)
// 1). Here each face moves outwards from S, by what the others tell of the rows beyond it, until hardly one is left.
//
// False, and S is as it was, where no face has more rows clearly beyond it than noise explains, as with pure pixels,
// and where S leaves more of the rows than noise, as with spectra that vary from pixel to pixel; for one component, as
// many as there are bands, spectra that depend on each other, and fewer than 1000 pixels. No spectrum comes below 0 or
// to 0. D holds finite elements, C (pixels x components) is a fit by S; `noise` has one group of rows and its size in
// the data's own unit. Passes cancellation points.
bool encloseMixtures(const XTNT::Matrix<double>& D, const XTNT::Matrix<double>& C, const XTNT::NoiseModel& noise,
                     XTNT::Matrix<double>& S);
