// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <cstddef>

// The fewest pixels that make a data mask.
constexpr std::size_t kMinMaskPixels = 10;

// The pixels of a mask, of any type, that are above 0; NaNs are not.
std::size_t countMaskPixels(const CILImage& mask);

// Whether the mask has kMinMaskPixels pixels or more.
bool isMaskValid(const CILImage& mask);
