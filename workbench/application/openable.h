// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// What a path that the user names or drops is.
enum class Openable
{
    Sequence, // the folder of one, or its info file
    Dataset,  // the folder of a single dataset, or its click info
    Images,   // something that the importer may take: a file, or a folder of images
    Missing   // there is nothing
};

// By names alone; no file is read. A folder without any of this counts as one of images.
Openable openableKind(const QString& strPath);
