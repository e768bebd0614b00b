// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/AutomaticRunFacts.h"
#include "services/results/TruthComparison.h"

#include <QString>

#include <vector>

class CORVSpumKyvo;

// The numbers of a result beside its maps.
struct ResultNumbers
{
    std::vector<double> shares;
    double residual = 0.0; // relative, against the data of the cube
    std::vector<TrueComparison> truth;
    double seconds = 0.0; // of the run
    bool automatic = false;
    AutomaticRunFacts facts; // of an automatic run
};

// Those of the engine's present result but for the time; `strTruthFolder` holds the truth of its unit, and is empty
// without one.
ResultNumbers numbersOfResult(const CORVSpumKyvo& engine, const QString& strTruthFolder);
