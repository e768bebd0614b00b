// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace orv {

// A file that tells that the owner of something lives: it is held as long as this object lives, and no longer than the
// process, however that ends. A record that nobody holds is that of a program that was killed.
class OwnerRecord
{
public:
    OwnerRecord() = default;
    ~OwnerRecord() { end(); }
    OwnerRecord(const OwnerRecord&) = delete;
    OwnerRecord& operator=(const OwnerRecord&) = delete;

    // Makes the file, or takes over that of an owner who is gone. False with errno: EEXIST where one lives.
    bool make(const QString& strFile);
    // Takes over what this user's killed program has left. False where there is no such file, or its owner lives.
    bool takeAbandoned(const QString& strFile);
    // Removes the file.
    void end();

private:
    QString m_strFile;
    int m_nFile = -1;
};

} // namespace orv
