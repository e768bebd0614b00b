// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

#include <QStringList>

#include <functional>

class CORVSequenceDataset;
class CORVSpumKyvo;

// Looks at every image of the engine's list in the unit of the analysis before a run. Throws Failure that names all
// images with pixels that are not finite, the first image that cannot be read, and the first that is not square or does
// not cover the area of the first one. `step` is called between images and may throw to stop.
//
// Gives the images whose pixels are all the same: those of the engine's mask, or, in an image of another size than the
// analysis and without a mask, all of them.
QStringList checkImagePixels(const CORVSequenceDataset& sequence, const CORVSpumKyvo& engine, tag_edisplayunit eUnit,
                             const std::function<void(double fraction)>& step);
