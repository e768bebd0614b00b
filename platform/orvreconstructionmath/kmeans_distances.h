// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

namespace XTNT {

// Squared Euclidean distances of rows to all centres, four rows at once. Each is the sum over the columns, in ascending
// order, of the squared difference: a row's bits do not depend on the rows beside it, and the relative error stays
// within a few roundings a column.
class CentreDistances
{
public:
    static constexpr int rowsAtOnce = 4;

    // `centres` is clusters x columns, row-major.
    CentreDistances(const std::vector<double>& centres, long long clusters, long long columns);

    // Length of one row of results: the clusters, rounded up to whole vectors. What stands beyond the clusters means
    // nothing.
    long long stride() const { return m_stride; }

    // results[r * stride() + j] = |rows[r] - centre j|^2. To do fewer rows, repeat a pointer.
    void compute(const double* const* rows, double* __restrict results) const;

private:
    long long m_columns;
    long long m_stride;
    // Strips of eight centres (the last may have four): within a strip column after column.
    std::vector<double> m_packed;
};

// |a - b|^2, n elements.
double squaredDistance(const double* a, const double* b, long long n);

} // namespace XTNT
