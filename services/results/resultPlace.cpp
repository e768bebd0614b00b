// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/resultPlace.h"

#include <QDir>
#include <QFileInfo>

bool canBeWritten(const QString& strFolder)
{
    const QFileInfo info(strFolder);
    return info.isDir() && info.isWritable() && info.isExecutable();
}

ResultPlace resultPlace(const QString& strAsked, const QString& strSequenceFolder, const QString& strDefaultName)
{
    if (!strAsked.isEmpty()) {
        return {strAsked, QString()};
    }
    const QString beside = QDir(strSequenceFolder).filePath(strDefaultName);
    if (canBeWritten(strSequenceFolder)) {
        return {beside, QString()};
    }
    const QString name = QDir(QDir::cleanPath(strSequenceFolder)).dirName() + QLatin1Char('-') + strDefaultName;
    return {
        QDir::current().absoluteFilePath(name),
        QStringLiteral("nothing can be written into the sequence's folder, so the results lie in the working folder; "
                       "--out chooses another place\n")};
}
