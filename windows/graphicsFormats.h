// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// The formats in which windows export what they show.
namespace graphicsFormats {

// The filters of the question for a file, and the suffix of each.
QStringList filters();
QStringList suffixes();

// What of a chosen file is remembered as the user's format: all that follows the first dot of its name, without the
// folder. So "mouse 1.5.png" makes "5.png" the format, which puts no filter first. (Settings hold it so.)
QString rememberedFormat(const QString& strFile);

// Whether the last dot of the name begins ".dcm", in letters of any case.
bool isDicom(const QString& strFile);

} // namespace graphicsFormats
