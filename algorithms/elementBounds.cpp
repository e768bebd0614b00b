// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/elementBounds.h"

#include "XTNT/xtnt_parallel.h"

namespace {

constexpr long long chunkElements = 1 << 16;

template <class A, class B>
bool sameShape(const XTNT::Matrix<A>& a, const XTNT::Matrix<B>& b)
{
    return a.num_rows() == b.num_rows() && a.num_cols() == b.num_cols();
}

double bounded(double value, int mode, double bound)
{
    switch (static_cast<BoundMode>(mode)) {
    case BoundMode::Equal:
        return bound;
    case BoundMode::Upper:
        return value > bound ? bound : value;
    case BoundMode::Lower:
        return value < bound ? bound : value;
    case BoundMode::Free:
        break;
    }
    return value;
}

} // namespace

void applyBounds(XTNT::Matrix<double>& values, const XTNT::Matrix<int>& modes, const XTNT::Matrix<double>& bounds)
{
    if (!sameShape(values, modes) || !sameShape(values, bounds)) {
        return;
    }
    double* value = values.storage.data;
    const int* mode = modes.storage.data;
    const double* bound = bounds.storage.data;
    XTNT::parallelChunks(values.storage.size(), chunkElements, [=](long long begin, long long end) {
        for (long long i = begin; i < end; ++i) {
            value[i] = bounded(value[i], mode[i], bound[i]);
        }
    });
}

void ensureBounds(XTNT::Matrix<int>& modes, XTNT::Matrix<double>& bounds, long long m, long long n)
{
    if (modes.num_rows() == m && modes.num_cols() == n && sameShape(modes, bounds)) {
        return;
    }
    modes.reshape(m, n);
    bounds.reshape(m, n);
}
