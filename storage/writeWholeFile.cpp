// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/writeWholeFile.h"

#include "engine/logLine.h"
#include "host/CORVLog.h"

#include <QSaveFile>

bool writeWholeFile(const QString& strPath, const QByteArray& bytes)
{
    QSaveFile file(strPath);
    if (file.open(QIODevice::WriteOnly)) {
        // commit() alone answers true on a full disk and would put a torn file in place: the last block is only written
        // by flush(), and its failure shows in error().
        const bool bWhole = file.write(bytes) == bytes.size() && file.flush() && file.error() == QFileDevice::NoError;
        if (bWhole && file.commit()) {
            return true;
        }
        file.cancelWriting();
    }
    logLine(QStringLiteral("%1: cannot be written: %2").arg(strPath, file.errorString()), CORVLOG_ERROR);
    return false;
}
