// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

namespace XTNT {

// What is known of the noise in data of `bands` columns: its variance in band b of a row is
//
//   slopes[g][b] * max(0, e) + floors[g][b]
//
// where e is what the row is expected to have there and g the row's group: the rows come in slopes.num_rows() groups of
// one size, one after the other. Slopes are not below 0, floors above 0, all of them finite. In any unit: a common
// factor changes no fit.
struct NoiseModel
{
    Matrix<double> slopes; // groups x bands
    Matrix<double> floors; // the same
};

} // namespace XTNT
