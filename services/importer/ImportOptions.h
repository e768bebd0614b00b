// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/importer/BackgroundRule.h"
#include "services/importer/CommonSize.h"

#include <QByteArray>
#include <QString>
#include <QVector>

// What to import, and where to.
struct ImportOptions
{
    // A folder of images, a TIFF file, an ENVI cube (its header or its data file), or a CSV cube.
    QString source;
    QString table;        // "images.csv": which image is what
    QByteArray tableText; // such a table as text, in place of the file; it is kept in the new sequence as "images.csv"
    // Photograph of the same extent, in any format that Qt or libtiff reads; empty: the mean image serves.
    QString photo;
    // To subtract: whatever DarkImages::open() takes, one for all images or one each; empty: none.
    QString dark;
    QString flat;                      // TIFF file to divide by, normalised to a mean of 1; empty: none
    BackgroundRule background;         // what is subtracted from each image after dark image and flat field
    SizeRule sizes = SizeRule::Refuse; // what becomes of images that differ in size
    QVector<double> exposures;         // s, above 0: none, one for all, or one an image in the table's order
    double pixelSize = 0.0;            // um in the object plane, above 0; 0: not known
    QString output;                    // folder of the new sequence; its parent must exist
    QString name;                      // name of the sequence; empty: that of the output folder
    // Most memory in bytes that images may take by their headers; it is estimated before a pixel is read.
    qint64 maxMemory = qint64{2} << 30;
    bool skipInvalid = false; // leave pixels out that are not finite in an image, in place of refusing the image
    bool follow = false;      // read files that the table or an ENVI header names outside its folder
    bool force = false;       // replace an output that exists (a sequence without saved results, or an empty folder)
};
