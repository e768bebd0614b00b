// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvutils/AtomicFile.h"

#include <QSaveFile>

namespace orv {

bool writeFileAtomically(const QString& strPath, const QByteArray& bytes, QString* pError)
{
    QSaveFile file(strPath);
    bool done = file.open(QIODevice::WriteOnly);
    if (done) {
        // commit() alone answers true on a full disk and would put a torn file in place: the last block is only written
        // by flush(), and its failure shows in error().
        done = file.write(bytes) == bytes.size() && file.flush() && file.error() == QFileDevice::NoError;
        if (!done)
            file.cancelWriting();
        const QString reason = file.errorString();
        const bool committed = file.commit();
        if (!done && pError)
            *pError = QStringLiteral("%1: cannot be written: %2").arg(strPath, reason);
        if (!done)
            return false;
        done = committed;
    }
    if (!done && pError)
        *pError = QStringLiteral("%1: cannot be written: %2").arg(strPath, file.errorString());
    return done;
}

} // namespace orv
