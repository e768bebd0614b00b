// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QRegularExpression>

// What the first saved result of a sequence says: without its moment, and without the numbers of the spectra, which are
// the places of the rows in the window and those of the curves in the command line.
inline QByteArray savedDocument(const QString& strSequence)
{
    QDir folder(strSequence + "/XML/SpecUnmix");
    const QStringList names = folder.entryList({"*.xml"}, QDir::Files);
    QFile file(folder.filePath(names.value(0)));
    if (names.isEmpty() || !file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QString::fromUtf8(file.readAll())
        .remove(QRegularExpression(" Date\\.Time=\"[^\"]*\""))
        .replace(QRegularExpression("Component\\d+"), "Component")
        .toUtf8();
}
