// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"
#include "host/tagROIInfo.h"
#include "services/basis/TextTable.h"

#include <QJsonArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

class CORVSequenceDataset;

// The numbers of regions of interest over the images of a sequence and over the maps of results.
class RoiMeasurement
{
public:
    // Called between images with the fraction done of this step; may throw to stop.
    using Step = std::function<void(double fraction)>;

    // Measures every dataset's own regions, which keep their numbers. Throws Failure when an image cannot be had in
    // that unit, or when it cannot be read which pixels have no value.
    void measureImages(CORVSequenceDataset& sequence, tag_edisplayunit eUnit, const Step& step);
    // Measures these regions over the maps of a folder with a result of the sequence.
    void measureMaps(const CORVSequenceDataset& sequence, const QList<tagROIInfo>& regions, const QString& strFolder,
                     const Step& step);

    // For a terminal: a table of the images, then one of each result's maps.
    QString toText() const;
    // For a file, with all digits; what is not known is empty.
    QString toCsv() const;
    QJsonArray toJson() const;
    // A sentence for each region that holds no pixel of an image.
    QStringList warnings() const;

private:
    struct Row
    {
        int result = -1; // place in m_results; below 0 for an image of the sequence
        QString image;   // click number, or the name of the map
        QString excitation;
        QString emission;
        QString time;  // s, of a temporal sequence
        QString spotX; // of a scan
        QString spotY;
        tagROIInfo region;
    };
    QString sourceOf(const Row& row) const;
    // Of one result, or of the images.
    TextTable tableOf(int nResult) const;

    QList<Row> m_rows;
    QStringList m_results;
    QString m_strUnit; // of the images
    QStringList m_resultUnits;
};
