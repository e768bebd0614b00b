// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/logLine.h"

#include "host/CORVLog.h"

void logLine(const QString& strMessage, long nLevel)
{
    // The time field carries no meaning; the host's lines have their own.
    CORVLog::getLogObject()->log(strMessage, QString(), 0, QStringLiteral(__TIME__), nLevel, false);
}
