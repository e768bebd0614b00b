// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <memory>

class QTemporaryDir;

// A folder that comes into being as a whole or not at all: everything is written to a hidden folder beside the target,
// which commit() renames. The destructor removes what was not committed, so an error, an abort or an exception leaves
// nothing half written. Every `pError` may be null; it receives one sentence with the path concerned.
class StagedFolder
{
public:
    StagedFolder();
    ~StagedFolder();
    StagedFolder(const StagedFolder&) = delete;
    StagedFolder& operator=(const StagedFolder&) = delete;

    // Prepares `strTarget`, whose parent must exist. A target that exists is refused; with `bForce` commit() replaces
    // it, provided that it is an empty folder or holds a file named `strMarker`, so that no other folder is lost by a
    // slip.
    bool begin(const QString& strTarget, bool bForce, const QString& strMarker, QString* pError = nullptr);

    // Where to write, with a separator at its end; empty before begin() and after commit().
    QString path() const;
    QString target() const { return m_strTarget; }

    // Puts the folder in its place. On failure (a target that has appeared since, without `bForce`, is one) the target
    // is as it was, and what was written is removed.
    bool commit(QString* pError = nullptr);

private:
    QString m_strTarget;
    bool m_bForce = false;
    std::unique_ptr<QTemporaryDir> m_pHidden;
};
