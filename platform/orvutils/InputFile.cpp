// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvutils/InputFile.h"

#include <QFile>
#include <QFileInfo>

namespace orv {

bool openInput(QFile& file, QString* pReason)
{
    const QFileInfo info(file.fileName());
    // A link that leads nowhere does not exist either; opening it tells why.
    if (info.exists() && !info.isFile()) {
        *pReason = QStringLiteral("not a file");
        return false;
    }
    if (file.open(QIODevice::ReadOnly)) {
        return true;
    }
    *pReason = file.errorString();
    return false;
}

bool readInput(const QString& strPath, int nMaxMiB, const QString& strWhat, QByteArray* pBytes, QString* pError)
{
    pBytes->clear();
    const qint64 most = static_cast<qint64>(nMaxMiB) << 20;
    QFile file(strPath);
    QString reason;
    if (openInput(file, &reason)) {
        if (file.size() <= most) {
            *pBytes = file.read(most + 1);
        }
        if (file.size() > most || pBytes->size() > most) {
            reason = QStringLiteral("more than %1 MiB, no %2 is that large").arg(QString::number(nMaxMiB), strWhat);
        } else if (file.error() != QFileDevice::NoError) {
            reason = file.errorString();
        }
    }
    if (reason.isEmpty()) {
        return true;
    }
    pBytes->clear();
    *pError = QStringLiteral("%1: %2").arg(strPath, reason);
    return false;
}

} // namespace orv
