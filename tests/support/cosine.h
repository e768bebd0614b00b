// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <numeric>

namespace testsupport {

// Of the angle between two rows of n elements; NaN where one is 0.
inline double cosine(const double* a, const double* b, long long n)
{
    const double ab = std::inner_product(a, a + n, b, 0.0);
    return ab / std::sqrt(std::inner_product(a, a + n, a, 0.0) * std::inner_product(b, b + n, b, 0.0));
}

} // namespace testsupport
