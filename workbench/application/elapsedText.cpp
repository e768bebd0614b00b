// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/elapsedText.h"

QString elapsedText(qint64 nMilliseconds)
{
    const qint64 seconds = qMax<qint64>(nMilliseconds, 0) / 1000;
    const QLatin1Char zero('0');
    if (seconds < 3600) {
        return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, zero);
    }
    return QStringLiteral("%1:%2:%3")
        .arg(seconds / 3600)
        .arg(seconds / 60 % 60, 2, 10, zero)
        .arg(seconds % 60, 2, 10, zero);
}
