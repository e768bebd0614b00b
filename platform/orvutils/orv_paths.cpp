// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/orv_paths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace {

QString withSeparator(const QString& strPath)
{
    const QString clean = QDir::cleanPath(strPath);
    return clean.endsWith(QLatin1Char('/')) ? clean : clean + QLatin1Char('/');
}

// Beside the program when it is installed, else in the sources that it was built from; ORVIA_DATA_DIR overrides both.
QString programData()
{
    const QString chosen = qEnvironmentVariable("ORVIA_DATA_DIR");
    if (!chosen.isEmpty())
        return QFileInfo(chosen).isDir() ? withSeparator(QDir(chosen).absolutePath()) : QString();
    if (QCoreApplication::instance() != nullptr) {
        const QString installed =
            QCoreApplication::applicationDirPath() + QStringLiteral("/../") + QStringLiteral(ORV_INSTALL_DATA_DIR);
        if (QFileInfo(installed).isDir())
            return withSeparator(QDir(installed).absolutePath());
    }
    const QString sources = QStringLiteral(ORV_SOURCE_DATA_DIR);
    return QFileInfo(sources).isDir() ? withSeparator(sources) : QString();
}

// $XDG_DATA_HOME, else ~/.local/share, looked up at each call.
QString userFolder()
{
    QString base = qEnvironmentVariable("XDG_DATA_HOME");
    if (base.isEmpty() || QDir::isRelativePath(base)) {
        const QString home = qEnvironmentVariable("HOME");
        if (home.isEmpty())
            return QString();
        base = home + QStringLiteral("/.local/share");
    }
    return withSeparator(base + QStringLiteral("/orvia"));
}

QString made(const QString& strFolder, bool bCreate)
{
    if (strFolder.isEmpty() || !bCreate || QDir().mkpath(strFolder))
        return strFolder;
    return QString();
}

} // namespace

QString getORVPath(ORV_PATH_TAGS eTag, bool bCreate, const CPLCameraInfo*)
{
    switch (eTag) {
    case ORV_PATH_PROGRAM_DATA:
        return programData();
    case ORV_PATH_USER:
        return made(userFolder(), bCreate);
    case ORV_PATH_USER_DATA:
        return userFolder().isEmpty() ? QString() : made(userFolder() + QStringLiteral("data/"), bCreate);
    case ORV_PATH_TEMP:
        return withSeparator(QDir::tempPath());
    default:
        return QString();
    }
}
