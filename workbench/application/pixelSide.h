// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

class CORVDataset;

// Side of a pixel of an image of the dataset in the object plane, in mm; nothing when the click info does not tell.
std::optional<double> pixelSideMm(CORVDataset& dataset, int nImageType);
