// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/noise_model.h"
#include "XTNT/xtnt_matrix.h"

// Of all spectra that explain D (pixels x bands) as well as S (components x bands) does, those whose amounts depend on
// each other least: independent component analysis by the entropies of spacings (E. G. Learned-Miller, J. W. Fisher
// III, ICA using spacings estimates of entropy, J. Mach. Learn. Res. 4 (2003) 1271; O. Vasicek, J. R. Statist. Soc. B
// 38 (1976) 54). What one spectrum has of another is moved pair by pair to where the entropy of the other's amounts is
// least. Moves keep the volume of the spectra, so that the sum of the entropies is the mutual information but for a
// constant; none takes spectra, or the amounts of many pixels, below 0 by more than their errors.
//
// Purest pixels alone leave two questions open that this answers: how much of a source that lies beneath all others
// belongs to these, and how far out a pure pixel's noise has carried it. The amounts are therefore those of the
// unconstrained fit, whose noise is known, and noise is added to where each choice has the same, so that none is better
// for its noise.
//
// False, and S is as it was, where sources are not independent: parts of a whole, which add up to the same in all
// pixels, depend on each other whatever their spectra are, and so do stains of the same cells. Also for one component,
// as many as there are bands (whose fit tells nothing of the noise), spectra that depend on each other, and fewer than
// 200 pixels. D holds finite elements, C (pixels x components) is a fit by S; `noise` has one group of rows and its
// size in the data's own unit. Passes cancellation points; the same bits on any number of threads.
bool makeIndependent(const XTNT::Matrix<double>& D, const XTNT::Matrix<double>& C, const XTNT::NoiseModel& noise,
                     XTNT::Matrix<double>& S);
