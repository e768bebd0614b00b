// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <vector>

class CORVSpumKyvo;

// How a component's map stands beside the truth of a simulated sequence.
struct MapComparison
{
    bool known = false; // a true map of that name exists at the analysis size
    double correlation = 0.0;
    double relativeError = 0.0;
};

// One entry a component, in the order of the engine's plots, over the pixels of the analysis. `strFolder` is the truth's
// unit folder, with a separator at its end.
std::vector<MapComparison> compareWithTruth(const CORVSpumKyvo& engine, const QString& strFolder);
