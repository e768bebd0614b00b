// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QString>

// Every file below the folder, hidden ones too, by its path, with its bytes; nothing for one that cannot be read.
inline QMap<QString, QByteArray> filesWithBytes(const QString& strFolder)
{
    QMap<QString, QByteArray> all;
    QDirIterator files(strFolder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        all.insert(file.fileName(), file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray());
    }
    return all;
}
