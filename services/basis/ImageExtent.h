// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QSize>

class CORVSpumKyvo;

// An import makes squares of images that are none, by rows or columns of zeros at the bottom or the right. They are no
// pixels of anybody: no mask holds them, and results have the shape that the images had.

// The pixels of an analysis that lie in the images wholly, in an engine whose images, binning and size are chosen: its
// width and height where nothing was added, or where its images tell different extents.
QSize analysedExtent(const CORVSpumKyvo& engine);

// The same share of a picture that shows the whole square, as its photograph does.
QSize extentOfPicture(const CORVSpumKyvo& engine, long lWidth, long lHeight);

// The mask of any resolution without what was added and without pixels that have no value in some image, as the file
// "valid.tif" of the sequence tells; an empty mask, which means every pixel, becomes one where there is any of these.
// Throws std::bad_alloc without memory, and Failure where that file does not serve.
CILImage withoutPadding(const CILImage& mask, const CORVSpumKyvo& engine);
