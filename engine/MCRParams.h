// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ComponentConstraint.h"

#include <QList>

// The settings of an automatic run. All but Components and Constraints are the fixed tuning of the product, kept as
// data so that a result can state them.
struct MCRParams
{
    bool TransMode = false;
    int Components = 2; // the number of Constraints, once a run has started
    int DownSplRate = 1;
    int MaxIterations = 200;
    int DenoisePCA = 1;     // principal components kept beyond the component count when the data are denoised
    double UnimodTol = 5.0; // percent
    int PCAMode = 1;
    int WeightingMode = 0;
    int Normalization = 1;
    int NonNegMode = 2; // of both factors
    bool AutoSorting = true;
    bool ForceAF = false;
    QList<ComponentConstraint> Constraints; // one per component
};
