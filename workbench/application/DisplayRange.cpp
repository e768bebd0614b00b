// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/DisplayRange.h"

#include "host/CILImage.h"
#include "platform/orvimage/MapRange.h"
#include "platform/orvimage/PixelTypes.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kDark = 0.001;
constexpr double kBright = 1.0 - 0.0002;

} // namespace

DisplayRange DisplayRange::whole(const CILImage& image)
{
    const orvimage::FiniteRange range = orvimage::finiteRange(image);
    return {range.minimum, range.maximum};
}

DisplayRange DisplayRange::automatic(const CILImage& image)
{
    const orvimage::ValueRange range = orvimage::quantileRange(image, kDark, kBright);
    const DisplayRange found{range.minimum, range.maximum};
    return found.isEmpty() ? whole(image) : found;
}

DisplayRange DisplayRange::united(const DisplayRange& other) const
{
    return {std::min(minimum, other.minimum), std::max(maximum, other.maximum)};
}

DisplayRange DisplayRange::withMinimum(double dValue) const
{
    return {dValue, std::max(maximum, dValue)};
}

DisplayRange DisplayRange::withMaximum(double dValue) const
{
    return {std::min(minimum, dValue), dValue};
}

int RangeScale::step(double dValue) const
{
    if (m_whole.isEmpty() || std::isnan(dValue)) {
        return 0;
    }
    // Halves, as the span of two doubles may be beyond a double.
    const double fraction = (dValue / 2.0 - m_whole.minimum / 2.0) / (m_whole.maximum / 2.0 - m_whole.minimum / 2.0);
    return static_cast<int>(std::lround(std::clamp(fraction, 0.0, 1.0) * kSteps));
}

double RangeScale::value(int nStep) const
{
    const double fraction = std::clamp(nStep, 0, kSteps) / static_cast<double>(kSteps);
    return m_whole.minimum * (1.0 - fraction) + m_whole.maximum * fraction;
}
