// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

namespace orvimage {

struct ValueRange
{
    double minimum = 0.0;
    double maximum = 0.0;
};

// The range that a picture of a map should show: from 0 (or, where there are negative values, the value that 0.1
// percent of the finite pixels lie below) to the value that 0.02 percent lie above, so that single hot pixels do not
// darken the rest while a probe of a few pixels still counts. Without finite pixels 0 to 0.
ValueRange robustRange(const CILImage& map);

// The values that a share `low` of the finite pixels lie below and a share `high` not above, each 0 to 1, the latter
// not below the former. Without finite pixels 0 to 0.
ValueRange quantileRange(const CILImage& image, double low, double high);

} // namespace orvimage
