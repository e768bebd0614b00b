// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/openingAdvice.h"

#include "platform/orvapi/ClickInfoKeys.h"

#include <QDir>
#include <QFileInfo>

QString openingAdvice(const QString& strPath)
{
    const QFileInfo info(strPath);
    if (!info.exists()) {
        return QStringLiteral("there is no such file or folder");
    }
    const QDir folder = info.isDir() ? QDir(strPath) : info.dir();
    return folder.exists(QLatin1String(SequenceFiles::kSequenceInfo))
               ? QString()
               : QStringLiteral("\"spum import IMAGES NEW\" makes a sequence of images");
}
