// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/results/ComponentMatching.h"

#include <QString>

#include <limits>
#include <vector>

class CORVSpumKyvo;

// How a component stands beside the truth of a simulated sequence.
struct TrueComparison
{
    bool known = false; // a true component belongs to it, with a map at the analysis size
    double correlation = 0.0;
    double relativeError = 0.0;
    QString trueName;
    double cosine = std::numeric_limits<double>::quiet_NaN(); // of the spectra; NaN without true spectra
};

// One entry a component, in the order of the engine's plots, over the pixels of the analysis. `strFolder` is the
// truth's unit folder, with a separator at its end.
//
// A component belongs to the true one of its name. Where an automatic run had no names to give, so that none of its
// components has a true one's name, they belong together as their maps and spectra suggest.
//
// In a scan the maps of all spots count, those of the truth being "<name>_spot1.tif" and so on.
//
// True maps are brought to what spectra with a largest value of 1 in the images of the analysis would leave.
std::vector<TrueComparison> compareWithTruth(const CORVSpumKyvo& engine, const QString& strFolder);

// The components of a result as the engine holds them: maps over the pixels of the analysis, of a scan those of all
// spots one after the other.
std::vector<ComponentShape> shapesOfResult(const CORVSpumKyvo& engine);
