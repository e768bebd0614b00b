// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/AtomicFile.h"

#include "files/TemporaryTarget.h"

namespace orv {

bool writeFileAtomically(const QString& strPath, const QByteArray& bytes, QString* pError)
{
    TemporaryTarget target(strPath);
    if (target.isValid() && target.write(bytes) && target.commit()) {
        return true;
    }
    if (pError != nullptr) {
        *pError = target.error();
    }
    return false;
}

bool writeNewFileAtomically(const QString& strPath, const QByteArray& bytes, bool* pExisted, QString* pError)
{
    TemporaryTarget target(strPath);
    const bool written = target.isValid() && target.write(bytes) && target.commitNew();
    *pExisted = target.targetExists();
    if (!written && pError != nullptr) {
        *pError = target.error();
    }
    return written;
}

} // namespace orv
