// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace orv {

// For a file that another library writes by name: a temporary file beside the target, with the target's suffix, which
// commit() renames. The destructor removes it when it was not committed, so a failure leaves the target as it was.
class TemporaryTarget
{
public:
    // Makes the empty temporary file. When that fails (no such folder, no permission, the target is a folder),
    // isValid() is false, path() is empty and error() tells the file and the reason.
    explicit TemporaryTarget(const QString& strTarget);
    ~TemporaryTarget();
    TemporaryTarget(const TemporaryTarget&) = delete;
    TemporaryTarget& operator=(const TemporaryTarget&) = delete;

    bool isValid() const { return !m_strPath.isEmpty(); }
    // Where to write; empty after commit().
    QString path() const { return m_strPath; }
    QString error() const { return m_strError; }

    // Brings the bytes to the disk and gives the file the target's name and, where there was a target, its permissions.
    // Call it once the writer has closed the file. False on failure: the temporary file is removed, the target
    // untouched.
    bool commit();

private:
    bool fail(const QString& strReason);

    QString m_strTarget;
    QString m_strPath;
    QString m_strError;
};

} // namespace orv
