// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/analysis/MaskRequest.h"

#include <QString>

// Which images and pixels of a sequence an analysis takes, and where its results go.
struct AnalysisRequest
{
    QString sequence;
    QString select; // empty: every image
    MaskRequest mask;
    int unit = -1;   // -1: the best that the images have
    int binning = 0; // 0: the most common of the images
    QString out;     // empty: beside the images
    bool force = false;
};
