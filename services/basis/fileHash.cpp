// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/fileHash.h"

#include "platform/orvutils/InputFile.h"

#include <QCryptographicHash>
#include <QFile>

QString fileHash(const QString& strPath, const std::function<bool()>& goesOn)
{
    constexpr qint64 chunkBytes = 4 << 20;
    QFile file(strPath);
    QString reason;
    if (!orv::openInput(file, &reason)) {
        return QString();
    }
    QCryptographicHash hash(QCryptographicHash::Sha1);
    for (;;) {
        if (goesOn && !goesOn()) {
            return QString();
        }
        const QByteArray bytes = file.read(chunkBytes);
        if (bytes.isEmpty()) {
            return file.error() == QFileDevice::NoError ? QString::fromLatin1(hash.result().toHex()) : QString();
        }
        hash.addData(bytes);
    }
}
