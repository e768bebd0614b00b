// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/HostLog.h"

#include "host/CORVLog.h"

#include <QDateTime>
#include <QString>

namespace {

void logAt(const QString& strMessage, long nLevel)
{
    CORVLog::getLogObject()->log(strMessage, QString(), 0, QDateTime::currentDateTime().toString(Qt::ISODate), nLevel,
                                 false);
}

} // namespace

void logWarning(const QString& strMessage)
{
    logAt(strMessage, CORVLOG_WARNING);
}

void logError(const QString& strMessage)
{
    logAt(strMessage, CORVLOG_ERROR);
}
