// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

// What an element of a bound matrix asks of the element in its place. Any other value asks nothing.
enum class BoundMode
{
    Free = 0,
    Equal = 1,
    Upper = 2,
    Lower = 3
};

// Brings every element within its bound. All three have one shape; with other shapes nothing happens. In place; passes
// cancellation points.
void applyBounds(XTNT::Matrix<double>& values, const XTNT::Matrix<int>& modes, const XTNT::Matrix<double>& bounds);

// Makes a pair of bound matrices m x n, free and zero, unless both have that size already.
void ensureBounds(XTNT::Matrix<int>& modes, XTNT::Matrix<double>& bounds, long long m, long long n);
