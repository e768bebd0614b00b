// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/MapRange.h"
#include "platform/orvimage/PixelTypes.h"
#include "platform/orvimage/Quantiles.h"

#include <algorithm>

namespace orvimage {

ValueRange robustRange(const CILImage& map)
{
    const ValueRange found = quantileRange(map, 0.001, 1.0 - 0.0002);
    ValueRange range{std::min(0.0, found.minimum), found.maximum};
    if (!(range.maximum > range.minimum)) {
        range.maximum = finiteRange(map).maximum;
    }
    return range;
}

ValueRange quantileRange(const CILImage& image, double low, double high)
{
    const std::array<double, 2> found = quantiles(image, low, high);
    return {found[0], found[1]};
}

} // namespace orvimage
