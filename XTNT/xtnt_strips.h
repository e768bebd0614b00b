// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_lanes.h"

namespace XTNT {

// Columns of a full strip: two vectors a row and four rows leave registers for the other factor.
constexpr long long stripColumns = 2 * lanes;

// Rows that sumStrips works on together.
constexpr int stripRows = 4;

// Columns of the strip that begins at `first` of `paddedColumns`, a multiple of the lanes: a full strip, or one vector.
inline long long stripWidth(long long first, long long paddedColumns)
{
    const long long rest = paddedColumns - first;
    return rest < stripColumns ? rest : stripColumns;
}

namespace detail {

// The sums are variables of their own, not an array: they must live in registers across the loop.
template <class Add>
inline void sumWideStrip(const double* const* rows, long long n, const double* __restrict packed,
                         double* __restrict results, long long stride, Add add)
{
    const double* __restrict r0 = rows[0];
    const double* __restrict r1 = rows[1];
    const double* __restrict r2 = rows[2];
    const double* __restrict r3 = rows[3];
    Lanes a0{}, a1{}, b0{}, b1{}, c0{}, c1{}, d0{}, d1{};
    for (long long i = 0; i < n; ++i) {
        const Lanes p0 = lanesAt(packed + i * stripColumns);
        const Lanes p1 = lanesAt(packed + i * stripColumns + lanes);
        add(a0, r0[i], p0);
        add(a1, r0[i], p1);
        add(b0, r1[i], p0);
        add(b1, r1[i], p1);
        add(c0, r2[i], p0);
        add(c1, r2[i], p1);
        add(d0, r3[i], p0);
        add(d1, r3[i], p1);
    }
    putLanes(results, a0);
    putLanes(results + lanes, a1);
    putLanes(results + stride, b0);
    putLanes(results + stride + lanes, b1);
    putLanes(results + 2 * stride, c0);
    putLanes(results + 2 * stride + lanes, c1);
    putLanes(results + 3 * stride, d0);
    putLanes(results + 3 * stride + lanes, d1);
}

template <class Add>
inline void sumNarrowStrip(const double* const* rows, long long n, const double* __restrict packed,
                           double* __restrict results, long long stride, Add add)
{
    const double* __restrict r0 = rows[0];
    const double* __restrict r1 = rows[1];
    const double* __restrict r2 = rows[2];
    const double* __restrict r3 = rows[3];
    Lanes a{}, b{}, c{}, d{};
    for (long long i = 0; i < n; ++i) {
        const Lanes p = lanesAt(packed + i * lanes);
        add(a, r0[i], p);
        add(b, r1[i], p);
        add(c, r2[i], p);
        add(d, r3[i], p);
    }
    putLanes(results, a);
    putLanes(results + stride, b);
    putLanes(results + 2 * stride, c);
    putLanes(results + 3 * stride, d);
}

} // namespace detail

// Four rows of n elements against the columns of an n by `paddedColumns` matrix: results[r * paddedColumns + j] is the
// sum over i, in order, of what add(sum, rows[r][i], matrix[i][j]) adds for four j at once. `packed` holds the matrix
// strip after strip (stripWidth), each row by row.
template <class Add>
inline void sumStrips(const double* const* rows, long long n, const double* packed, long long paddedColumns,
                      double* __restrict results, Add add)
{
    for (long long first = 0; first < paddedColumns; first += stripColumns) {
        const long long width = stripWidth(first, paddedColumns);
        if (width == stripColumns) {
            detail::sumWideStrip(rows, n, packed, results + first, paddedColumns, add);
        } else {
            detail::sumNarrowStrip(rows, n, packed, results + first, paddedColumns, add);
        }
        packed += n * width;
    }
}

} // namespace XTNT
