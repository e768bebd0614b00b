// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/sameSpectra.h"

#include <algorithm>
#include <cmath>

namespace {

bool samePoint(const SpectrumPoint& a, const SpectrumPoint& b)
{
    return a.first == b.first && a.second == b.second &&
           (a.value == b.value || (std::isnan(a.value) && std::isnan(b.value)));
}

} // namespace

bool sameSpectrum(const SpectrumPlotParams& a, const SpectrumPlotParams& b)
{
    return a.axis == b.axis && a.settings.selected == b.settings.selected && a.settings.name == b.settings.name &&
           a.settings.color == b.settings.color && a.origin == b.origin &&
           std::equal(a.points.begin(), a.points.end(), b.points.begin(), b.points.end(), samePoint);
}

bool sameSpectra(const QList<SpectrumPlotParams*>& a, const QList<SpectrumPlotParams*>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const SpectrumPlotParams* x, const SpectrumPlotParams* y) { return sameSpectrum(*x, *y); });
}
