// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/ROIStatistics.h"

#include "host/CPLClickInfo.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "platform/orvapi/ROIShape.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

bool hasValue(const CILImage& valid, long row, long column)
{
    return row >= valid.m_lHeight || column >= valid.m_lWidth ||
           valid.value(static_cast<std::size_t>(row * valid.m_lWidth + column)) != 0.0;
}

// Calls visit(value) for every pixel of the region, with NaN for one that has none.
template <typename Visitor>
void visitValues(const tagROIInfo& region, const CILImage& image, double binning, const MeasuredPixels& pixels,
                 Visitor&& visit)
{
    const long width = pixels.size.isEmpty() ? image.m_lWidth : std::min<long>(image.m_lWidth, pixels.size.width());
    const long height = pixels.size.isEmpty() ? image.m_lHeight : std::min<long>(image.m_lHeight, pixels.size.height());
    ROIShape::visitRuns(region, width, height, binning, [&](long row, long first, long end) {
        for (long column = first; column < end; ++column) {
            visit(hasValue(pixels.valid, row, column)
                      ? image.value(static_cast<std::size_t>(row * image.m_lWidth + column))
                      : std::numeric_limits<double>::quiet_NaN());
        }
    });
}

} // namespace

tagROIStatistics measureROI(const tagROIInfo& region, const CILImage& image, const QString& strUnit,
                            std::optional<double> pixelSizeCm, const MeasuredPixels& pixels)
{
    const double binning = image.m_fBinning > 0.0F ? static_cast<double>(image.m_fBinning) : 1.0;
    tagROIStatistics statistics;
    statistics.unit = strUnit;
    statistics.pixels = 0;
    // The wider type keeps the sum of floats exact enough to take the mean from, and sums of large doubles finite.
    long double sum = 0.0L;
    visitValues(region, image, binning, pixels, [&](double value) {
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
    visitValues(region, image, binning, pixels, [&](double value) {
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
