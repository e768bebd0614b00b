// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/HostLog.h"

#include "host/CORVLog.h"

#include <QDateTime>
#include <QString>

void logError(const QString& strMessage)
{
    CORVLog::getLogObject()->log(strMessage, QString(), 0, QDateTime::currentDateTime().toString(Qt::ISODate),
                                 CORVLOG_ERROR, false);
}
