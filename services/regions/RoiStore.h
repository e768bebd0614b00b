// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/session/RegionFiles.h"

#include "host/tagROIInfo.h"

#include <QList>
#include <QString>
#include <QStringList>

class CORVSequenceDataset;

// The regions of interest of a sequence: those of its datasets, which are the same in all of them unless somebody gave
// one dataset a region of its own.
class RoiStore
{
public:
    // The sequence is the caller's and outlives this.
    explicit RoiStore(CORVSequenceDataset& sequence) : m_sequence(sequence) {}

    // A region, and how many of the datasets have it.
    struct Entry
    {
        tagROIInfo region;
        int images = 0;
    };
    // Regions that differ in name or shape, in the order in which the datasets have them.
    QList<Entry> distinct() const;
    // Without repetitions.
    QStringList names() const;
    // "ROI 1", or the next number that no region has.
    QString freeName() const;

    // Changes of the datasets in memory; save() brings them to the files. Throws Failure when a region cannot be
    // added.
    void add(const tagROIInfo& region);
    // Number of regions removed.
    int remove(const QString& strName);
    // Also takes what is written of regions and cannot be read.
    void removeAll();
    // Number of regions renamed. Throws Failure when the new name is taken or unfit.
    int rename(const QString& strOld, const QString& strNew);

    // Writes the regions into the click infos of all datasets: into all, or, after a failure, into none. The files are
    // locked since before the sequence was opened. Throws Failure with the file and the reason; a click info that
    // would lose lines by being written again is refused.
    void save(RegionFiles& files) const;

private:
    QList<RegionFiles::Change> changes() const;

    CORVSequenceDataset& m_sequence;
    bool m_bRemoveAll = false;
};
