// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

class CORVDataset;

// The factor that turns a count of the dataset's image of that type into the unit ("counts" gives 1, "photons"
// p/s/cm^2/sr) at the image's own binning, exposure and f-number. False when the calibration data are missing, the
// image is stored as efficiency (it has no counts), there is no such image, or the unit is unknown; the output is then
// untouched.
bool ORV_getImageIntensityCalibrationValue(tag_eimagetype eType, const CORVDataset* pDataset, const char* pUnit,
                                           double* pValue);
