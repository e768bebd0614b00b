// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/AtomicFile.h"

#include <QSaveFile>

namespace orv {

bool writeFileAtomically(const QString& strPath, const QByteArray& bytes, QString* pError)
{
    const auto fail = [&strPath, pError](const QString& strReason) {
        if (pError != nullptr) {
            *pError = QStringLiteral("%1: cannot be written: %2").arg(strPath, strReason);
        }
        return false;
    };
    QSaveFile file(strPath);
    if (!file.open(QIODevice::WriteOnly)) {
        return fail(file.errorString());
    }
    // commit() alone answers true on a full disk and would put a torn file in place: the last block is only written by
    // flush(), and its failure shows in error().
    if (file.write(bytes) != bytes.size() || !file.flush() || file.error() != QFileDevice::NoError) {
        // Of a write that ended half way Qt knows no reason; that of a device without an error is its word for that.
        const bool unknown = file.errorString() == QSaveFile().errorString();
        const QString reason = unknown ? QStringLiteral("no room for all of it") : file.errorString();
        file.cancelWriting();
        return fail(reason);
    }
    return file.commit() || fail(file.errorString());
}

} // namespace orv
