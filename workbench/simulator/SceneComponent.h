// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/simulator/MouseShape.h"
#include "workbench/simulator/ProbeChoice.h"
#include "workbench/simulator/TimeCourse.h"

#include <QString>

#include <functional>
#include <optional>
#include <vector>

// One source of light in the animal.
struct SceneComponent
{
    QString name;   // "TissueAF", "Food" or the probe's
    Probe source;   // its spectra
    double depthMm; // that light passes on its way in and out
    double ratio;   // of its peak over the autofluorescence beneath; 0 for the autofluorescence itself
    // Its map at a place in cm, without the animal's soft edge and in a unit of its own; in a scan one for each spot.
    using Density = std::function<double(double x, double y, const MouseShape::Point& point)>;
    std::vector<Density> densities;

    std::optional<double> excitationPathMm; // that light passes on its way in where that is not depthMm
    std::optional<TimeCourse> course;       // without one it does not change over time
    bool decays = false;                    // with the sequence's isotope
};
