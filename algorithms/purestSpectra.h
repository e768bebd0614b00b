// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

// Spectra of the rows of D (pixels x bands) that are likely to hold one source alone. The rows are brought to as many
// principal components as there are sources and to a sum of 1, which makes them weighted means of the spectra; those
// farthest out are taken in turn, each in the directions that the ones before leave (successive projections: M. C. U.
// Araujo et al., The successive projections algorithm for variable selection, Chemom. Intell. Lab. Syst. 57 (2001) 65).
// A spectrum is the mean of such a row and a few hundredths of those nearest to it, so that the noise of a pixel is not
// taken for a source. Rows below a tenth of the bright ones do not count.
//
// components x bands, none below 0 and none zero; empty where that cannot be had: fewer rows, bands or principal
// components than sources, a source without a row of its own, elements that are not finite. Passes cancellation points;
// the same bits on any number of threads.
XTNT::Matrix<double> purestSpectra(const XTNT::Matrix<double>& D, int components);
