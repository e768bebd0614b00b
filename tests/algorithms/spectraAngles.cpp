// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectraAngles.h"

#include "support/cosine.h"

#include <algorithm>
#include <cmath>

double worstAngle(const XTNT::Matrix<double>& found, const XTNT::Matrix<double>& truth)
{
    double worst = 0.0;
    for (long long k = 0; k < truth.num_rows(); ++k) {
        const double cosine = testsupport::cosine(found[k], truth[k], truth.num_cols());
        worst = std::max(worst, std::acos(std::min(cosine, 1.0)));
    }
    return worst * 180.0 / 3.14159265358979;
}

bool same(const XTNT::Matrix<double>& a, const XTNT::Matrix<double>& b)
{
    return std::equal(a.storage.data, a.storage.data + a.storage.n_, b.storage.data);
}
