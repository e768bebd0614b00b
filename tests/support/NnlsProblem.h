// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/nnls.h"
#include "XTNT/xtnt_matrix.h"

#include <vector>

namespace testsupport {

struct NnlsResult
{
    XTNT::Vector<double> x;
    std::vector<double> w;
    std::vector<int> index;
    double rnorm = -1;
    int mode = 0;
    int returned = -1;
};

// Calls NNLS on copies of A (row-major, as everywhere) and b, with a leading dimension larger than the number of rows
// on request.
inline NnlsResult runNnls(const XTNT::Matrix<double>& A, const XTNT::Vector<double>& b, int extraRows = 0)
{
    const int m = static_cast<int>(A.M);
    const int n = static_cast<int>(A.N);
    const int mda = m + extraRows;
    std::vector<double> a(static_cast<std::size_t>(mda) * static_cast<std::size_t>(n) + 1, -77.0);
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < m; ++i) {
            a[static_cast<std::size_t>(i + j * mda)] = A[i][j];
        }
    }
    std::vector<double> rightHandSide(b.data, b.data + b.n_);
    std::vector<double> zz(static_cast<std::size_t>(m) + 1);
    NnlsResult result;
    result.x = XTNT::Vector<double>(n);
    result.w.assign(static_cast<std::size_t>(n) + 1, -77.0);
    result.index.assign(static_cast<std::size_t>(n) + 1, -77);
    result.returned = XTNT::NNLS(a.data(), mda, m, n, rightHandSide.data(), result.x.data, &result.rnorm,
                                 result.w.data(), zz.data(), result.index.data(), &result.mode);
    return result;
}

} // namespace testsupport
