// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/orv_paths.h"

#include <QDir>
#include <QFileInfo>

#include <dlfcn.h>

namespace {

QString asFolder(const QString& strPath)
{
    if (strPath.isEmpty()) {
        return QString();
    }
    const QString clean = QDir::cleanPath(QDir(strPath).absolutePath());
    return clean.endsWith(QLatin1Char('/')) ? clean : clean + QLatin1Char('/');
}

// Absolute, or empty when there is no such folder.
QString existingFolder(const QString& strPath)
{
    return QFileInfo(strPath).isDir() ? asFolder(strPath) : QString();
}

// The folder of the library that holds this function. An installed tree can be moved, and a program that loads the
// library from elsewhere still finds the tables that came with it.
QString libraryFolder()
{
    static const char marker = 0;
    Dl_info info = {};
    if (::dladdr(&marker, &info) == 0 || !info.dli_fname) {
        return QString();
    }
    return QFileInfo(QFileInfo(QFile::decodeName(info.dli_fname)).canonicalFilePath()).path();
}

QString programFolder()
{
    return QFileInfo(QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath()).path();
}

// The environment's word holds alone: a wrong name there shall show, not be covered by other tables.
QString programData()
{
    const QByteArray named = qgetenv("ORVIA_DATA_DIR");
    if (!named.isEmpty()) {
        return existingFolder(QFile::decodeName(named));
    }
    const QString installed = QStringLiteral(ORV_INSTALL_DATA_DIR);
    // A tree of the build has a link there. A library lies in "lib" or in "lib/<system>".
    for (const auto& candidate :
         {programFolder() + QLatin1String("/../") + installed, libraryFolder() + QLatin1String("/../") + installed,
          libraryFolder() + QLatin1String("/../../") + installed}) {
        const QString found = existingFolder(candidate);
        if (!found.isEmpty()) {
            return found;
        }
    }
    return QString();
}

// XDG base directories: a relative XDG_DATA_HOME is not looked at. Read at each call.
QString userBase()
{
    QString base = QFile::decodeName(qgetenv("XDG_DATA_HOME"));
    if (base.isEmpty() || !QDir::isAbsolutePath(base)) {
        const QString home = QFile::decodeName(qgetenv("HOME"));
        if (home.isEmpty() || !QDir::isAbsolutePath(home)) {
            return QString();
        }
        base = home + QLatin1String("/.local/share");
    }
    return asFolder(base + QLatin1String("/orvia"));
}

QString userFolder(const QString& strBelow, bool bCreate)
{
    const QString base = userBase();
    if (base.isEmpty()) {
        return QString();
    }
    const QString folder = base + strBelow;
    if (bCreate && !QDir().mkpath(folder)) {
        return QString();
    }
    return folder;
}

} // namespace

QString getORVPath(ORV_PATH_TAGS eTag, bool bCreate, const CPLCameraInfo*)
{
    switch (eTag) {
    case ORV_PATH_PROGRAM_DATA:
        return programData();
    case ORV_PATH_USER:
        return userFolder(QString(), bCreate);
    case ORV_PATH_USER_DATA:
        return userFolder(QStringLiteral("data/"), bCreate);
    case ORV_PATH_TEMP:
        return asFolder(QDir::tempPath());
    }
    return QString();
}
