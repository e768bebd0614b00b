// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QImage>
#include <QString>

namespace orvimage {

struct ValueRange
{
    double minimum = 0.0;
    double maximum = 0.0;
};

// The range that a picture of a map should show: from 0 (or, where there are negative values, the value that 0.1
// percent of the finite pixels lie below) to the value that 0.02 percent lie above, so that single hot pixels do not
// darken the rest while a probe of a few pixels still counts. Without finite pixels 0 to 0.
ValueRange robustRange(const CILImage& map);

// The values that a share `low` of the finite pixels lie below and a share `high` not above, each 0 to 1, the latter
// not below the former. Without finite pixels 0 to 0.
ValueRange quantileRange(const CILImage& image, double low, double high);

struct RenderMapOptions
{
    int colorTable = 3; // index as in CILPalette::colorTableNames()
    bool reversed = false;
    bool logScale = false;
    bool hasRange = false; // otherwise robustRange() serves
    double minimum = 0.0;
    double maximum = 0.0;
    double opacity = 1.0; // of the map over the photograph, 0 to 1
    bool fade = true;     // the lowest values let the photograph through
    QString title;
    QString unit;  // what the colour bar's numbers are
    int scale = 0; // screen pixels per pixel of the map along a side; 0: so many that the longer side reaches 512
};

// The picture of a map: its colours over the photograph (null: over black), enlarged by whole pixels, with a title and
// a colour bar, on white. The photograph is brought to the map's extent and stretched between its own extremes; one
// with colours keeps them. NaNs show the photograph. An empty map gives a null picture.
QImage renderMapOverPhotograph(const CILImage& map, const CILImage* photograph, const RenderMapOptions& options);

} // namespace orvimage
