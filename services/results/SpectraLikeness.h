// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

#include <limits>
#include <vector>

// How well the maps of spectra can be told apart by a linear fit, from the covariance of its result for noise of 1 in
// every image: (S S')^-1, whose diagonal follows from the singular values and vectors of the spectra.
struct SpectraLikeness
{
    // Largest over smallest singular value of the spectra, each scaled to length 1; infinite for dependent ones.
    double condition = std::numeric_limits<double>::quiet_NaN();
    // Per component: standard deviation of its map for noise of 1 in every image; infinite where it depends on others.
    std::vector<double> deviations;
    // The same over that of a fit of its spectrum alone: 1 for spectra that share no image.
    std::vector<double> amplifications;
    // The two that are most alike, and the cosine of their angle; -1 with fewer than two.
    int first = -1;
    int second = -1;
    double cosine = std::numeric_limits<double>::quiet_NaN();

    // Of K spectra of N values, K x N; a spectrum of zeros counts as dependent.
    static SpectraLikeness of(const XTNT::Matrix<double>& spectra);
};
