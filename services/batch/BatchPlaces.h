// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Where the files of a batch lie: a folder of results a sequence and the overall files beside them, and in a hidden
// folder what the next batch needs to go on.
class BatchPlaces
{
public:
    // `strFolder` is made absolute.
    explicit BatchPlaces(const QString& strFolder);

    // With a separator at its end.
    const QString& folder() const { return m_strFolder; }
    QString stateFolder() const { return m_strFolder + QStringLiteral(".batch/"); }
    // What a batch holds a lock of.
    QString batch() const { return stateFolder() + QStringLiteral(".batch"); }

    QString results(const QString& strName) const { return m_strFolder + strName; }
    // A record tells how the sequence ended; its path is also what the sequence is locked by.
    QString record(const QString& strName) const { return stateFolder() + strName + QStringLiteral(".json"); }
    // What a scheduler tells of a job that ended without a word of its own.
    QString ended(const QString& strName) const { return stateFolder() + strName + QStringLiteral(".ended"); }

    QString csv() const { return m_strFolder + QStringLiteral("batch.csv"); }
    QString json() const { return m_strFolder + QStringLiteral("batch.json"); }
    QString html() const { return m_strFolder + QStringLiteral("batch.html"); }

    // Makes the folders that are missing. Throws Failure.
    void make() const;

private:
    QString m_strFolder;
};
