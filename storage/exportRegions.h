// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

class CORVDataset;

// Gives the dataset of a map the regions of interest of the dataset that it was made from, in place of its own, and
// measures them over the map in that unit: the numbers are then there for CROIManager::saveROIData(), from which a
// result takes its records. The status of the measurement; the regions are taken over also when that fails.
ESTATUS takeOverRegions(CORVDataset& source, CORVDataset& map, tag_edisplayunit eUnit);
