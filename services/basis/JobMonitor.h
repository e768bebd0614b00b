// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// How work that takes a while speaks with whoever asked for it: progress, warnings, and whether to go on. A command
// shows a line on its terminal, a window its progress panel. Used from one thread at a time.
class JobMonitor
{
public:
    JobMonitor() = default;
    JobMonitor(const JobMonitor&) = delete;
    JobMonitor& operator=(const JobMonitor&) = delete;
    virtual ~JobMonitor();

    // Begins anew at fraction 0.
    virtual void startProgress(const QString& strMessage) = 0;
    // A fraction (0 to 1) below 0 means unknown.
    virtual void showProgress(const QString& strMessage, double dFraction) = 0;
    virtual void endProgress() = 0;

    virtual void warn(const QString& strText) = 0;
    void warnAll(const QStringList& lines);

    // Whether the user wants the work to end.
    virtual bool isStopRequested() const = 0;
    // Throws Failure (aborted) once that is so.
    void stopIfRequested() const;
};
