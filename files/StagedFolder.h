// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// A folder that comes into being as a whole or not at all: everything is written to a hidden folder beside the target,
// which commit() puts in the target's place. The destructor removes what was not committed, so an error, an abort or an
// exception leaves nothing half written. What a killed program leaves is removed by the next one for the same target;
// what it had moved aside goes back. Every `pError` may be null; it receives one sentence with the path concerned.
class StagedFolder
{
public:
    StagedFolder() = default;
    ~StagedFolder();
    StagedFolder(const StagedFolder&) = delete;
    StagedFolder& operator=(const StagedFolder&) = delete;

    // Prepares `strTarget`, whose parent must exist. A target that exists is refused; with `bForce` commit() replaces
    // it, provided that it is an empty folder or holds a file named `strMarker`, so that no other folder is lost by a
    // slip. Refused once, too, where takeBack() has something to tell.
    bool begin(const QString& strTarget, bool bForce, const QString& strMarker, QString* pError = nullptr);

    // Where to write, with a separator at its end; empty before begin() and after commit().
    QString path() const;
    QString target() const { return m_strTarget; }

    // Puts the folder in its place, its names on the disk. The former one has its place until then: the two are
    // exchanged in one step where the file system can. On failure (a target that has appeared since, without `bForce`,
    // is one) the target is as it was, and what was written is removed; a former folder that could not be put back
    // stays where the message says.
    bool commit(QString* pError = nullptr);

    // Clears up beside `strTarget` after programs that were killed. A folder that one of them had moved aside goes back
    // to its place when that is free. A sentence that tells so, or where such a folder lies; otherwise empty.
    static QString takeBack(const QString& strTarget);
    // The same for a reader of the folder: nothing is touched where the folder is in its place.
    static QString takeBackMissing(const QString& strTarget);
    // The same for every folder that is missing inside `strFolder`; a sentence for each.
    static QStringList takeBackMissingInside(const QString& strFolder);

private:
    bool makeHidden(const QString& strParent, const QString& strName);
    bool exchangeFolders(QString* pError);
    bool renameFolders(bool bReplace, QString* pError);
    void keepHidden();
    void discard();

    QString m_strTarget;
    bool m_bForce = false;
    QString m_strHidden;
    int m_nLock = -1; // the open file "lock" in the hidden folder: held as long as this process lives
};
