// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

// The largest angle between a true spectrum and the found one of the same row, in degrees.
double worstAngle(const XTNT::Matrix<double>& found, const XTNT::Matrix<double>& truth);

// Whether two matrices of one size have the same elements.
bool same(const XTNT::Matrix<double>& a, const XTNT::Matrix<double>& b);
