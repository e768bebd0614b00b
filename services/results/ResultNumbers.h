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

// Whether the engine has maps and spectra that go with its cube. A loaded result may have none: its mask or its
// selection need not go with the images.
bool hasMapsOfItsImages(const CORVSpumKyvo& engine);

// Those of the engine's present result, which has such maps, but for the time; `strTruthFolder` holds the truth of its
// unit, and is empty without one.
ResultNumbers numbersOfResult(const CORVSpumKyvo& engine, const QString& strTruthFolder);
