// SPDX-License-Identifier: GPL-3.0-or-later
// Regions of interest in a click info: whatever the text says, what was read survives being written and read again, and
// filling a region over a small image visits no pixel twice.
#include "host/CPLClickInfo.h"
#include "host/CROIManager.h"
#include "platform/orvapi/ROIShape.h"
#include "require.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

constexpr long side = 24;

void fill(const tagROIInfo& region)
{
    std::vector<int> visits(side * side, 0);
    ROIShape::visitRuns(region, side, side, 2.0, [&](long row, long first, long end) {
        require(row >= 0 && row < side && first >= 0 && first < end && end <= side);
        for (long x = first; x < end; ++x) {
            require(++visits[static_cast<std::size_t>(row * side + x)] == 1);
        }
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t size)
{
    const QByteArray text = "[ROIs]\n" + QByteArray(reinterpret_cast<const char*>(pData), static_cast<int>(size));
    CPLClickInfo info;
    if (info.parse(text, QStringLiteral("click.txt")) != 0) {
        return 0;
    }
    CROIManager first;
    first.readROIData(info);
    CPLClickInfo written;
    require(first.saveROIData(&written) == ESTATUS_SUCCESS);
    CROIManager second;
    second.readROIData(written);
    require(second.messages().isEmpty() && second.regions().size() == first.regions().size());
    for (int i = 0; i < first.regions().size(); ++i) {
        const tagROIInfo& region = first.regions()[i];
        require(region.name == second.regions()[i].name);
        require(ROIShape::toText(region) == ROIShape::toText(second.regions()[i]));
        if (size < 4096) {
            fill(region);
        }
    }
    CPLClickInfo again;
    require(second.saveROIData(&again) == ESTATUS_SUCCESS && again.toText() == written.toText());
    return 0;
}
