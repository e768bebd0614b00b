// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvreconstructionmath/kmeans_distances.h"

#include "XTNT/xtnt_strips.h"

#include <algorithm>

namespace XTNT {

CentreDistances::CentreDistances(const std::vector<double>& centres, long long clusters, long long columns)
    : m_columns(columns), m_stride((clusters + lanes - 1) / lanes * lanes),
      m_packed(static_cast<std::size_t>(columns * m_stride), 0.0)
{
    double* packed = m_packed.data();
    for (long long first = 0; first < m_stride; first += stripColumns) {
        const long long width = stripWidth(first, m_stride);
        const long long used = std::min(width, clusters - first);
        for (long long i = 0; i < columns; ++i, packed += width) {
            for (long long j = 0; j < used; ++j) {
                packed[j] = centres[static_cast<std::size_t>((first + j) * columns + i)];
            }
        }
    }
}

void CentreDistances::compute(const double* const* rows, double* __restrict results) const
{
    sumStrips(rows, m_columns, m_packed.data(), m_stride, results, [](Lanes& sum, double value, const Lanes& centre) {
        const Lanes t = value - centre;
        sum += t * t;
    });
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
    for (; i < n; ++i) {
        sum += (a[i] - b[i]) * (a[i] - b[i]);
    }
    return sum;
}

} // namespace XTNT
