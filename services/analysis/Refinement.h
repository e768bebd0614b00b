// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/results/NoiseFacts.h"
#include "services/results/RefinementFacts.h"

#include "XTNT/xtnt_matrix.h"

#include <optional>

class CORVSequenceDataset;
class CORVSpumKyvo;

// What a second resolution finds beside its maps and spectra.
struct RefinementResult
{
    RefinementFacts facts;
    NoiseFacts noise; // that its weights are of
};

// Resolves components of which nothing is known a second time, after the engine, which starts from the means of
// clusters and takes all elements alike. Images of separate sources say more: an offset of the camera that is plain to
// see is taken off the engine's cube, the start is the spectra of the purest pixels (purestSpectra), and each element
// counts by its noise (CountedNoise, resolveWeighted); where the sources are independent the spectra go to where their
// amounts are (makeIndependent). Of many pixels some serve for the spectra; all are fitted in the
// end. Maps, spectra and plots of the engine's result are replaced, the components in the order of their centres.
//
// Nothing, and all is as it was, where that cannot be done: a scan of spots, fewer pure pixels than components, a
// component that vanishes, spectra that depend on each other. Passes cancellation points; an exception from there
// leaves the engine's maps and spectra, but the offset may be off the cube.
std::optional<RefinementResult> refineResolution(const CORVSequenceDataset& sequence, CORVSpumKyvo& engine);

// The level of pixels without light: the mean of one in `nPart`, those that are dark in every other image, in the
// images between, so that their noise has no part in their choice. Broken pixels, 0 in all images or not finite, take
// no part; 0 without others.
double darkLevel(const XTNT::Matrix<double>& data, long long nPart);
