// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

// Largest over smallest singular value of a matrix with no more rows than columns; infinite when rows depend on each
// other. One-sided Jacobi rotations of the rows, which find small singular values to full relative accuracy
// (J. Demmel, K. Veselic, Jacobi's method is more accurate than QR, 1992).
double conditionNumber(const XTNT::Matrix<double>& matrix);
