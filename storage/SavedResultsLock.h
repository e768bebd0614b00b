// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileLock.h"

#include <QString>

// The right to change an index of saved results.
class SavedResultsLock
{
public:
    // Of the index in this folder. Not held yet.
    explicit SavedResultsLock(const QString& strFolder);

    // Waits for up to 5 s, or until the user aborts. False when it is held by another, or cannot be made, told in the
    // log. Released at the end of the object's life: nothing that waits for the user may happen in between, or the lock
    // could be broken.
    bool obtain();

private:
    QString m_strPath; // of the index
    FileLock m_lock;
};
