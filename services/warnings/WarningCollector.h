// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/basis/JobMonitor.h"
#include "services/warnings/RunWarning.h"

// Stands between a run and whoever asked for it: hands everything on, and keeps the one list of the run's warnings. A
// text that is warned of without a code is one about what the run was given.
class WarningCollector : public JobMonitor
{
public:
    explicit WarningCollector(JobMonitor& monitor) : m_monitor(monitor) {}

    void startProgress(const QString& strMessage) override { m_monitor.startProgress(strMessage); }
    void showProgress(const QString& strMessage, double dFraction) override
    {
        m_monitor.showProgress(strMessage, dFraction);
    }
    void endProgress() override { m_monitor.endProgress(); }
    bool isStopRequested() const override { return m_monitor.isStopRequested(); }
    void warn(const QString& strText) override
    {
        add({RunWarning::Severity::Warning, inputCode(), strText, QString()});
    }

    // Tells the warning and keeps it.
    void add(const RunWarning& warning);
    void addAll(const QList<RunWarning>& warnings);
    const QList<RunWarning>& warnings() const { return m_warnings; }

    static QString inputCode() { return QStringLiteral("input"); }

private:
    JobMonitor& m_monitor;
    QList<RunWarning> m_warnings;
};
