// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/importer/Figure.h"
#include "services/importer/PlaneChoice.h"

#include <QString>
#include <QStringList>
#include <QVector>

// What ImageJ writes into a TIFF file's first description ("ImageJ=1.53", "images=", "channels=", "slices=", "frames=",
// "finterval=", "tunit=") and into the labels of slices, by page: times of frames, and whatever the labels tell.
class ImageJMetadata
{
public:
    static bool isImageJ(const QString& strDescription);

    void parse(const QString& strDescription, const QStringList& labels, int nPages);

    const QVector<QVector<Figure>>& pages() const { return m_pages; }
    // By page as well: where it stands among channels, depths and times. What ImageJ calls slices of a plain stack is
    // no depth: it calls any stack so.
    const FilePlanes& planes() const { return m_planes; }
    // Whether the images are said to be a series of times, whether or not their seconds are told.
    bool hasFrames() const { return m_bFrames; }
    // Figures that cannot be used or fit the file badly, a sentence each.
    const QStringList& doubts() const { return m_doubts; }

private:
    void placePlanes(int nChannels, int nSlices, int nFrames, int nPages);

    QVector<QVector<Figure>> m_pages;
    QStringList m_doubts;
    FilePlanes m_planes;
    bool m_bFrames = false;
};
