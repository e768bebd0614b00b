// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"
#include "XTNT/xtnt_vector.h"

// The x >= 0 that minimises |design x - rightHandSide|, by XTNT::NNLS on copies; what it has where it gives up.
XTNT::Vector<double> nonNegativeFit(const XTNT::Matrix<double>& design, const XTNT::Vector<double>& rightHandSide);
