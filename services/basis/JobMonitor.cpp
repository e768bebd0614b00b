// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/JobMonitor.h"

#include "services/basis/Failure.h"

JobMonitor::~JobMonitor() = default;

void JobMonitor::warnAll(const QStringList& lines)
{
    for (const auto& line : lines) {
        warn(line);
    }
}

void JobMonitor::stopIfRequested() const
{
    if (isStopRequested()) {
        throw Failure(QStringLiteral("aborted by user"), Failure::Kind::Aborted);
    }
}
