// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVSettings.h"

#include <QDir>
#include <QFileInfo>

namespace {

constexpr const char* const recentKey = "Files/RecentFolder";

}

QString CORVSettings::getRecentFilePath() const
{
    const QString folder = value(QLatin1String(recentKey)).toString();
    return !folder.isEmpty() && QFileInfo(folder).isDir() ? folder : QDir::homePath();
}

void CORVSettings::setRecentFilePath(const QString& strPath)
{
    if (strPath.isEmpty()) {
        return;
    }
    const QFileInfo info(strPath);
    setValue(QLatin1String(recentKey), QDir::cleanPath(info.isDir() ? info.absoluteFilePath() : info.absolutePath()));
}
