// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QSize>
#include <QString>

// Reads a mask from a TIFF or PNG file, such as the "mask.png" of a result: pixels above 0 count. It must have the
// shape of the images in the analysis (`extent`, null for the square), or that of the square around them (`nSide`
// pixels at `nBinning`), or a whole multiple of either, so that its pixels fall on those of the data; the result is a
// square float image with its binning set. Throws Failure, also for a mask without any pixel above 0.
CILImage readMaskFile(const QString& strPath, int nSide, int nBinning, const QSize& extent = QSize());
