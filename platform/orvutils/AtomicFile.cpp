// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvutils/AtomicFile.h"

#include <QSaveFile>

namespace orv {

bool writeFileAtomically(const QString& strPath, const QByteArray& bytes, QString* pError)
{
    QSaveFile file(strPath);
    bool done = file.open(QIODevice::WriteOnly);
    if (done) {
        // commit() alone answers true on a full disk and puts a torn file in place.
        done = file.write(bytes) == bytes.size() && file.flush() && file.error() == QFileDevice::NoError;
        if (!done)
            file.cancelWriting();
        done = file.commit() && done;
    }
    if (!done && pError != nullptr)
        *pError = QStringLiteral("%1: cannot be written (%2)").arg(strPath, file.errorString());
    return done;
}

} // namespace orv
