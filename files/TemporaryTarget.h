// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace orv {

// A temporary file beside a target, hidden and with the target's suffix, which commit() puts in the target's place. The
// destructor removes it when it was not committed, so a failure leaves the target as it was. A program that is killed
// leaves the temporary file; the next one for the same target removes it.
class TemporaryTarget
{
public:
    // Makes the empty temporary file. When that fails (no such folder, no permission, the target is a folder or may not
    // be written to), isValid() is false, path() is empty and error() tells the file and the reason.
    explicit TemporaryTarget(const QString& strTarget);
    ~TemporaryTarget();
    TemporaryTarget(const TemporaryTarget&) = delete;
    TemporaryTarget& operator=(const TemporaryTarget&) = delete;

    bool isValid() const { return !m_strPath.isEmpty(); }
    // Where to write, for a library that opens files by name; empty after commit().
    QString path() const { return m_strPath; }
    QString error() const { return m_strError; }

    // Appends to the file. False on failure, after which the file is gone.
    bool write(const QByteArray& bytes);

    // Brings the bytes to the disk and gives the file the target's name and, where there was a target, its permissions;
    // the name is on the disk too when this returns. Call it once any other writer has closed the file. False on
    // failure, a disk that refuses the bytes among them: the temporary file is removed, the target is what it was.
    bool commit();
    // The same for a target that may not exist yet: where it does by now, it stays, and targetExists() is true.
    bool commitNew();
    bool targetExists() const { return m_bTargetExists; }

private:
    bool syncAndPlace(bool (TemporaryTarget::*place)());
    bool create(const QString& strName);
    bool putInPlace();
    bool putInFreePlace();
    bool fail(const QString& strReason);
    void discard();

    QString m_strTarget;
    QString m_strPath;
    QString m_strError;
    bool m_bTargetExists = false;
    int m_nFile = -1; // holds the lock that tells others that this process lives
};

// Removes the temporary files that this user's killed programs have left in a folder, whatever their targets: a target
// that has the moment in its name is never written again.
void removeAbandonedTargets(const QString& strFolder);

} // namespace orv
