// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

#include <QString>

class CORVDataset;

namespace imageFile {

// Where an image of the dataset lies; for the main data image the luminescent one stands where there is none. Empty
// where there is no file.
QString pathOf(const CORVDataset& dataset, tag_eimagetype eType);

// Why an image of that file could not be had, for people; the dataset tells it to the log alone. Reads the file, on any
// thread.
QString reasonAgainst(const QString& strPath);

} // namespace imageFile
