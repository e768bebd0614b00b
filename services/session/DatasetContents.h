// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

#include <QJsonObject>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

class CORVSequenceDataset;
class CORVDataset;

// What a dataset holds beside the figures of its data image: images, flags, regions of interest, sections.
struct DatasetContents
{
    QList<tag_eimagetype> images; // in the order of their numbers
    QStringList flags;            // of the luminescent image, as far as its section names them: "Saturated", ...
    QStringList setFlags;         // those that are set
    QStringList regions;          // "Back (rectangle)"
    QStringList sections;         // keys, in the order of the file

    static DatasetContents of(CORVDataset& dataset);
    // "images" (objects with type and name), "flags" (an object of booleans), "regions" and "sections".
    QJsonObject json() const;
};

// What the datasets of a sequence hold, added up, and the scans that go with it: key and value of lines for people,
// none where there is nothing to tell. "in 3" stands behind what only three datasets hold.
QList<QPair<QString, QString>> contentsOfSequence(const CORVSequenceDataset& sequence,
                                                  const QList<DatasetContents>& datasets);
