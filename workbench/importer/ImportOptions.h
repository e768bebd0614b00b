// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// What to import, and where to.
struct ImportOptions
{
    QString source; // a folder of images, a TIFF file, or an ENVI cube (its header or its data file)
    QString table;  // "images.csv": which image is what
    QString
        photo; // photograph of the same extent, in any format that Qt or libtiff reads; empty: the mean image serves
    QString output;     // folder of the new sequence; its parent must exist
    QString name;       // name of the sequence; empty: that of the output folder
    bool force = false; // replace an output that exists (a sequence or an empty folder)
};
