// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/RoiRecord.h"

#include <QList>
#include <QString>

#include <optional>

class CORVDataset;

// The regions of interest that were drawn on the open images of a result.
struct ResultRegions
{
    // One record for each image with regions, in the order of the loaded datasets.
    QList<RoiRecord> records;
    // Whether an image of a result of this sequence is open at all, with regions or without.
    bool hasResultImage = false;
};

// Looks through the loaded datasets for those whose click info tells, without regard to case, that they were unmixed
// from the sequence. The first that does not name its concentration map ends the collection.
ResultRegions collectResultRegions(const QString& strSeqId);

// The regions of an image of a result that is about to be closed, and the sequence whose result has to keep them.
struct ClosingRegions
{
    QString sequenceId;
    RoiRecord record; // without entries when the image has no regions
};

// From what the dataset's click info tells of sequence and concentration map. Nothing for null, and for a dataset that
// does not name both.
std::optional<ClosingRegions> closingRegions(CORVDataset* pDataset);
// Appends the record, in place of all whose map has the same number. A map's number is its name as QString::toInt()
// reads it, so all names that are no number are one: 0.
void replaceRegions(QList<RoiRecord>& records, const RoiRecord& record);

// Gives an image of a result the regions that the records hold of its concentration map, in place of its own. These
// records go, as the open image has the regions from then on: a save would find them twice, and one that the user
// removes would come back. False, and nothing changes, when the records hold none.
bool takeBackRegions(QList<RoiRecord>& records, CORVDataset& map);
