// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/ComponentSpectrum.h"

#include "workbench/simulator/SceneComponent.h"
#include "workbench/simulator/TissueOptics.h"

namespace {

// The mean of a function over a filter, by the trapezium rule at 1 nm.
template <typename Function>
double meanOverFilter(int centre, Function value)
{
    constexpr int kHalf = FilterPlan::kBandwidthNm / 2;
    double sum = 0.0;
    for (int offset = -kHalf; offset <= kHalf; ++offset) {
        sum += (offset == -kHalf || offset == kHalf ? 0.5 : 1.0) * value(static_cast<double>(centre + offset));
    }
    return sum / FilterPlan::kBandwidthNm;
}

} // namespace

std::vector<double> componentSpectrum(const SceneComponent& component, const TissueOptics& tissue,
                                      const QList<Band>& bands)
{
    const Probe& source = component.source;
    const double pathIn = component.excitationPathMm.value_or(component.depthMm);
    std::vector<double> spectrum;
    for (const Band& band : bands) {
        const bool excited = band.filters.excitation > 0;
        const double in = !excited ? 1.0 : meanOverFilter(band.filters.excitation, [&](double nm) {
            return source.excitation.at(nm) * nm * tissue.transmission(nm, pathIn);
        });
        const double out = meanOverFilter(band.filters.emission, [&](double nm) {
            return source.emission.at(nm) * CameraFigures::quantumEfficiency(nm) *
                   tissue.transmission(nm, component.depthMm);
        });
        double electrons = band.exposureSeconds * (excited ? band.irradiance : 1.0) * in * out;
        if (component.course) {
            electrons *= component.course->at(band.timeSeconds + 0.5 * band.exposureSeconds);
        }
        if (component.decays) {
            electrons /= band.decayCorrection;
        }
        spectrum.push_back(electrons);
    }
    return spectrum;
}
