// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

// The data mask that is cut out of a photograph by brightness. A threshold is a percentage of the range from the
// photograph's minimum up to the level that 99.9 % of its pixels do not pass, so that saturated specks do not compress
// the scale. All functions take a photograph whose statistics are current (RefreshImageStats()) and leave it as it is.

// The fraction (0 to 255/256, in steps of 1/256) of the photograph's span at which 99.9 % of its pixels are counted. It
// is 0 when these pixels lie in the lowest of the 256 bins, as in a constant photograph, and 255/256 when NaNs keep the
// count from being reached.
float photoRange(const CILImage& photo);

// The percentage that separates body and bed best (Otsu), for use with the same `fRange`. It may pass 100. With an
// `fRange` of 0 or less, or NaN, it is 0.
float automaticThreshold(const CILImage& photo, float fRange);

// The brightness, in the photograph's own values, that belongs to percentage `v`: minimum + v * ((maximum * fRange -
// minimum) / 100), each step rounded to float. The range scales the maximum and not the span, as users know it.
float photoThreshold(const CILImage& photo, float v, float fRange);

// Makes `mask` (not the photograph itself) a byte image of the photograph's size and binning: 1 where it is brighter
// than photoThreshold(), without what an opening removes (3 by 3, three times: what holds no square of 7 by 7 pixels)
// and with enclosed holes filled. False when the photograph is empty or memory runs out; the mask is then empty.
bool makePhotoMask(const CILImage& photo, float v, float fRange, CILImage& mask);
