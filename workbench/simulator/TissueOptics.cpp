// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/TissueOptics.h"

#include "host/CORVDatabase.h"

#include <cmath>

namespace {

constexpr double kMmPerCm = 10.0;
constexpr double kRefractiveIndex = 1.4;

// What one of the two sources, real and image, sends through the surface.
double fluxOf(double height, double distance, double effective)
{
    const double r = std::sqrt(height * height + distance * distance);
    return height * (effective + 1.0 / r) * std::exp(-effective * r) / (r * r);
}

} // namespace

bool TissueOptics::load(const QString& strTissue)
{
    *this = TissueOptics();
    sTissuePropFileParameters tissue;
    if (!CORVDatabase::readOpticalProperty(strTissue, &tissue) || tissue.n < 1) {
        return false;
    }
    for (double& value : tissue.absorption) {
        value /= kMmPerCm;
    }
    for (double& value : tissue.scattering) {
        value /= kMmPerCm;
    }
    m_absorption = SpectralCurve(tissue.wavelength, tissue.absorption, SpectralCurve::Beyond::Hold);
    m_scattering = SpectralCurve(tissue.wavelength, tissue.scattering, SpectralCurve::Beyond::Hold);
    return true;
}

double TissueOptics::effectiveAttenuation(double nm) const
{
    const double a = absorption(nm);
    return std::sqrt(3.0 * a * (a + reducedScattering(nm)));
}

double TissueOptics::transmission(double nm, double depthMm) const
{
    return std::exp(-effectiveAttenuation(nm) * depthMm);
}

double TissueOptics::surfaceSpread(double nm, double depthMm, double distanceMm) const
{
    const double n = kRefractiveIndex;
    const double reflected = -1.440 / (n * n) + 0.710 / n + 0.668 + 0.0636 * n;
    const double mismatch = (1.0 + reflected) / (1.0 - reflected);
    const double diffusion = 1.0 / (3.0 * (absorption(nm) + reducedScattering(nm)));
    const double boundary = 2.0 * mismatch * diffusion; // mm above the surface
    const double effective = effectiveAttenuation(nm);
    return fluxOf(depthMm, distanceMm, effective) + fluxOf(depthMm + 2.0 * boundary, distanceMm, effective);
}
