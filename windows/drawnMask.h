// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

// What was drawn over a displayed image: a crop's corners in view pixels, in any order, and how the view shows the
// image.
struct DrawnShape
{
    int x1 = 0;
    int y1 = 0;
    int x2 = 0;
    int y2 = 0;
    float fImageWidth = 0.0F; // view pixels that the displayed image takes up
    float fImageHeight = 0.0F;
    bool bLegend = false;  // the view shows a legend: both sides count 25 view pixels more
    bool bEllipse = false; // the ellipse inside the rectangle instead of the rectangle
};

// Makes `mask` a byte image of the size and binning: 1 inside the shape, 0 outside. The crop is brought to the image in
// integer arithmetic; its height counts from the bottom row. The bounds are strict: columns left + 1 to left + width -
// 1 and rows H - top - height + 1 to H - top - 1, so the rectangle comes out one short in both directions.
//
// Nothing is inside when x2 or y1 is 0, when the crop has no width or no height, and when the displayed image has none
// (below one view pixel, or no number). False when the size is below 1 or memory runs out; the mask is then empty.
bool makeDrawnMask(long lWidth, long lHeight, float fBinning, const DrawnShape& shape, CILImage& mask);

// For the size and binning of a photograph, which may not be the mask itself.
bool makeDrawnMask(const CILImage& photo, const DrawnShape& shape, CILImage& mask);

// The shape whose mask, on an image of nImageWidth x nImageHeight pixels, covers `nWidth` columns from `nLeft` and
// `nHeight` rows from `nTop`, row 0 on top as in the pixels; the ellipse is centred in them. Parts that stick out of
// the image are cut off; sides below 1 cover nothing. For masks that are given by numbers instead of drawn.
DrawnShape shapeOverPixels(int nImageWidth, int nImageHeight, int nLeft, int nTop, int nWidth, int nHeight,
                           bool bEllipse);
