// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/transfer/ExportPlace.h"

#include "files/deleteFolderTree.h"
#include "services/basis/Failure.h"
#include "services/basis/JobMonitor.h"
#include "storage/exportNames.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <unistd.h>

namespace {

constexpr int lockMilliseconds = 30000;

const QLatin1String ownerSuffix(".owner");

// The folder stays when it holds anything else.
void removeDatasets(const QString& strFolder)
{
    const QDir folder(strFolder);
    for (const QString& name : folder.entryList({unmixedDatasetPattern()}, QDir::Dirs | QDir::NoDotAndDotDot)) {
        orv::deleteFolderTree(folder.filePath(name));
    }
    QDir().rmdir(strFolder);
}

// Those with a record or a lock of this user's, whoever holds it.
QStringList placesInUse()
{
    const QDir temporary(QDir::tempPath());
    const QString pattern = temporary.relativeFilePath(unmixedTargetFolder(QStringLiteral("*")));
    QStringList places;
    for (const QLatin1String& suffix : {ownerSuffix, FileLock::suffix()}) {
        for (const QFileInfo& file : temporary.entryInfoList({pattern + suffix}, QDir::Files | QDir::NoSymLinks)) {
            if (file.ownerId() == ::geteuid()) {
                places.append(file.filePath().chopped(suffix.size()));
            }
        }
    }
    places.removeDuplicates();
    return places;
}

} // namespace

ExportPlace::ExportPlace(const QString& strSeqId, JobMonitor* pMonitor)
    : m_strFolder(unmixedTargetFolder(strSeqId)), m_lock(m_strFolder)
{
    const auto outcome =
        m_lock.obtain(lockMilliseconds, [pMonitor] { return pMonitor == nullptr || !pMonitor->isStopRequested(); });
    if (outcome == FileLock::Outcome::Stopped) {
        pMonitor->stopIfRequested();
    }
    QString reason = m_lock.reason();
    if (outcome == FileLock::Outcome::Obtained) {
        if (m_owner.make(m_strFolder + ownerSuffix)) {
            return;
        }
        reason = errno == EEXIST ? QStringLiteral("another program holds it") : qt_error_string(errno);
    }
    throw Failure(QStringLiteral("%1: exports of the sequence go by way of this folder: %2").arg(m_strFolder, reason));
}

ExportPlace::~ExportPlace()
{
    removeDatasets(m_strFolder);
}

void ExportPlace::clearAbandoned()
{
    for (const QString& folder : placesInUse()) {
        // The lock first, as an export takes it: its record then is not held by us for a moment. That of a killed
        // program goes with ours.
        FileLock lock(folder);
        orv::OwnerRecord owner;
        if (lock.obtain(0) == FileLock::Outcome::Obtained && owner.takeAbandoned(folder + ownerSuffix)) {
            removeDatasets(folder);
        }
    }
}
