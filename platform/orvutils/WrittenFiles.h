// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// What a program has written into a folder, so that it can tell later what in there is not its own. The list
// ".written.json" in the folder has the size of each file and, of those up to 1 MiB, the SHA-256.
namespace orv {

// Lists all files of the folder and of those below it. Every file is written by then. False with one sentence in
// *pError (may be null).
bool noteWrittenFiles(const QString& strFolder, QString* pError = nullptr);

// What lies in the folder and was not noted there, or has been changed since, as paths relative to it in the order of
// their names, the latter with " (changed)" behind. Links are nobody's own; folders that hold no file are not told.
// Without a list every file is told. What `spared` names is left out: files, by such a path, and what lies in
// folders directly below.
QStringList foreignFiles(const QString& strFolder, const QStringList& spared = {});

// Why a folder cannot be replaced that holds these; empty for none.
QString reasonAgainstReplacing(const QString& strFolder, const QStringList& foreign);

} // namespace orv
