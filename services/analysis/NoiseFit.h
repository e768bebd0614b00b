// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/weighted_concentrations.h"
#include "services/analysis/NoiseRequest.h"
#include "services/results/NoiseFacts.h"

class CORVSequenceDataset;
class CORVSpumKyvo;

// What a fit with weights finds beside its maps.
struct NoiseFitResult
{
    NoiseFacts facts;
    XTNT::Matrix<double> errors; // K x P, standard errors of the maps; empty where they were not asked for
};

// A second fit of the engine's spectra, known or resolved, whose weights follow from the maps of the engine's own fit,
// which it replaces; and the standard errors of the maps as they are then. Errors are those of the noise that the model
// tells, times the root of what the fit leaves in units of it: what the model has no figure for, or has wrong by a
// factor, is made up for. Nothing is asked for by a request without a kind and without errors: the maps stay. Passes
// cancellation points; an exception from there leaves the maps of before.
NoiseFitResult fitWithNoise(const NoiseRequest& request, const CORVSequenceDataset& sequence, CORVSpumKyvo& engine);

// The noise of images that have each its own, whatever the light: as large as it is seen to be, and in proportion to
// `light` (see CountedNoise) where that cannot be told. One group; no image counts more than `mostRatio` squared times
// another.
XTNT::NoiseModel noiseByImage(const XTNT::Matrix<double>& data, const XTNT::Matrix<double>& light);
