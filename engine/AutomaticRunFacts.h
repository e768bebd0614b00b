// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "algorithms/MCREnding.h"

#include <vector>

// What is told of the last automatic run beside its results.
struct AutomaticRunFacts
{
    int iterations = 0;
    MCREnding ending = MCREnding::NotRun;
    double lackOfFitDenoised = 0.0; // percent, against the data that were fitted
    double lackOfFitRaw = 0.0;      // percent, against the data of the cube
    int rank = 0;                   // of the data
    // Of the data: squares of the singular values, descending, one an image.
    std::vector<double> eigenvalues;
};
