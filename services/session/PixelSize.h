// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

class CORVSequenceDataset;

// Side of a pixel in the object, in cm, at binning 1: what the first image that tells it says.
std::optional<double> pixelSizeOfSequence(const CORVSequenceDataset& sequence);
