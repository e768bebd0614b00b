// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <vector>

class TissueOptics;

// The picture that a flat source at one depth makes on the surface: the source convolved with the spread of light at a
// reference wavelength, whose integral is 1 (what depth takes from the light is the spectrum's business). It is
// computed on a grid that is fine against the spread, and is a smooth function of the place.
class DepthBlur
{
public:
    // Wavelength in nm whose spread serves for all bands, so that a component is one map times one spectrum.
    static constexpr double kReferenceNm = 700.0;

    // The density of the source at a place in cm, over the square field of view of that side around the origin; nothing
    // lies beyond it.
    using Density = std::function<double(double x, double y)>;
    DepthBlur(const Density& density, double fieldCm, const TissueOptics& tissue, double depthMm);

    double at(double x, double y) const;

private:
    void sample(const Density& density);
    void convolve(const std::vector<double>& kernel, int reach);
    std::vector<double> makeKernel(const TissueOptics& tissue, double depthMm, double reachCm, int reach) const;
    double node(int row, int column) const;

    double m_field;
    double m_step = 0.0;
    int m_side = 0;
    std::vector<double> m_grid;
};
