// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdlib>

// Ends the program, which the fuzzer takes for a finding, unless what a reader promises holds.
inline void require(bool bHolds)
{
    if (!bHolds) {
        std::abort();
    }
}
