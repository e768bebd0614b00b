// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QString>

#include <functional>

// Where the lines of CORVLog go. Every function is safe from any thread. Nothing is ever written to standard output:
// it belongs to a program's answer.
namespace orv {

struct LogRecord
{
    QDateTime m_time; // of the call, UTC
    long m_nLevel;    // as the caller gave it
    QString m_strMessage;
    QString m_strExtra;
};

// How much goes to standard error.
enum class ConsoleLog
{
    Nothing,
    Errors,
    Warnings, // and errors; the state at start
    Everything
};

void setConsoleLogLevel(ConsoleLog eLevel);

// Appends every line to a file, made when missing, until another call; an empty path ends it. False when the file
// cannot be opened, with the file and the reason in `pError` (may be null); the earlier log file then stays in use.
// When a line cannot be written later on (full disk), the file is given up with one line on standard error.
bool setLogFile(const QString& strPath, QString* pError = nullptr);

// Hands every record to a function, on the thread that logs, one call at a time. What the function itself logs is
// dropped. The number is for removeLogSink(), which returns when no call is under way (from inside the function itself:
// at once).
int addLogSink(std::function<void(const LogRecord&)> sink);
void removeLogSink(int nSink);

// One line of the file and of standard error, without the end of line:
//   2024-01-31T23:59:59.123Z  WARNING   message | extra
// Ends of line inside the texts become blanks, so a record is always one line.
QString logLine(const LogRecord& record);

} // namespace orv
