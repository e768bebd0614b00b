// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_vector.h"

namespace XTNT {

// Sorts v ascending in place (all its shares see it) and makes `index` a new vector of the same length: index[i] is the
// position that the element now at i had before. Equal keys keep no order; where a NaN goes is undefined. Partition
// exchange with the median of the first, middle and last element as pivot (C. A. R. Hoare, Quicksort, 1962; R.
// Sedgewick, Implementing quicksort programs, 1978), a stack of 50 entries, straight insertion below 8 elements. A full
// stack is told on standard output as "NSTACK too small in sort."; the result is sorted all the same.
void sortWithIndex(Vector<double>& v, Vector<long long>& index);

namespace detail {

constexpr int sortStackEntries = 50;

// The above with a smaller stack (at least two entries, at most sortStackEntries).
void sortWithIndex(Vector<double>& v, Vector<long long>& index, int stackEntries);

} // namespace detail

} // namespace XTNT
