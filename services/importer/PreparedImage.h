// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

class CPLClickInfo;
class CPLSection;

// What an import has done with the pixels of one image.
struct PreparedImage
{
    QString dark;                     // name of the image that was subtracted; empty without
    std::optional<double> background; // what was subtracted from all pixels, in the image's unit
    QString rule;                     // how that was found; empty without
    long long negatives = 0;          // pixels that are below 0 behind either
    int binned = 1;                   // pixels along a side that became one; not kept with the image
    QString projection;               // PageProjection::text(); empty for one that is none

    bool isSubtracted() const { return !dark.isEmpty() || background.has_value(); }

    // Keys "projection", "dark", "background", "backgroundRule", "negativePixels"; empty where nothing was done.
    QJsonObject json() const;
    // Appends the entries to the section of the image.
    void write(CPLSection& section) const;
    // What an image tells of it.
    static PreparedImage of(const CPLClickInfo& info);
};
