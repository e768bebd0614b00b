// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/lane_product.h"

#include "XTNT/xtnt_lanes.h"

#include <algorithm>

namespace XTNT {

namespace {

// Sums that are under way at once, each in a register of its own.
constexpr long long strip = 8;

} // namespace

LaneProduct::LaneProduct(const Matrix<double>& factor)
    : m_inputs(factor.num_rows()), m_strips((factor.num_cols() + strip - 1) / strip),
      m_packed(static_cast<std::size_t>(m_strips * m_inputs * strip), 0.0)
{
    double* packed = m_packed.data();
    for (long long first = 0; first < factor.num_cols(); first += strip) {
        for (long long i = 0; i < m_inputs; ++i, packed += strip) {
            std::copy_n(factor[i] + first, std::min(strip, factor.num_cols() - first), packed);
        }
    }
}

long long LaneProduct::resultSize() const
{
    return m_strips * strip * lanes;
}

void LaneProduct::multiply(const double* __restrict values, double* __restrict results) const
{
    const double* __restrict packed = m_packed.data();
    for (long long s = 0; s < m_strips; ++s, results += strip * lanes) {
        Lanes sums[strip] = {};
        for (long long i = 0; i < m_inputs; ++i, packed += strip) {
            const Lanes value = lanesAt(values + i * lanes);
            for (long long j = 0; j < strip; ++j) {
                sums[j] += packed[j] * value;
            }
        }
        for (long long j = 0; j < strip; ++j) {
            putLanes(results + j * lanes, sums[j]);
        }
    }
}

} // namespace XTNT
