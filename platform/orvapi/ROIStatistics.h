// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tagROIInfo.h"

#include <QString>

#include <optional>

class CILImage;
class CPLClickInfo;

// Measures a region of good geometry over an image, whose binning says how large its pixels are. `pixelSizeCm` is the
// side of an unbinned pixel in the object plane. The part of the region that lies beyond the image does not count,
// neither as invalid.
tagROIStatistics measureROI(const tagROIInfo& region, const CILImage& image, const QString& strUnit,
                            std::optional<double> pixelSizeCm);

// Side of an unbinned pixel in the object plane, cm; nothing when the click info does not tell it.
std::optional<double> pixelSizeOf(const CPLClickInfo& info);
