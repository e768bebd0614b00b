// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The part of a component's value range that is shown, as fractions of the range.
struct ScaleRatio
{
    double MinRatio = 0.1;
    double MaxRatio = 0.9;
    double extra = 1.0; // not written to results
};
