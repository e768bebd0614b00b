// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// Names that users give to files of an export.
namespace exportName {

// The longest name of a file, without its folder, in characters.
inline constexpr int longest = 185;

// The path with a suffix. One of `suffixes` (small letters, no dot), in letters of any case, stays; otherwise the first
// of them that the filter in use names ("*.csv") is appended, and with none of them the name stays. A dot at the end of
// a name without a suffix is dropped.
QString withSuffix(const QString& strPath, const QString& strFilter, const QStringList& suffixes);

bool isTooLong(const QString& strPath);
// What to tell of such a name.
QString tooLongText(const QString& strPath);

// The question before a file is replaced.
QString overwriteText(const QString& strPath);

// Whether a table of plot data can be written under that name: one with ".csv" anywhere, in letters of any case.
bool isTable(const QString& strPath);

// The path that a library of spectra goes to: its suffix in small letters, ".csv" if it has none.
QString ofLibrary(const QString& strPath);
// Whether the list of libraries will show it.
bool isListedLibrary(const QString& strPath);

} // namespace exportName
