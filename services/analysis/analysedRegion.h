// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tagROIInfo.h"

#include <QString>

#include <vector>

class CORVSpumKyvo;

// Regions of interest as the options of an analysis name them. Throw Failure; messages begin with `strOption`.

// "roi:NAME", a region that is kept with images of the engine's sequence; or "rect:", "ellipse:", "polygon:" or
// "freehand:" with its numbers in pixels of the analysis, on the image. The engine knows its binning and size.
tagROIInfo analysedRegion(const QString& strOption, const QString& strText, const CORVSpumKyvo& engine);

// What is wrong with such a text by itself; empty for a good one.
QString reasonAgainstRegionText(const QString& strText);

// The pixels of the analysis in it, row by row, at least one; none lies in the padding of the images.
std::vector<int> pixelsOfRegion(const QString& strOption, const tagROIInfo& region, const CORVSpumKyvo& engine);
