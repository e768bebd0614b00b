// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/writeWholeFile.h"

#include "files/AtomicFile.h"
#include "host/CORVLog.h"
#include "spectra/logLine.h"

bool writeWholeFile(const QString& strPath, const QByteArray& bytes)
{
    QString error;
    const bool written = orv::writeFileAtomically(strPath, bytes, &error);
    if (!written) {
        logLine(error, CORVLOG_ERROR);
    }
    return written;
}
