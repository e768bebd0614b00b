// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/importPlace.h"

#include <QDir>
#include <QFileInfo>

ImportSource ImportSource::of(const QStringList& paths)
{
    ImportSource source;
    if (paths.size() == 1) {
        source.path = QDir::cleanPath(QFileInfo(paths.first()).absoluteFilePath());
    }
    if (paths.size() < 2) {
        return source;
    }
    const QString folder = QFileInfo(paths.first()).absolutePath();
    for (const QString& path : paths) {
        const QFileInfo info(path);
        if (!info.isFile() || info.absolutePath() != folder) {
            source.error = QStringLiteral("Choose one folder, one file, or several files of one folder.");
            source.files.clear();
            return source;
        }
        source.files.append(info.fileName());
    }
    source.path = QDir::cleanPath(folder);
    return source;
}

QString proposedSequenceFolder(const QString& strSource, const QString& strFallback)
{
    if (strSource.isEmpty()) {
        return QString();
    }
    const QFileInfo source(strSource);
    const QString name = source.isDir() ? source.fileName() : source.baseName();
    const QFileInfo beside(source.absolutePath());
    const QDir folder(beside.isDir() && beside.isWritable() && beside.isExecutable() ? beside.absoluteFilePath()
                                                                                     : strFallback);
    const QString stem = (name.isEmpty() ? QStringLiteral("images") : name) + QStringLiteral("_sequence");
    QString free = stem;
    for (int number = 2; QFileInfo::exists(folder.filePath(free)); ++number) {
        free = QStringLiteral("%1_%2").arg(stem, QString::number(number));
    }
    return folder.filePath(free);
}
