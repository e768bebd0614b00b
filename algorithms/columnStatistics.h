// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"
#include "XTNT/xtnt_vector.h"

// Means of the columns of x, at least one row. Summed relative to the first row, so that the mean of a constant column
// is that constant. The same bits on any number of threads; passes cancellation points, as the other does.
XTNT::Vector<double> columnMeans(const XTNT::Matrix<double>& x);

// Standard deviations of the columns about `means`, with the denominator m - 1, or 1 when there is one row.
XTNT::Vector<double> columnDeviations(const XTNT::Matrix<double>& x, const XTNT::Vector<double>& means);
