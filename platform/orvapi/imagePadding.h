// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QSize>

#include <optional>

class CORVDataset;

// An import makes squares of images that are none, by rows or columns of zeros at the bottom or the right.

// Width and height of the stored image before that; nothing when it is not told.
std::optional<QSize> extentBeforePadding(const CORVDataset& dataset);

// The upper left part of that size, of the same type and binning; the image itself where it is no larger. Throws
// std::bad_alloc without memory.
CILImage croppedImage(const CILImage& image, long lWidth, long lHeight);
