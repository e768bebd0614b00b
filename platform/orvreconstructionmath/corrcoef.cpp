// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/corrcoef.h"

#include <algorithm>
#include <cmath>

namespace XTNT {

namespace {

// The deviations from the mean, scaled to at most 1 so that no square overflows. False for a constant vector and for
// one that holds an element that is not finite.
bool scaledDeviations(const Vector<double>& v, Vector<double>& deviations)
{
    const double low = v.Min();
    const double high = v.Max();
    if (!(low < high)) {
        return false;
    }
    // Halved before sum and difference, which could overflow.
    const double middle = low / 2 + high / 2;
    const double halfRange = high / 2 - low / 2;
    deviations.reshape(v.n_);
    double total = 0;
    for (long long i = 0; i < v.n_; ++i) {
        deviations[i] = (v[i] - middle) / halfRange;
        total += deviations[i];
    }
    const double mean = total / static_cast<double>(v.n_);
    if (!std::isfinite(mean)) {
        return false;
    }
    for (long long i = 0; i < v.n_; ++i) {
        deviations[i] -= mean;
    }
    return true;
}

double dot(const Vector<double>& u, const Vector<double>& v)
{
    double total = 0;
    for (long long i = 0; i < u.n_; ++i) {
        total += u[i] * v[i];
    }
    return total;
}

} // namespace

double corrcoef(Vector<double>& a, Vector<double>& b)
{
    Vector<double> da;
    Vector<double> db;
    if (a.n_ != b.n_ || !scaledDeviations(a, da) || !scaledDeviations(b, db)) {
        return 0;
    }
    const double coefficient = dot(da, db) / (std::sqrt(dot(da, da)) * std::sqrt(dot(db, db)));
    return std::isfinite(coefficient) ? std::clamp(coefficient, -1.0, 1.0) : 0.0;
}

} // namespace XTNT
