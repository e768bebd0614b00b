// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/programHash.h"

#include "host/orv_paths.h"
#include "services/basis/fileHash.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>

#include <link.h>

namespace {

extern "C" int addLibrary(dl_phdr_info* pInfo, size_t, void* pPaths)
{
    const QString path = QFile::decodeName(pInfo->dlpi_name);
    if (QFileInfo(path).fileName().startsWith(QLatin1String("liborv"))) {
        static_cast<QStringList*>(pPaths)->append(path);
    }
    return 0;
}

} // namespace

QString programHash()
{
    QStringList paths = {QCoreApplication::applicationFilePath()};
    ::dl_iterate_phdr(addLibrary, &paths);
    const QString tables = getORVPath(ORV_PATH_PROGRAM_DATA, false, nullptr);
    if (!tables.isEmpty()) {
        for (const QString& name : QDir(tables).entryList({QStringLiteral("*.csv")}, QDir::Files)) {
            paths.append(tables + name);
        }
    }
    QMap<QString, QString> hashes; // by name, whatever the order in which they were loaded
    for (const QString& path : qAsConst(paths)) {
        hashes.insert(QFileInfo(path).fileName(), fileHash(path));
    }
    QCryptographicHash all(QCryptographicHash::Sha1);
    for (const QString& hash : qAsConst(hashes)) {
        all.addData(hash.toLatin1());
    }
    return QString::fromLatin1(all.result().toHex());
}
