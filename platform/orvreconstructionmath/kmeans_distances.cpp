// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvreconstructionmath/kmeans_distances.h"

#include "XTNT/xtnt_lanes.h"

#include <algorithm>

namespace XTNT {

namespace {

constexpr long long stripCentres = 2 * lanes;

// The sums are variables of their own, not an array: they must live in registers across the loop.
void computeWideStrip(const double* const* rows, long long columns, const double* __restrict centres,
                      double* __restrict results, long long stride)
{
    const double* __restrict r0 = rows[0];
    const double* __restrict r1 = rows[1];
    const double* __restrict r2 = rows[2];
    const double* __restrict r3 = rows[3];
    Lanes a0{}, a1{}, b0{}, b1{}, c0{}, c1{}, d0{}, d1{};
    for (long long i = 0; i < columns; ++i) {
        const Lanes p0 = lanesAt(centres + i * stripCentres);
        const Lanes p1 = lanesAt(centres + i * stripCentres + lanes);
        Lanes t = r0[i] - p0;
        a0 += t * t;
        t = r0[i] - p1;
        a1 += t * t;
        t = r1[i] - p0;
        b0 += t * t;
        t = r1[i] - p1;
        b1 += t * t;
        t = r2[i] - p0;
        c0 += t * t;
        t = r2[i] - p1;
        c1 += t * t;
        t = r3[i] - p0;
        d0 += t * t;
        t = r3[i] - p1;
        d1 += t * t;
    }
    lanesAt(results) = a0;
    lanesAt(results + lanes) = a1;
    lanesAt(results + stride) = b0;
    lanesAt(results + stride + lanes) = b1;
    lanesAt(results + 2 * stride) = c0;
    lanesAt(results + 2 * stride + lanes) = c1;
    lanesAt(results + 3 * stride) = d0;
    lanesAt(results + 3 * stride + lanes) = d1;
}

void computeNarrowStrip(const double* const* rows, long long columns, const double* __restrict centres,
                        double* __restrict results, long long stride)
{
    const double* __restrict r0 = rows[0];
    const double* __restrict r1 = rows[1];
    const double* __restrict r2 = rows[2];
    const double* __restrict r3 = rows[3];
    Lanes a{}, b{}, c{}, d{};
    for (long long i = 0; i < columns; ++i) {
        const Lanes p = lanesAt(centres + i * lanes);
        Lanes t = r0[i] - p;
        a += t * t;
        t = r1[i] - p;
        b += t * t;
        t = r2[i] - p;
        c += t * t;
        t = r3[i] - p;
        d += t * t;
    }
    lanesAt(results) = a;
    lanesAt(results + stride) = b;
    lanesAt(results + 2 * stride) = c;
    lanesAt(results + 3 * stride) = d;
}

} // namespace

CentreDistances::CentreDistances(const std::vector<double>& centres, long long clusters, long long columns)
    : m_columns(columns), m_stride((clusters + lanes - 1) / lanes * lanes),
      m_packed(static_cast<std::size_t>(columns * m_stride), 0.0)
{
    double* packed = m_packed.data();
    for (long long first = 0; first < m_stride; first += stripCentres) {
        const long long width = std::min(stripCentres, m_stride - first);
        const long long used = std::min(width, clusters - first);
        for (long long i = 0; i < columns; ++i, packed += width) {
            for (long long j = 0; j < used; ++j)
                packed[j] = centres[static_cast<std::size_t>((first + j) * columns + i)];
        }
    }
}

void CentreDistances::compute(const double* const* rows, double* __restrict results) const
{
    const double* packed = m_packed.data();
    for (long long first = 0; first < m_stride; first += stripCentres) {
        const long long width = std::min(stripCentres, m_stride - first);
        if (width == stripCentres)
            computeWideStrip(rows, m_columns, packed, results + first, m_stride);
        else
            computeNarrowStrip(rows, m_columns, packed, results + first, m_stride);
        packed += m_columns * width;
    }
}

double squaredDistance(const double* a, const double* b, long long n)
{
    Lanes sums{};
    long long i = 0;
    for (; i + lanes <= n; i += lanes) {
        const Lanes t = lanesAt(a + i) - lanesAt(b + i);
        sums += t * t;
    }
    double sum = (sums[0] + sums[1]) + (sums[2] + sums[3]);
    for (; i < n; ++i)
        sum += (a[i] - b[i]) * (a[i] - b[i]);
    return sum;
}

} // namespace XTNT
