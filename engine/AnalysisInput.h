// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QString>
#include <QStringList>

// What the user settles before an analysis, apart from the selection of images: filled from a window or from the
// options of a command line.
struct AnalysisInput
{
    // Pixels above 0 count as data (see MaskPixels). Square like the images, with its binning set; an empty image is no
    // mask.
    CILImage maskImage;
    // One name per component to resolve.
    QStringList componentNames;
    // Whether constraints are suggested from the names.
    bool useConstraints = true;
    // Whether the decay of a Cherenkov isotope is corrected for, and its half life and name.
    bool decayCorrection = false;
    double halfLifeSeconds = 0.0;
    QString isotope;
    // Whether a PCA ends without a result, ahead of its decomposition, where the images read for it turn out unfit
    // (ImageFindings::isFitForPca). A window runs it on whatever was selected.
    bool endPcaOfUnfitImages = false;
};
