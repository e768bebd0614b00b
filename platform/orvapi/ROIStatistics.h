// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"
#include "host/tagROIInfo.h"

#include <QSize>
#include <QString>

#include <optional>

class CPLClickInfo;

// The pixels of an image that can be measured: those of its upper left part of that size (all where it is empty) but
// for those with a 0 in `valid`, which have no value; none where that is empty or ends.
struct MeasuredPixels
{
    QSize size;
    CILImage valid;
};

// Measures a region of good geometry over an image, whose binning says how large its pixels are. `pixelSizeCm` is the
// side of an unbinned pixel in the object plane. The part of the region that lies beyond the image, or what can be
// measured of it, does not count, neither as invalid.
tagROIStatistics measureROI(const tagROIInfo& region, const CILImage& image, const QString& strUnit,
                            std::optional<double> pixelSizeCm, const MeasuredPixels& pixels = {});

// Side of an unbinned pixel in the object plane, cm; nothing when the click info does not tell it.
std::optional<double> pixelSizeOf(const CPLClickInfo& info);
