// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/obtainLock.h"

#include "files/FileLock.h"
#include "services/basis/Failure.h"

namespace {

constexpr int waitMilliseconds = 30000;

} // namespace

void obtainLock(FileLock& lock, const QString& strWhat, const std::function<bool()>& goesOn)
{
    switch (lock.obtain(waitMilliseconds, goesOn)) {
    case FileLock::Outcome::Obtained:
        return;
    case FileLock::Outcome::Stopped:
        throw Failure(QStringLiteral("aborted by user"), Failure::Kind::Aborted);
    case FileLock::Outcome::Refused:
        break;
    }
    throw Failure(QStringLiteral("%1 cannot be changed: %2").arg(strWhat, lock.reason()));
}
