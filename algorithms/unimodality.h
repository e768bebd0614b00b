// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"
#include "XTNT/xtnt_vector.h"

// Makes columns of `a` fall on both sides of their largest element (R. Bro, N. Sidiropoulos, Least squares algorithms
// under unimodality and non-negativity constraints, 1998, name the problem; the walks here are this system's own).
// `modes` has a mode a column, missing ones count as 0:
//   0  the column stays
//   1  an element that rises away from the peak becomes 0
//   2  it takes its inner neighbour's value
//   3  it and its inner neighbour take the mean of the two, and the walk goes over the pair again
//   4  as 3 with the mean of the element and the second inner neighbour
// A rise up to the factor `tolerance` is none. An element below 0 is never averaged with: what rises above it becomes
// 0.
void makeUnimodal(XTNT::Matrix<double>& a, const XTNT::Vector<int>& modes, double tolerance);
