// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/simulator/BandPlan.h"

#include <QList>

#include <vector>

struct SceneComponent;
class TissueOptics;

// Electrons that a component at unit density gives in each band, up to a factor common to all bands:
//
//     s_j = t_j I_j <ex(x) x T(x, d)> <em(m) q(m) T(m, d)>
//
// t exposure, I irradiance, <> the mean over a filter's 20 nm, ex and em the source's spectra, x and m wavelengths (the
// x counts photons instead of energy), T the tissue's transmission at the component's depth, q the sensor's quantum
// efficiency. In a scan light comes in by another path than d. Without excitation t <em(m) q(m) T(m, d)> is left. A
// course over time multiplies it by its value at the middle of the exposure, a decay by the mean of what is left during
// it.
std::vector<double> componentSpectrum(const SceneComponent& component, const TissueOptics& tissue,
                                      const QList<Band>& bands);
