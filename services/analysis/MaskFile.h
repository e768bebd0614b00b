// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QString>

// Reads a mask from a TIFF file: pixels above 0 count. It must be square, with the side of the analysis (`nSide` pixels
// at `nBinning`) or a whole multiple of it, so that its pixels fall on those of the data; the result is a float image
// with its binning set. Throws Failure, also for a mask without any pixel above 0.
CILImage readMaskFile(const QString& strPath, int nSide, int nBinning);
