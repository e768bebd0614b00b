// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// How much of a tracer an organ holds over time: it arrives, is taken up, and is cleared.
//
//     c(t) = exp(-(t - arrival) / clearance) - exp(-(t - arrival) / uptake)      from the arrival on, before it 0
//
// All in seconds; uptake must be shorter than clearance. The scale is free.
struct TimeCourse
{
    double arrival = 0.0;
    double uptake = 1.0;
    double clearance = 2.0;

    double at(double seconds) const;
};
