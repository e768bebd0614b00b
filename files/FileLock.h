// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLockFile>
#include <QString>

#include <functional>

// The right to change a file, or what a name stands for, held by one of all programs at a time: the file "NAME.lock"
// beside it. A lock whose program is gone, or that nobody has kept for 30 s (one without content: made 30 s ago), is
// broken. Released at the end of the
// object's life.
class FileLock
{
public:
    enum class Outcome
    {
        Obtained,
        Refused, // held by another, or cannot be made: reason() tells
        Stopped  // by `goesOn`
    };

    // Of the lock's file, behind the path of what it is for.
    static QLatin1String suffix() { return QLatin1String(".lock"); }

    // Of what lies at this path. Not held yet.
    explicit FileLock(const QString& strPath);

    // Waits for up to that long; `goesOn` is asked every 10 ms and may be empty.
    Outcome obtain(int nMilliseconds, const std::function<bool()>& goesOn = {});
    // Who holds the lock for long calls this every few seconds, or it could be broken.
    void keep();
    void release();

    bool isHeld() const { return m_lock.isLocked(); }
    // After a refusal: half a sentence that names who holds it, or why it cannot be made.
    QString reason() const;

private:
    QString m_strLock; // path
    QLockFile m_lock;
};
