// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Levels of a log line.
enum CORVLogLevel
{
    CORVLOG_NOTE = 1,
    CORVLOG_WARNING = 2,
    CORVLOG_ERROR = 3,
    CORVLOG_PROGRESS = 16
};

// The host's log. Safe from any thread.
class CORVLog
{
public:
    static CORVLog* getLogObject();
    // Writes a line. `strExtra` goes behind the message when it is not empty; the int and the bool are the host's own
    // and carry nothing here.
    void log(const QString& strMessage, const QString& strExtra, int nReserved, const QString& strTime, long nLevel,
             bool bReserved);

private:
    CORVLog() = default;
};
