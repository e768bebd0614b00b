// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QString>

#include <cstddef>

// The fewest pixels that make a data mask.
constexpr std::size_t kMinMaskPixels = 10;

// The pixels of a mask, of any type, that are above 0; NaNs are not.
std::size_t countMaskPixels(const CILImage& mask);

// Whether the mask has kMinMaskPixels pixels or more.
bool isMaskValid(const CILImage& mask);

// What a window says of a mask of that many pixels: their number and, below kMinMaskPixels, that more are needed; of a
// drawn mask without any, how to draw one.
QString maskStatusText(std::size_t nPixels, bool bDrawn);
