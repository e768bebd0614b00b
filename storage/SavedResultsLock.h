// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLockFile>
#include <QString>

// The right to change an index of saved results, held by one of all programs at a time: the file "SPUM.txt.lock" beside
// it.
class SavedResultsLock
{
public:
    // Of the index in this folder. Not held yet.
    explicit SavedResultsLock(const QString& strFolder);

    // Waits for up to 5 s. A lock whose program is gone, or that is older than 30 s, is broken. False when it is held
    // by another, or cannot be made, told in the log. Released at the end of the object's life: nothing that waits for
    // the user may happen in between, or the lock could be broken.
    bool obtain();

private:
    void tellReason() const;

    QString m_strPath; // of the index
    QLockFile m_lock;
};
