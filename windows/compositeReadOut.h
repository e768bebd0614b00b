// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"
#include "host/ReadOut.h"
#include "windows/CompositeMaps.h"

#include <QPoint>
#include <QString>

#include <optional>

// What lies below a pixel of the whole composite (compositePicture()) in one of its layers: in a component, by the row
// of its map, or, with a row behind the last one, in the background. The pixel that is told is that of the layer's own
// image, before it was enlarged; outside the mask it has no value. Nothing beside that image.
//
// `nUnit` is that of the maps (0 counts, 1 radiance, 2 radiant efficiency, 3 efficiency); the background has counts.
std::optional<ReadOut> compositeReadOut(const CompositeMaps& maps, int nSpot, const CILImage& background, int nRow,
                                        const QString& strLabel, int nUnit, const QPoint& pixel);
