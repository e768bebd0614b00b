// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>

namespace orv {

// What of the log goes to standard error.
enum class ConsoleLog
{
    Nothing,
    Errors,
    Warnings, // and errors
    Everything
};
void setConsoleLogLevel(ConsoleLog eLevel);

// Appends the log to a file from now on; an empty path ends that. False, and *pError (may be null) with path and reason,
// when the file cannot be opened; no file is written then.
bool setLogFile(const QString& strPath, QString* pError);

// One line of the log as it was given.
struct LogLine
{
    QString message;
    QString extra;
    QString time;
    long level = 0;
};
// Also hands every line to `sink`, on the thread that logs it and one at a time; an empty function ends that. The sink
// must not log.
void setLogSink(std::function<void(const LogLine&)> sink);

// "2026-01-31T12:00:00.000Z WARNING message", the extra text behind it in brackets.
QString formatLogLine(const LogLine& line);

} // namespace orv
