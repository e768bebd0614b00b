// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/StagedRun.h"

#include "files/StagedFolder.h"
#include "platform/orvutils/printable.h"
#include "services/basis/Failure.h"
#include "services/basis/JobMonitor.h"

StagedRun::StagedRun(const QString& strTarget, bool bForce, const QString& strMark)
    : m_pFolder(std::make_unique<StagedFolder>())
{
    QString error;
    if (!m_pFolder->begin(strTarget, bForce, strMark, &error)) {
        throw Failure(error);
    }
}

StagedRun::~StagedRun() = default;

QString StagedRun::path() const
{
    return m_pFolder->path();
}

QString StagedRun::target() const
{
    return m_pFolder->target();
}

void StagedRun::finish(JobMonitor& monitor)
{
    monitor.stopIfRequested();
    QString error;
    if (!m_pFolder->commit(&error)) {
        throw Failure(error);
    }
    monitor.endProgress();
}

RunAnswer StagedRun::answer(const QString& strText, const QJsonObject& json) const
{
    RunAnswer answer{strText + QStringLiteral("results in %1\n").arg(orv::printableLine(target())), json};
    answer.json.insert(QStringLiteral("folder"), target());
    return answer;
}
