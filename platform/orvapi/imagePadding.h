// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QSize>

#include <optional>

class CORVDataset;

// An import makes squares of images that are none, by rows or columns of zeros at the bottom or the right.

// Width and height of the stored image before that; nothing when it is not told.
std::optional<QSize> extentBeforePadding(const CORVDataset& dataset);

// The share of lWidth x lHeight pixels that images of `extent` have of the square that was made of them, cut to whole
// pixels; one at least along a side.
QSize shareOf(const QSize& extent, const QSize& square, long lWidth, long lHeight);

// Of an image or a photograph of a dataset with that extentBeforePadding() (empty where it is not told), or a map that
// was made of it: the size of what was not added, and that part. A picture in colours, which no import makes, stays
// whole. Throws std::bad_alloc without memory.
QSize ownSize(const QSize& extent, long lWidth, long lHeight);
CILImage ownPart(const QSize& extent, CILImage image);

// The upper left part of a size, of the same type and binning; the image itself where it is no larger. Throws
// std::bad_alloc without memory.
CILImage croppedImage(const CILImage& image, long lWidth, long lHeight);
