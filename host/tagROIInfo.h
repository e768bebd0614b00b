// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tagROIStatistics.h"

#include <QList>
#include <QPair>
#include <QString>
#include <QVector>

enum tag_eroishape
{
    ROISHAPE_RECTANGLE = 0,
    ROISHAPE_ELLIPSE = 1,
    ROISHAPE_POLYGON = 2,
    ROISHAPE_FREEHAND = 3 // an outline as it was drawn
};

// A region of interest.
//
// Coordinates are pixels of the unbinned sensor, x to the right and y down, from the outer corner of the image's first
// pixel: a region keeps its place when an image comes at another binning. Pixel (i, j) of an image with binning B has
// its centre at
// ((i + 1/2) B, (j + 1/2) B) and belongs to a region that holds this centre. A centre on the upper or left edge is
// inside, one on the lower or right edge is not, so that regions side by side share no pixel. Polygon and free-hand
// outline close by themselves; where an outline crosses itself, all that it runs around is inside (the winding number
// is not 0).
struct tagROIInfo
{
    struct Point
    {
        double x = 0.0;
        double y = 0.0;
    };

    QString name;
    tag_eroishape shape = ROISHAPE_RECTANGLE;
    // Of the rectangle, or of the one around the ellipse.
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;
    // Of the polygon or the outline; empty for the others.
    QVector<Point> points;
    tagROIStatistics statistics;
    // What else a file tells of the region, by the end of its key; kept when it is saved.
    QList<QPair<QString, QString>> extra;
};
