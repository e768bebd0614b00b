// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

#include <QPoint>
#include <QSize>

#include <optional>
#include <vector>

// The numbers behind the pictures of a result: maps over a photograph have its size and its colours.
struct UnmixedValues
{
    XTNT::Matrix<double> data; // a row a component; a column a pixel of a spot, spot after spot; shared
    std::vector<int> pixels;   // ascending places in the map (row-major); none: the columns are the map's in turn
    QSize size;                // of the map
    int spots = 1;

    // The place in the map that a pixel of a picture of it shows.
    QPoint place(const QPoint& pixel, const QSize& picture) const;
    // What a tile shows at a place: of each spot there is a tile a component and one of all, which has no value. Nor is
    // there one where nothing was unmixed.
    std::optional<double> value(int nTile, const QPoint& place) const;
};
