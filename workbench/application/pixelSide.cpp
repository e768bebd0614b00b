// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/pixelSide.h"

#include "host/CORVDataset.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"

namespace {

constexpr double kMmPerCm = 10.0;

} // namespace

std::optional<double> pixelSideMm(CORVDataset& dataset, int nImageType)
{
    const std::optional<double> side =
        clickNumberValue(dataset.clickInfo, {QString::fromLatin1(ClickKeys::kCameraSystemInfo)}, ClickKeys::kPixelSize);
    const double binning = dataset.getBinningForImage(static_cast<tag_eimagetype>(nImageType));
    if (!side || !(*side > 0.0) || !(binning > 0.0)) {
        return std::nullopt;
    }
    return *side * binning * kMmPerCm;
}
