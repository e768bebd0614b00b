// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

#include <vector>

// What a fit leaves of its data: where, in which images, and what it looks like.
struct FitRest
{
    std::vector<double> ofRows;   // root mean square over the images, a row each
    std::vector<double> ofImages; // root mean square over the rows, an image each
    // Sum over the rows that have more light than the fit explains, each by as much: what is missing there. It may have
    // values below 0.
    std::vector<double> spectrum;

    // `data` is P x N, maps are K x P, spectra K x N.
    static FitRest of(const XTNT::Matrix<double>& data, const XTNT::Matrix<double>& maps,
                      const XTNT::Matrix<double>& spectra);
};
