// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectraAngles.h"

#include <algorithm>
#include <cmath>

double worstAngle(const XTNT::Matrix<double>& found, const XTNT::Matrix<double>& truth)
{
    double worst = 0.0;
    for (long long k = 0; k < truth.num_rows(); ++k) {
        double ab = 0.0;
        double aa = 0.0;
        double bb = 0.0;
        for (long long b = 0; b < truth.num_cols(); ++b) {
            ab += found[k][b] * truth[k][b];
            aa += found[k][b] * found[k][b];
            bb += truth[k][b] * truth[k][b];
        }
        worst = std::max(worst, std::acos(std::min(ab / std::sqrt(aa * bb), 1.0)));
    }
    return worst * 180.0 / 3.14159265358979;
}

bool same(const XTNT::Matrix<double>& a, const XTNT::Matrix<double>& b)
{
    return std::equal(a.storage.data, a.storage.data + a.storage.n_, b.storage.data);
}
