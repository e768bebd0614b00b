// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/FileLock.h"

#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr int staleMilliseconds = 30000;
// Between two attempts. The lock's own waiting grows to seconds and would miss the short moments in which it is free.
constexpr unsigned long pauseMilliseconds = 10;

} // namespace

FileLock::FileLock(const QString& strPath) : m_strLock(strPath + suffix()), m_lock(m_strLock)
{
    m_lock.setStaleLockTime(staleMilliseconds);
}

FileLock::Outcome FileLock::obtain(int nMilliseconds, const std::function<bool()>& goesOn)
{
    QElapsedTimer timer;
    timer.start();
    do {
        if (m_lock.tryLock(0)) {
            return Outcome::Obtained;
        }
        if (goesOn && !goesOn()) {
            return Outcome::Stopped;
        }
        QThread::msleep(pauseMilliseconds);
    } while (m_lock.error() == QLockFile::LockFailedError && timer.elapsed() < nMilliseconds);
    return Outcome::Refused;
}

void FileLock::keep()
{
    if (isHeld()) {
        ::utimensat(AT_FDCWD, QFile::encodeName(m_strLock).constData(), nullptr, 0);
    }
}

void FileLock::release()
{
    m_lock.unlock();
}

QString FileLock::reason() const
{
    if (m_lock.error() == QLockFile::PermissionError) {
        return QStringLiteral("there is no right to write to its folder");
    }
    if (m_lock.error() != QLockFile::LockFailedError) {
        return QStringLiteral("its folder cannot be written to; the disk may be full");
    }
    qint64 nProcess = 0;
    QString strHost;
    QString strProgram;
    QString strReason = QStringLiteral("another program is changing it");
    if (m_lock.getLockInfo(&nProcess, &strHost, &strProgram)) {
        strReason += QStringLiteral(" (%1, process %2 on %3)").arg(strProgram, QString::number(nProcess), strHost);
    }
    return strReason;
}
