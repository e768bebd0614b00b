// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/StagedRun.h"

#include "files/StagedFolder.h"
#include "platform/orvutils/printable.h"
#include "services/basis/Failure.h"
#include "services/basis/JobMonitor.h"

#include <QDir>

StagedRun::StagedRun(const ResultPlace& place, bool bForce, const QString& strMark)
    : m_pFolder(std::make_unique<StagedFolder>()), m_strRemark(place.remark)
{
    QString error;
    if (!m_pFolder->begin(place.folder, bForce, strMark, &error)) {
        throw Failure(error);
    }
}

StagedRun::StagedRun(const QString& strTarget, bool bForce, const QString& strMark)
    : StagedRun(ResultPlace{strTarget, QString()}, bForce, strMark)
{
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

QString StagedRun::name() const
{
    return QDir(target()).dirName();
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
    RunAnswer answer{strText + QStringLiteral("results in %1\n").arg(orv::printableLine(target())) + m_strRemark, json};
    answer.json.insert(QStringLiteral("folder"), target());
    return answer;
}
