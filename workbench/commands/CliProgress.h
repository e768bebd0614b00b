// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QString>

// A line of progress with the remaining time on a terminal; silent in a pipe, with --quiet and with --json.
// Used from one thread at a time; the line is redrawn ten times a second at most.
class CliProgress
{
public:
    explicit CliProgress(bool bEnabled);
    ~CliProgress();
    CliProgress(const CliProgress&) = delete;
    CliProgress& operator=(const CliProgress&) = delete;

    // Whether standard error is a terminal.
    static bool terminalPresent();
    // "12 s", "3 min 05 s"; below one second "1 s".
    static QString timeText(double dSeconds);
    // What the line says: message, percentage and remaining time; without a known fraction (below 0) the elapsed time.
    static QString lineText(const QString& strMessage, double dFraction, double dElapsedSeconds);

    // Begins anew at fraction 0.
    void start(const QString& strMessage);
    // Shows the message; a fraction (0 to 1) below 0 means unknown.
    void show(const QString& strMessage, double dFraction);
    // Removes the line.
    void finish();

private:
    bool m_bEnabled;
    bool m_bShown = false;
    QElapsedTimer m_total;
    QElapsedTimer m_sinceDrawn;
};
