// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace orvimage {

// A file that is written beside its target and takes the target's place when it is complete. Not committed, it is removed
// and the target stays as it was.
class StagedFile
{
public:
    // A target that is a link is followed.
    explicit StagedFile(const QString& path);
    StagedFile(const StagedFile&) = delete;
    StagedFile& operator=(const StagedFile&) = delete;
    ~StagedFile();

    // Creates the file; false with reason() set.
    bool open();
    // The open file. It stays this object's; hand out duplicates.
    int descriptor() const { return m_descriptor; }
    bool write(const QByteArray& bytes);
    // Puts all on disk, closes and renames. False with reason() set, the target is then as it was.
    bool commit();
    const QString& reason() const { return m_reason; }

private:
    bool failWithErrno();

    QByteArray m_target;
    QByteArray m_temporary;
    int m_descriptor = -1;
    QString m_reason;
};

} // namespace orvimage
