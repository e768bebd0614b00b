// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What of the options of an unmixing its memory depends on.
struct UnmixDemand
{
    bool automatic = true;
    int binning = 0; // 0: that of the images
};
