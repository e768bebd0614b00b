// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

#include <QString>

#include <optional>

class CILImage;
class CPLClickInfo;

// The calibration of one image of a click, from its click info.
//
//     counts   = p - bias
//     radiance = counts * photonsPerCount / (exposure * (pixelSize * binning)^2 * solidAngle / fNumber^2)
//
// with p the stored pixel. Radiance is a density: four pixels summed into one hold four times the counts on four times
// the area. The fluorescent reference without an f-number of its own was taken at that of the luminescent image.

// Counts to take off a stored pixel: 0 when they are off already, when the pixels are stored in a unit (of the data
// image), and when the click info does not tell them.
double imageBias(const CPLClickInfo& info, tag_eimagetype eType);

// Side of the image's pixels in unbinned ones; 1 when the click info does not tell, or tells what cannot be one (not
// above 0, or above 1024).
float imageBinning(const CPLClickInfo& info, tag_eimagetype eType);

// Radiance in p/s/cm^2/sr of one count at the given binning or, without one, that of the click info. False when a
// figure is missing or not above 0: *pReason (may be null) names it, and *pFactor is untouched. *pFactor may be null.
bool radianceOfCount(const CPLClickInfo& info, tag_eimagetype eType, std::optional<double> ownBinning, double* pFactor,
                     QString* pReason);

// Turns stored pixels into (p - bias) * factor as floats, in place. False when memory is exhausted or the image is
// empty.
bool applyCalibration(CILImage& image, double bias, double factor);
