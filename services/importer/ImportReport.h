// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/importer/PreparedImage.h"

#include <QString>
#include <QStringList>
#include <QVector>

// What was imported.
struct ImportReport
{
    QString sequenceId;
    int images = 0;
    long width = 0; // of each image, in pixels, before padding
    long height = 0;
    long side = 0; // of the square that was written
    bool temporal = false;
    bool fluorescence = false;
    bool transillumination = false;
    bool numbered = false;    // channels without wavelengths of filters
    QString unit;             // of the pixels; empty for counts
    QString photographOrigin; // "mean image", or the name of the photograph's file
    long long invalid = 0;    // pixels that have no value in some image and are left out
    bool scaled = false;      // values were divided by a factor that the file tells
    bool dark = false;        // corrections that were made
    bool flat = false;
    QString darkMatching;            // how dark images belong to images (DarkImages); empty without
    QString background;              // the rule; empty without
    QString sizes;                   // what was done with images that differ in size; empty where none did
    QStringList names;               // of the images, in the order of the table
    QVector<PreparedImage> prepared; // what was done with each
    QStringList clickNumbers;        // in the order of the table
    QStringList warnings;            // what was passed over, a sentence each
    bool aborted = false;            // the import failed because the progress callback said so
};
