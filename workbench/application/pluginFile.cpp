// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/pluginFile.h"

#include "host/CORVToolPalettePluginBase.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QPluginLoader>

namespace {

// A library that cannot be read by Qt has no metadata; the reason that the loader gives then is that of the attempt.
QString reasonWithoutMetadata(const QPluginLoader& loader, const QString& strPath)
{
    if (!QFileInfo(strPath).isReadable()) {
        return QStringLiteral("The file cannot be read, its permissions forbid it.");
    }
    return QStringLiteral("The file is no plug-in that this program can load: %1").arg(loader.errorString());
}

} // namespace

namespace pluginFile {

QString name()
{
    return QStringLiteral("liborvspum.so");
}

QStringList folders(const QString& strOption, const QString& strSetting, const QString& strProgramFolder)
{
    for (const QString& strNamed : {strOption, strSetting}) {
        if (!strNamed.isEmpty()) {
            return {QDir::cleanPath(QDir().absoluteFilePath(strNamed))};
        }
    }
    return {QDir::cleanPath(strProgramFolder + QLatin1String("/plugins")),
            QDir::cleanPath(strProgramFolder + QLatin1String("/../" ORV_INSTALL_PLUGIN_DIR))};
}

Loaded load(const QStringList& folders)
{
    Loaded loaded;
    for (const QString& strFolder : folders) {
        const QString strPath = strFolder + QLatin1Char('/') + name();
        if (loaded.path.isEmpty() && QFileInfo(strPath).isFile()) {
            loaded.path = strPath;
        }
    }
    if (loaded.path.isEmpty()) {
        loaded.reason = QStringLiteral("There is no file %1 in %2.").arg(name(), folders.join(QLatin1String(" or ")));
        return loaded;
    }
    QPluginLoader loader(loaded.path);
    // What it lacks shows now and not in the middle of an analysis. Its code may be on the stack when the program ends.
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint | QLibrary::PreventUnloadHint);
    if (loader.metaData().isEmpty()) {
        loaded.reason = reasonWithoutMetadata(loader, loaded.path);
        return loaded;
    }
    QObject* pInstance = loader.instance();
    loaded.plugin = qobject_cast<CORVToolPalettePluginBase*>(pInstance);
    if (pInstance == nullptr) {
        loaded.reason = QStringLiteral("The file does not fit this program, it may be of another build: %1")
                            .arg(loader.errorString());
    } else if (loaded.plugin == nullptr) {
        loaded.reason = QStringLiteral("The file is a plug-in, but brings no tool palette that this program knows.");
        delete pInstance;
    }
    return loaded;
}

} // namespace pluginFile
