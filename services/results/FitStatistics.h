// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

#include <limits>
#include <vector>

// Numbers that tell how well a result explains its data. `data` is P x N (rows of the cube by images), `concentrations`
// K x P, `spectra` K x N.
class FitStatistics
{
public:
    // Per component: sum of its map times sum of its spectrum over the sum of the data. They add up to about 1 where
    // the fit is good; NaN for data that sum to 0.
    static std::vector<double> signalShares(const XTNT::Matrix<double>& data,
                                            const XTNT::Matrix<double>& concentrations,
                                            const XTNT::Matrix<double>& spectra);

    // Frobenius norm of data - concentrations' x spectra over that of the data; NaN for data that are all 0. Streams
    // over the rows, in an order that does not depend on the number of threads.
    static double relativeResidual(const XTNT::Matrix<double>& data, const XTNT::Matrix<double>& concentrations,
                                   const XTNT::Matrix<double>& spectra);

    // Pearson's correlation of two maps; NaN when one of them is constant or the lengths differ.
    static double correlation(const std::vector<double>& a, const std::vector<double>& b);
    // Cosine of the angle between two spectra; NaN when one of them is 0 throughout or the lengths differ.
    static double cosine(const std::vector<double>& a, const std::vector<double>& b);
    // Percent of the data's sum of squares that a fit of that relative residual explains.
    static double explainedVariance(double dRelativeResidual)
    {
        return 100.0 * (1.0 - dRelativeResidual * dRelativeResidual);
    }
    // Euclidean norm of map - truth over that of the truth; NaN when the truth is all 0 or the lengths differ.
    static double relativeError(const std::vector<double>& map, const std::vector<double>& truth);
};
