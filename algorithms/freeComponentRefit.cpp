// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/freeComponentRefit.h"

#include <vector>

using XTNT::Matrix;
using XTNT::Vector;

namespace {

// Smaller differences are rounding.
constexpr double changeLimit = 1e-07;

// Takes the first band and all with an equal column of `mask` out of `bands`; in the order in which they stood.
Vector<long long> takeGroup(const Matrix<int>& mask, std::vector<long long>& bands)
{
    std::vector<long long> group;
    std::vector<long long> rest;
    const Vector<int> pattern = mask.column(bands.front());
    for (const long long band : bands) {
        (mask.column(band) == pattern ? group : rest).push_back(band);
    }
    bands.swap(rest);
    Vector<long long> result(static_cast<long long>(group.size()));
    for (long long i = 0; i < result.size(); ++i) {
        result[i] = group[static_cast<std::size_t>(i)];
    }
    return result;
}

void writeBack(const Matrix<double>& solution, const Vector<long long>& rows, const Vector<long long>& columns,
               Matrix<double>& spec)
{
    for (long long i = 0; i < solution.num_rows(); ++i) {
        for (long long j = 0; j < solution.num_cols(); ++j) {
            spec[rows[i]][columns[j]] = solution[i][j];
        }
    }
}

} // namespace

void refitFreeComponents(const Matrix<double>& before, Matrix<double>& spec, SpectrumFit& fit)
{
    const Matrix<int> mask = (before - spec).absolute().greaterMask(changeLimit);
    const Vector<long long> changed = XTNT::find(mask.maxAlong(0), ">", 0);
    std::vector<long long> bands(changed.data, changed.data + changed.size());
    while (!bands.empty()) {
        const long long first = bands.front();
        const Vector<long long> group = takeGroup(mask, bands);
        const Vector<int> pattern = mask.column(first);
        const Vector<long long> free = XTNT::find(pattern, "==", 0);
        const Vector<long long> fixed = XTNT::find(pattern, "!=", 0);
        if (free.empty()) {
            continue;
        }
        writeBack(fit.refit(free, fixed, group, spec), free, group, spec);
    }
}
