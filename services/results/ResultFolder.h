// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QJsonObject>
#include <QString>

// What the readers of a folder of results share. `strFolder` ends with its separator. Both throw Failure that names
// the file.
namespace ResultFolder {

// The object of "summary.json". A folder without it is none with results; a text that is no JSON object is told with
// its line. `strShown` is the folder as the user gave it.
QJsonObject readSummary(const QString& strFolder, const QString& strShown);

// "mask.png" in grey values; null when there is none, all pixels were then analysed. A mask that cannot be read or is
// not of the maps' size is refused: without it, pixels would count that were not analysed.
QImage readMask(const QString& strFolder, long width, long height);

} // namespace ResultFolder
