// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CORVLog.h"

#include <QMutex>
#include <QString>
#include <QStringList>

// The errors, or what has another level, that are logged on any thread as long as it lives.
class LoggedErrors
{
public:
    explicit LoggedErrors(long nLevel = CORVLOG_ERROR);
    ~LoggedErrors();
    LoggedErrors(const LoggedErrors&) = delete;
    LoggedErrors& operator=(const LoggedErrors&) = delete;

    // The messages in their order.
    QStringList lines() const;
    // Each message once, without the name of the part of the program that begins it and with its extra text behind a
    // bar; those left out that `strFailure` repeats, in which a user is told them.
    QStringList linesBeyond(const QString& strFailure) const;

private:
    struct Line
    {
        QString message;
        QString extra;
    };

    mutable QMutex m_mutex;
    QList<Line> m_lines;
    int m_nSink;
};
