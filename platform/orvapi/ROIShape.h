// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tagROIInfo.h"

#include <QString>

#include <functional>

// The geometry of a region of interest, and its text. Coordinates as in tagROIInfo.
namespace ROIShape {

// An outline of more points is refused: it takes time to fill and nobody drew it.
constexpr int kMaximumPoints = 10000;
// No coordinate lies farther out.
constexpr double kFarthest = 1e9;

// "rect:x,y,width,height", "ellipse:" with the rectangle around it, "polygon:x1,y1,x2,y2,..." or "freehand:" with the
// outline. Numbers in the C locale with as many digits as it takes to read the same numbers again.
QString toText(const tagROIInfo& info);
// Reads such a text, the kind without regard to case. False with the reason, *pInfo is then as it was; else its
// geometry is replaced and the rest kept.
bool fromText(const QString& strText, tagROIInfo* pInfo, QString* pError);

// Why the geometry is none: numbers that are not finite or too large, no extent, too few or too many points, all of
// them on a line. Empty for a good one.
QString reasonAgainst(const tagROIInfo& info);

// The rectangle around it.
struct Bounds
{
    double left = 0.0;
    double top = 0.0;
    double right = 0.0;
    double bottom = 0.0;
};
Bounds boundsOf(const tagROIInfo& info);

// Calls visit(row, first, end) for runs of pixels [first, end) of an image of that size and binning, none of them
// empty: row by row from the top, from the left, each pixel of the region once. The geometry must be a good one.
using RunVisitor = std::function<void(long row, long first, long end)>;
void visitRuns(const tagROIInfo& info, long width, long height, double binning, const RunVisitor& visit);

// Number of pixels of such an image.
qint64 pixelCount(const tagROIInfo& info, long width, long height, double binning);

} // namespace ROIShape
