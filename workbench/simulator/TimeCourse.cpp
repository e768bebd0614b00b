// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/TimeCourse.h"

#include <cmath>

double TimeCourse::at(double seconds) const
{
    const double since = seconds - arrival;
    return since > 0.0 ? std::exp(-since / clearance) - std::exp(-since / uptake) : 0.0;
}
