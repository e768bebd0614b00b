// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/weighted_concentrations.h"
#include "XTNT/xtnt_matrix.h"

#include <optional>

class CORVSequenceDataset;
class CORVSpumKyvo;

// The noise of counted light in the images of an analysis. A stored pixel of n counts has the variance
//
//   n / gain + (readNoise / gain)^2,  gain in electrons a count, readNoise in electrons,
//
// and an element of the cube, which may be in another unit and gather several pixels, has
//
//   light * e / gain + reading * (readNoise / gain)^2
//
// where e is what it is expected to be, in the cube's unit.
struct CountedNoise
{
    XTNT::Matrix<double> light; // spots x images
    XTNT::Matrix<double> reading;
    // Of the camera, where the sequence tells them.
    std::optional<double> gain;
    std::optional<double> readNoise;
    // Whether `light` and `reading` are those of counts. Where they cannot be had (pixels stored in another unit,
    // divided by a reference image) they are in proportion to the noise of each image: only their ratios mean
    // something.
    bool calibrated = true;

    // For the images and the unit of the engine's cube, which is filled.
    static CountedNoise of(const CORVSpumKyvo& engine, const CORVSequenceDataset& sequence);

    // Fills in what is not told from what a first fit leaves (pixels x components): the size of its squares over the
    // light and over the rest, by least squares with weights (quasi-likelihood; R. W. M. Wedderburn, Biometrika 61
    // (1974) 439). Afterwards both are known. Where no degrees of freedom are left: a gain of 1, and a read noise of 1.
    void estimate(const XTNT::Matrix<double>& data, const XTNT::Matrix<double>& spectra,
                  const XTNT::Matrix<double>& fit);

    // With both figures known; the read noise counts as one electron at least, so that what is dark has a finite
    // weight.
    XTNT::NoiseModel model() const;
};
