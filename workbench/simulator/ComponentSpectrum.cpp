// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/ComponentSpectrum.h"

#include "workbench/simulator/ScenePlan.h"

namespace {

// The mean of a function over a filter, by the trapezium rule at 1 nm.
template <typename Function>
double meanOverFilter(int centre, Function value)
{
    constexpr int kHalf = FilterPlan::kBandwidthNm / 2;
    double sum = 0.0;
    for (int offset = -kHalf; offset <= kHalf; ++offset)
        sum += (offset == -kHalf || offset == kHalf ? 0.5 : 1.0) * value(static_cast<double>(centre + offset));
    return sum / FilterPlan::kBandwidthNm;
}

} // namespace

std::vector<double> componentSpectrum(const SceneComponent& component, const TissueOptics& tissue,
                                      const QList<Band>& bands)
{
    const Probe& source = component.source;
    std::vector<double> spectrum;
    for (const Band& band : bands) {
        const double in = meanOverFilter(band.filters.excitation, [&](double nm) {
            return source.excitation.at(nm) * nm * tissue.transmission(nm, component.depthMm);
        });
        const double out = meanOverFilter(band.filters.emission, [&](double nm) {
            return source.emission.at(nm) * CameraFigures::quantumEfficiency(nm) *
                   tissue.transmission(nm, component.depthMm);
        });
        spectrum.push_back(band.exposureSeconds * band.irradiance * in * out);
    }
    return spectrum;
}
