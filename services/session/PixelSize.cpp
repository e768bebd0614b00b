// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/PixelSize.h"

#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ROIStatistics.h"

std::optional<double> pixelSizeOfSequence(const CORVSequenceDataset& sequence)
{
    for (const auto* dataset : sequence.getDatasets()) {
        if (const std::optional<double> size = pixelSizeOf(dataset->clickInfo)) {
            return size;
        }
    }
    return std::nullopt;
}
