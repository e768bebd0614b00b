// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/CliProgress.h"

#include "platform/orvutils/printable.h"
#include "workbench/commands/Output.h"

#include <algorithm>
#include <cmath>
#include <unistd.h>

namespace {

constexpr int redrawMilliseconds = 100;
// "\r" to the start of the line, "ESC [ K" clears to its end.
const QByteArray clearLine = "\r\x1b[K";

} // namespace

CliProgress::CliProgress(bool bEnabled) : m_bEnabled(bEnabled && terminalPresent())
{
    m_total.start();
}

CliProgress::~CliProgress()
{
    finish();
}

bool CliProgress::terminalPresent()
{
    return ::isatty(STDERR_FILENO) == 1;
}

QString CliProgress::timeText(double dSeconds)
{
    const auto seconds = static_cast<long long>(std::ceil(std::max(dSeconds, 1.0)));
    if (seconds < 60) {
        return QStringLiteral("%1 s").arg(seconds);
    }
    return QStringLiteral("%1 min %2 s").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

QString CliProgress::lineText(const QString& strMessage, double dFraction, double dElapsedSeconds)
{
    if (!(dFraction > 0.0)) {
        return QStringLiteral("%1  %2").arg(strMessage, timeText(dElapsedSeconds));
    }
    const double fraction = std::min(dFraction, 1.0);
    const double remaining = dElapsedSeconds * (1.0 - fraction) / fraction;
    return QStringLiteral("%1  %2 %, %3 left")
        .arg(strMessage, QString::number(static_cast<int>(fraction * 100.0)), timeText(remaining));
}

void CliProgress::start(const QString& strMessage)
{
    m_total.restart();
    m_sinceDrawn.invalidate();
    show(strMessage, -1.0);
}

void CliProgress::show(const QString& strMessage, double dFraction)
{
    if (!m_bEnabled || (m_sinceDrawn.isValid() && m_sinceDrawn.elapsed() < redrawMilliseconds)) {
        return;
    }
    m_sinceDrawn.restart();
    m_bShown = true;
    const double elapsed = static_cast<double>(m_total.elapsed()) / 1000.0;
    writeAll(STDERR_FILENO, clearLine + orv::printableLine(lineText(strMessage, dFraction, elapsed)).toUtf8());
}

void CliProgress::finish()
{
    if (m_bShown) {
        writeAll(STDERR_FILENO, clearLine);
    }
    m_bShown = false;
}
