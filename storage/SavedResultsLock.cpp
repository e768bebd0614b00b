// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/SavedResultsLock.h"

#include "storage/resultsIndex.h"

#include "host/CORVLog.h"
#include "host/CORVProcess.h"
#include "spectra/logLine.h"

namespace {

constexpr int waitMilliseconds = 5000;

} // namespace

SavedResultsLock::SavedResultsLock(const QString& strFolder)
    : m_strPath(resultsIndex::indexPath(strFolder)), m_lock(m_strPath)
{
}

bool SavedResultsLock::obtain()
{
    // An abort of what went before is not meant.
    const bool bEarlierAbort = CORVProcess::isProcessAborted();
    const auto goesOn = [bEarlierAbort] { return bEarlierAbort || !CORVProcess::isProcessAborted(); };
    const FileLock::Outcome outcome = m_lock.obtain(waitMilliseconds, goesOn);
    if (outcome == FileLock::Outcome::Refused) {
        logLine(QStringLiteral("%1: the index of saved results cannot be locked: %2").arg(m_strPath, m_lock.reason()),
                CORVLOG_WARNING);
    }
    return outcome == FileLock::Outcome::Obtained;
}
