// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <limits>

// What a region of interest holds of one image. Pixels that are NaN or infinite are left out of every number and
// counted apart.
struct tagROIStatistics
{
    static constexpr double unknown() { return std::numeric_limits<double>::quiet_NaN(); }

    bool isMeasured() const { return pixels >= 0; }

    QString unit;             // of the image, as shown: "Counts", "Radiance", ...
    qint64 pixels = -1;       // that count; below 0 when nothing was measured
    qint64 invalidPixels = 0; // left out
    double area = unknown(); // of the pixels that count, cm^2 in the object plane; NaN when the pixel size is not known
    double sum = unknown();  // 0 of no pixel
    double mean = unknown(); // this and what follows: NaN of no pixel
    double minimum = unknown();
    double maximum = unknown();
    double deviation = unknown(); // square root of the mean squared distance from the mean; 0 of one pixel
};
