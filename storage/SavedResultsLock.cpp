// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/SavedResultsLock.h"

#include "storage/resultsIndex.h"

#include "host/CORVLog.h"
#include "spectra/logLine.h"

#include <QElapsedTimer>
#include <QThread>

namespace {

constexpr int staleMilliseconds = 30000;
constexpr int waitMilliseconds = 5000;
// Between two attempts. The lock's own waiting grows to seconds and would miss the short moments in which it is free.
constexpr unsigned long pauseMilliseconds = 10;

} // namespace

SavedResultsLock::SavedResultsLock(const QString& strFolder)
    : m_strPath(resultsIndex::indexPath(strFolder)), m_lock(m_strPath + QStringLiteral(".lock"))
{
    m_lock.setStaleLockTime(staleMilliseconds);
}

bool SavedResultsLock::obtain()
{
    QElapsedTimer timer;
    timer.start();
    do {
        if (m_lock.tryLock(0)) {
            return true;
        }
        QThread::msleep(pauseMilliseconds);
    } while (m_lock.error() == QLockFile::LockFailedError && timer.elapsed() < waitMilliseconds);
    tellReason();
    return false;
}

void SavedResultsLock::tellReason() const
{
    qint64 nProcess = 0;
    QString strHost;
    QString strProgram;
    QString strReason = QStringLiteral("its folder cannot be written to; the disk may be full");
    if (m_lock.error() == QLockFile::PermissionError) {
        strReason = QStringLiteral("there is no right to write to its folder");
    } else if (m_lock.error() == QLockFile::LockFailedError) {
        strReason = QStringLiteral("another program is changing it");
        if (m_lock.getLockInfo(&nProcess, &strHost, &strProgram)) {
            strReason += QStringLiteral(" (%1, process %2 on %3)").arg(strProgram, QString::number(nProcess), strHost);
        }
    }
    logLine(QStringLiteral("%1: the index of saved results cannot be locked: %2").arg(m_strPath, strReason),
            CORVLOG_WARNING);
}
