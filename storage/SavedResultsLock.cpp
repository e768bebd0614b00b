// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/SavedResultsLock.h"

#include "storage/resultsIndex.h"

#include "engine/logLine.h"
#include "host/CORVLog.h"

namespace {

constexpr int staleMilliseconds = 30000;
constexpr int waitMilliseconds = 5000;

} // namespace

SavedResultsLock::SavedResultsLock(const QString& strFolder)
    : m_strPath(resultsIndex::indexPath(strFolder)), m_lock(m_strPath + QStringLiteral(".lock"))
{
    m_lock.setStaleLockTime(staleMilliseconds);
}

bool SavedResultsLock::obtain()
{
    if (m_lock.tryLock(waitMilliseconds)) {
        return true;
    }
    qint64 nProcess = 0;
    QString strHost;
    QString strProgram;
    QString strReason = QStringLiteral("its folder cannot be written to");
    if (m_lock.error() == QLockFile::LockFailedError) {
        strReason = QStringLiteral("another program is changing it");
        if (m_lock.getLockInfo(&nProcess, &strHost, &strProgram)) {
            strReason += QStringLiteral(" (%1, process %2 on %3)").arg(strProgram, QString::number(nProcess), strHost);
        }
    }
    logLine(QStringLiteral("%1: the index of saved results cannot be locked: %2").arg(m_strPath, strReason),
            CORVLOG_WARNING);
    return false;
}
