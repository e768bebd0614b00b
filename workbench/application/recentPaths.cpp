// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/recentPaths.h"

#include "host/CORVSettings.h"

#include <QDir>
#include <QFileInfo>

namespace {

constexpr const char* const key = "Workbench/RecentSequences";
constexpr int longestFolder = 60;

// The middle of a long path tells least.
QString shortened(const QString& strPath)
{
    if (strPath.size() <= longestFolder) {
        return strPath;
    }
    const int half = longestFolder / 2 - 1;
    return strPath.left(half) + QStringLiteral("\u2026") + strPath.right(half);
}

} // namespace

namespace recentPaths {

QString absolute(const QString& strPath)
{
    return QDir::cleanPath(QFileInfo(strPath).absoluteFilePath());
}

QStringList with(const QStringList& paths, const QString& strPath)
{
    QStringList list = without(paths, strPath);
    list.prepend(absolute(strPath));
    return list.mid(0, most);
}

QStringList without(const QStringList& paths, const QString& strPath)
{
    QStringList list = paths;
    list.removeAll(absolute(strPath));
    return list;
}

QString parentOf(const QString& strFolder)
{
    return QFileInfo(absolute(strFolder)).path();
}

QString menuText(int nPlace, const QString& strPath)
{
    const QFileInfo info(strPath);
    const QString number = nPlace < 9 ? QStringLiteral("&%1").arg(nPlace + 1) : QString::number(nPlace + 1);
    QString rest = QStringLiteral("%1   %2").arg(info.fileName(), shortened(info.path()));
    return QStringLiteral("%1  ").arg(number) + rest.replace(QLatin1Char('&'), QLatin1String("&&"));
}

QStringList read(const CORVSettings& settings)
{
    return settings.value(QLatin1String(key)).toStringList().mid(0, most);
}

void write(CORVSettings& settings, const QStringList& paths)
{
    settings.setValue(QLatin1String(key), paths);
}

} // namespace recentPaths
