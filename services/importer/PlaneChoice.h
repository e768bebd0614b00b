// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/importer/PageProjection.h"

#include <QString>
#include <QVector>

#include <optional>

// Where a page of a file with several dimensions stands in them, from 0.
struct PlanePosition
{
    int c = 0; // channel
    int z = 0; // depth
    int t = 0; // time
};

// The positions of a file's pages, as its metadata tell them, and how many there are in each dimension.
struct FilePlanes
{
    QVector<std::optional<PlanePosition>> pages; // none of a page that nothing is told of
    PlanePosition sizes{1, 1, 1};
};

// Which of the planes of files with several dimensions make the sequence. Depth is no channel, and a sequence is either
// spectral or temporal: what a file leaves open must be said.
struct PlaneChoice
{
    int z = 0;         // plane in depth, from 1; 0: not said
    int t = 0;         // time, whose channels are taken
    int c = 0;         // channel, whose times are taken
    bool each = false; // every plane is an image, whatever it is
    // In place of a number: all planes in depth, or all times, make one image of each channel.
    PageProjection::Kind projection = PageProjection::Kind::None;
    bool projectsDepth = false;
    bool projectsTimes = false;

    // Why the planes of the file cannot be taken so: more than one in depth, several channels at several times, a
    // number that there is not. Empty where they can.
    QString reasonAgainst(const PlanePosition& sizes) const;
    // Whether a page is one of those chosen.
    bool takes(const std::optional<PlanePosition>& page) const;
    // The pages, from 0, that make an image each, in the order of the file; several of one are projected. Of a file
    // that tells no dimensions all make one, where depths or times are projected.
    QVector<QVector<int>> images(const FilePlanes& planes) const;
};
