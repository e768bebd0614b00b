// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"
#include "services/analysis/MaskRequest.h"

class CORVSpumKyvo;

// The mask that an option asks for, for an engine whose binning and size are chosen: pixels above 0 count, the binning
// is set. Kind::None gives an empty image. Throws Failure for a file that does not serve, a shape that leaves the
// image, and where there is no photograph.
CILImage maskImageOf(const MaskRequest& option, const CORVSpumKyvo& engine);

// Percent of the photograph's range above which it counts: `dThreshold`, or where that is below 0 what is found.
double photographThreshold(double dThreshold, const CORVSpumKyvo& engine);

// Why the engine refused that mask.
QString unusableMaskText(const MaskRequest& option, const CORVSpumKyvo& engine);
