// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/RoiRecord.h"

#include <QList>
#include <QString>

// The regions of interest that were drawn on the open images of a result.
struct ResultRegions
{
    // One record for each image with regions, in the order of the loaded datasets.
    QList<RoiRecord> records;
    // Whether an image of a result of this sequence is open at all, with regions or without.
    bool hasResultImage = false;
};

// Looks through the loaded datasets for those whose click info tells, without regard to case, that they were unmixed from the
// sequence. The first that does not name its concentration map ends the collection.
ResultRegions collectResultRegions(const QString& strSeqId);
