// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

class LibrariesLock;
class SpectrumPlotParams;

// The libraries of the user's data folder, as files. Operations throw Failure and leave everything as it was when they
// cannot do all that is asked. Those that change something are done under the caller's lock.
namespace SavedLibraries {

// Throws where a library cannot have that name: one without a place in the folder, or that would be listed otherwise.
void checkName(const QString& strName);

// Writes a library; one of that name is replaced only with `bReplace`. Returns the file.
QString save(const LibrariesLock& lock, const QString& strName, QList<SpectrumPlotParams*> spectra,
             const QString& strNote, bool bReplace);

// The file of a saved library of that name.
QString fileOf(const QString& strName);

// Gives a library another name.
void rename(const LibrariesLock& lock, const QString& strName, const QString& strNewName, bool bReplace);
// Gives spectra of a library other names, all at once; pairs of old and new. All names are then different.
void renameSpectra(const LibrariesLock& lock, const QString& strName, const QList<QPair<QString, QString>>& names);

void remove(const LibrariesLock& lock, const QStringList& names);
// Takes spectra out of a library, of which one remains at least. Returns how many do.
int removeSpectra(const LibrariesLock& lock, const QString& strName, const QStringList& names);

} // namespace SavedLibraries
