// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// What was chosen or dropped, as the importer takes it: one folder or file, and of a folder the files that were meant.
struct ImportSource
{
    QString path;      // empty when there is none
    QStringList files; // of the folder; empty for all
    QString error;     // when the paths do not go together

    static ImportSource of(const QStringList& paths);
};

// Where a sequence of these images may be written: a folder beside them that is not there yet, or in `strFallback` when
// nothing can be written beside them. Empty without a source.
QString proposedSequenceFolder(const QString& strSource, const QString& strFallback);
