// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/AutomaticRunFacts.h"
#include "services/results/ComponentNumber.h"
#include "services/results/NoiseFacts.h"
#include "services/results/RefinementFacts.h"
#include "services/results/TruthComparison.h"
#include "services/warnings/RunWarning.h"

#include <QString>

#include <limits>
#include <optional>
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
    // What follows is known of a run that has just ended, each list a component; see findingsOfResult().
    double condition = std::numeric_limits<double>::quiet_NaN(); // of the spectra, each scaled to length 1
    double maskLight = std::numeric_limits<double>::quiet_NaN(); // the mask's part of the images' light, 0 to 1
    std::vector<double> standardErrors;                          // of the map in a pixel, in its unit; mean square
    std::vector<double> amplifications;                          // of the noise, see SpectraLikeness
    std::vector<double> knownCosines;                            // of an automatic run; NaN: no source of that name
    ComponentNumber above;                                       // the noise
    // Of a fit with weights, those of a resolution included, or of standard errors that were asked for.
    std::optional<NoiseFacts> noise;
    std::optional<RefinementFacts> refinement; // of a resolution by number alone that was refined
    XTNT::Matrix<double> errors;               // K x P, of the maps; empty without
    QList<RunWarning> warnings;
};

// Whether the engine has maps and spectra that go with its cube. A loaded result may have none: its mask or its
// selection need not go with the images.
bool hasMapsOfItsImages(const CORVSpumKyvo& engine);

// Those of the engine's present result, which has such maps, but for the time; `strTruthFolder` holds the truth of its
// unit, and is empty without one.
ResultNumbers numbersOfResult(const CORVSpumKyvo& engine, const QString& strTruthFolder);
