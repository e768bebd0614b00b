// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/logLine.h"

#include "host/CORVLog.h"

void logLine(const QString& strMessage, long nLevel)
{
    // The time field is that of the build and carries no meaning; the host's lines have their own. Not __TIME__: two
    // builds of the same sources have the same bytes.
    CORVLog::getLogObject()->log(strMessage, QString(), 0, QStringLiteral(ORV_BUILD_TIME), nLevel, false);
}
