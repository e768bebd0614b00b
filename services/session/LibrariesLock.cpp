// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/LibrariesLock.h"

#include "host/orv_paths.h"
#include "services/basis/Failure.h"
#include "services/session/obtainLock.h"

#include <QDir>

namespace {

// Of the folder, with its separator.
QString madeFolder()
{
    const QString base = getORVPath(ORV_PATH_USER_DATA, true, nullptr);
    const QString folder = base + QStringLiteral("Spum/");
    if (base.isEmpty() || !QDir().mkpath(folder)) {
        throw Failure(QStringLiteral("Failed to create the SPUM database folder (%1)").arg(folder));
    }
    return folder;
}

} // namespace

// The dot keeps the lock's file apart from those of libraries.
LibrariesLock::LibrariesLock(const std::function<bool()>& goesOn) : m_lock(madeFolder() + QStringLiteral(".libraries"))
{
    obtainLock(m_lock, QStringLiteral("the saved libraries"), goesOn);
}
