// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

#include <vector>

// The maps that a composite is made of. Everything is borrowed and must outlive the call that it is handed to.
struct CompositeMaps
{
    const XTNT::Matrix<double>& data; // one row a component; pixel p of spot s is column s * pixelsPerSpot() + p
    const std::vector<int>&
        pixelIndices; // place of each pixel in the picture, row by row; empty: the data hold every pixel
    int width = 0;    // of the picture
    int height = 0;
    int spots = 1;

    long long pixelsPerSpot() const
    {
        return pixelIndices.empty() ? static_cast<long long>(width) * height
                                    : static_cast<long long>(pixelIndices.size());
    }
};
