// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/simulator/SpectralCurve.h"

#include <QString>

// How light fades and spreads in a homogeneous tissue, by the diffusion approximation.
//
//     mu_eff(w) = sqrt(3 mu_a (mu_a + mu_s'))                       1/mm
//     transmission(w, d) = exp(-mu_eff(w) d)                        a broad field at depth d; 1 at the surface
//
// after S. L. Jacques, Optical properties of biological tissues: a review, Phys. Med. Biol. 58 (2013) R37, section 2.
class TissueOptics
{
public:
    // False when the reference data lack the tissue; the object is then empty.
    bool load(const QString& strTissue);

    // All in 1/mm.
    double absorption(double nm) const { return m_absorption.at(nm); }
    double reducedScattering(double nm) const { return m_scattering.at(nm); }
    double effectiveAttenuation(double nm) const;

    double transmission(double nm, double depthMm) const;

    // Relative light that leaves the surface at the lateral distance from a point source at that depth: the
    // extrapolated boundary of T. J. Farrell, M. S. Patterson and B. Wilson, Med. Phys. 19 (1992) 879, with the source
    // at the depth itself instead of one scattering length; internal reflection by the fit given there, at a refractive
    // index of 1.4.
    double surfaceSpread(double nm, double depthMm, double distanceMm) const;

private:
    SpectralCurve m_absorption;
    SpectralCurve m_scattering;
};
