// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QString>

class CORVSequenceDataset;

// Pixels without a value: an import that leaves some out (those that a file marks, or that are not finite, in any of
// its images) sets them to 0 and keeps their places, for all images together, in the file "valid.tif" of the sequence.

// The image of that file, 0 for a pixel without a value; empty where there is no such file. False with "file: reason"
// when it cannot be read.
bool readValidPixels(const CORVSequenceDataset& sequence, CILImage* pStored, QString* pError);
