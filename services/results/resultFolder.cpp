// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/resultFolder.h"

#include "files/StagedFolder.h"
#include "services/basis/JobMonitor.h"

#include <QFileInfo>

namespace {

bool isThere(const QString& strFolder, JobMonitor& monitor)
{
    const QString told = StagedFolder::takeBackMissing(strFolder);
    if (!told.isEmpty()) {
        monitor.warn(told);
    }
    return QFileInfo::exists(strFolder);
}

} // namespace

QString resultFolder(const QString& strName, const QString& strSequenceFolder, JobMonitor& monitor)
{
    const QString inside = strSequenceFolder + strName;
    return !isThere(strName, monitor) && isThere(inside, monitor) ? inside : strName;
}
