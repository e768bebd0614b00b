// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_vector.h"

#include <QString>

// How much of the data's variance the first components explain.
struct ExplainedVariance
{
    XTNT::Vector<double> percent;   // element i: percent explained by i + 1 components
    int nSuggested = 0;             // the fewest components that explain kExplainedTarget percent
    double dSuggestedPercent = 0.0; // explained by that many

    // Nothing to show: `percent` is empty, the suggestion 0.
    bool isEmpty() const { return percent.empty(); }
};

// Percent that the suggested number of components explains at least.
constexpr double kExplainedTarget = 99.0;

// Of eigenvalues in descending order, which stay as they are (the result shares nothing with them). Empty when there
// are none, when the largest is not above 0, and when they have no sum to be parts of (NaN or infinity among them).
ExplainedVariance explainedVariance(const XTNT::Vector<double>& eigenvalues);

// A percentage as it is shown: six significant digits.
QString explainedVarianceText(double dPercent);
