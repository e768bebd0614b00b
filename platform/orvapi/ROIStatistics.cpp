// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/ROIStatistics.h"

#include "host/CILImage.h"
#include "host/CPLClickInfo.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "platform/orvapi/ROIShape.h"

#include <algorithm>
#include <cmath>

namespace {

// Calls visit(value) for every pixel of the region.
template <typename Visitor>
void visitValues(const tagROIInfo& region, const CILImage& image, double binning, Visitor&& visit)
{
    ROIShape::visitRuns(region, image.m_lWidth, image.m_lHeight, binning, [&](long row, long first, long end) {
        for (long column = first; column < end; ++column) {
            visit(image.value(static_cast<std::size_t>(row * image.m_lWidth + column)));
        }
    });
}

} // namespace

tagROIStatistics measureROI(const tagROIInfo& region, const CILImage& image, const QString& strUnit,
                            std::optional<double> pixelSizeCm)
{
    const double binning = image.m_fBinning > 0.0F ? static_cast<double>(image.m_fBinning) : 1.0;
    tagROIStatistics statistics;
    statistics.unit = strUnit;
    statistics.pixels = 0;
    // The wider type keeps the sum of floats exact enough to take the mean from, and sums of large doubles finite.
    long double sum = 0.0L;
    visitValues(region, image, binning, [&](double value) {
        if (!std::isfinite(value)) {
            ++statistics.invalidPixels;
            return;
        }
        const bool first = statistics.pixels++ == 0;
        statistics.minimum = first ? value : std::min(statistics.minimum, value);
        statistics.maximum = first ? value : std::max(statistics.maximum, value);
        sum += static_cast<long double>(value);
    });
    statistics.sum = static_cast<double>(sum);
    if (pixelSizeCm) {
        statistics.area = static_cast<double>(statistics.pixels) * std::pow(*pixelSizeCm * binning, 2.0);
    }
    if (statistics.pixels == 0) {
        return statistics;
    }
    const long double mean = sum / static_cast<long double>(statistics.pixels);
    long double squares = 0.0L;
    visitValues(region, image, binning, [&](double value) {
        if (std::isfinite(value)) {
            squares += (static_cast<long double>(value) - mean) * (static_cast<long double>(value) - mean);
        }
    });
    statistics.mean = static_cast<double>(mean);
    statistics.deviation = static_cast<double>(std::sqrt(squares / static_cast<long double>(statistics.pixels)));
    return statistics;
}

std::optional<double> pixelSizeOf(const CPLClickInfo& info)
{
    const std::optional<double> size =
        clickNumberValue(info, {QString::fromLatin1(ClickKeys::kCameraSystemInfo)}, ClickKeys::kPixelSize);
    return size && *size > 0.0 ? size : std::nullopt;
}
