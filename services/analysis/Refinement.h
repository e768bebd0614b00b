// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/results/NoiseFacts.h"
#include "services/results/RefinementFacts.h"

#include "XTNT/noise_model.h"
#include "XTNT/xtnt_matrix.h"

#include <QString>

#include <functional>
#include <optional>

class CORVSequenceDataset;
class CORVSpumKyvo;

// What a second resolution finds beside its maps and spectra.
struct RefinementResult
{
    RefinementFacts facts;
    NoiseFacts noise; // that its weights are of
};

// Spectra of a second resolution.
struct RefinedSpectra
{
    QString reason;               // why there are none, part of a sentence; what follows is then not to be used
    XTNT::Matrix<double> spectra; // components x images, in the order of their centres
    RefinementFacts facts;        // with an offset they go with the data without it
    NoiseFacts noise;             // that the weights are of
    XTNT::NoiseModel weights;     // for all rows of the cube
};

// What becomes of an offset of the camera that is plain to see.
enum class CameraOffset
{
    TakenOff, // the spectra are those of the data without it
    Kept
};

// Resolves components of which nothing is known a second time, after the engine, which starts from the means of
// clusters and takes all elements alike. Images of separate sources say more: an offset of the camera that is plain to
// see is taken off, the start is the spectra of the purest pixels (purestSpectra), and each element counts by its noise
// (CountedNoise, resolveWeighted); where the sources are independent the spectra go to where their amounts are
// (makeIndependent), and where they are not and no pixel is pure to where all pixels are mixtures (encloseMixtures). Of
// many pixels some serve.
//
// Only reads engine and sequence, so that any thread can do it while they do not change. No spectra, with the reason,
// of a scan of spots, of fewer pure pixels than components, of a component that vanishes, of spectra that depend on
// each other. Passes cancellation points. `step`, when there is one, is called with the share that is done.
RefinedSpectra refinedSpectra(const CORVSequenceDataset& sequence, const CORVSpumKyvo& engine, CameraOffset eOffset,
                              const std::function<void(double dShare)>& step = {});

// Replaces maps, spectra and plots of the engine's result by refinedSpectra() and a fit of all pixels with the same
// weights; an offset is taken off the engine's cube. Nothing, and all is as it was, where there are no such spectra.
// Passes cancellation points; an exception from there leaves the engine's maps and spectra, but the offset may be off
// the cube.
std::optional<RefinementResult> refineResolution(const CORVSequenceDataset& sequence, CORVSpumKyvo& engine);

// The level of pixels without light: the mean of one in `nPart`, those that are dark in every other image, in the
// images between, so that their noise has no part in their choice. Broken pixels, 0 in all images or not finite, take
// no part; 0 without others.
double darkLevel(const XTNT::Matrix<double>& data, long long nPart);
