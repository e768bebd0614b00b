// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/exportRegions.h"

#include "host/CORVDataset.h"
#include "host/CROIManager.h"

ESTATUS takeOverRegions(CORVDataset& source, CORVDataset& map, tag_edisplayunit eUnit)
{
    QList<tagROIInfo> regions = source.roiManager()->regions();
    QList<tagROIInfo*> borrowed;
    for (tagROIInfo& region : regions) {
        borrowed.append(&region);
    }
    // The numbers were the source's.
    map.roiManager()->createROIFromFile(&borrowed, true, false);
    return regions.isEmpty() ? ESTATUS_SUCCESS : map.roiManager()->measure(eUnit);
}
