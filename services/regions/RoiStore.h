// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tagROIInfo.h"

#include <QByteArray>
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

    // Writes the regions into the click infos of all datasets: into all, or, after a failure, into none. Throws
    // Failure with the file and the reason; a click info that would lose lines by being written again is refused.
    void save() const;

private:
    struct File
    {
        QString path;
        QByteArray before;
        QByteArray after;
    };
    QList<File> changedFiles() const;

    CORVSequenceDataset& m_sequence;
    bool m_bRemoveAll = false;
};
