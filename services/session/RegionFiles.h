// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileLock.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>

// The click infos of a sequence as the regions of interest need them: changed together, in all images or in none.
//
// A change is written beside the files (".ClickInfo.txt.new", and ".ClickInfo.txt.old" for the way back), then told in
// the journal ".regions.journal" of the sequence, and only then put in place by renaming. Up to the journal nothing has
// happened; from the journal on the change is made whatever becomes of this program: settle() finishes what the journal
// tells, or takes it back where it cannot be finished.
class RegionFiles
{
public:
    // A click info before and after a change.
    struct Change
    {
        QString path;
        QByteArray before;
        QByteArray after;
    };

    // Of the sequence in this folder, or with this info file, which is there.
    explicit RegionFiles(const QString& strSequence);

    // Obtains the right to change the regions, waiting for up to 30 s, and settles an earlier change. Click infos are
    // read after that, and the right is held until the end of the object's life. `goesOn` is asked while it waits.
    // Throws Failure.
    void lock(const std::function<bool()>& goesOn);
    // Who takes long between lock() and write() calls this now and then.
    void keep() { m_lock.keep(); }

    // Makes the change. Throws Failure with the file and the reason when it cannot be made: nothing is changed then.
    // A click info that a link leads to outside the sequence is refused. Call lock() first.
    void write(const QList<Change>& changes);

    // For commands that only read: settles a change that ended half way, unless its program is at work. A sentence when
    // the images may differ in their regions, because it could not be settled; else empty. `goesOn` is asked while it
    // waits for a program at work.
    static QString settle(const QString& strSequence, const std::function<bool()>& goesOn);

private:
    struct Entry;

    QString journalPath() const;
    QList<Entry> entriesOf(const QList<Change>& changes) const;
    void stage(const QList<Entry>& entries, const QList<Change>& changes) const;
    QList<Entry> readJournal() const;
    void settleJournal() const;
    bool putInPlace(const QList<Entry>& entries, bool bForward, QString* pError) const;
    bool canBePutInPlace(const QList<Entry>& entries, bool bForward) const;
    void removeBeside(const QList<Entry>& entries) const;

    QString m_strFolder; // with a separator at its end, free of links
    FileLock m_lock;
};
