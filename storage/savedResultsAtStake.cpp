// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/savedResultsAtStake.h"

#include "storage/resultsIndex.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr qint64 longestLine = 4096;

bool hasEntries(const QString& strIndex)
{
    if (!QFileInfo::exists(strIndex)) {
        return false;
    }
    QFile file(strIndex);
    if (!QFileInfo(strIndex).isFile() || !file.open(QIODevice::ReadOnly)) {
        return true;
    }
    while (!file.atEnd()) {
        const QByteArray line = file.readLine(longestLine);
        if (line.isEmpty()) { // cannot be read
            return true;
        }
        const QByteArray text = (line.startsWith("\xEF\xBB\xBF") ? line.mid(3) : line).trimmed();
        if (!text.isEmpty() && !text.startsWith('#')) {
            return true;
        }
    }
    return false;
}

} // namespace

QStringList savedResultsFolders(const QString& strFolder)
{
    return QStringList{resultsIndex::folder(QString())} +
           QDir(strFolder).entryList({QStringLiteral("SPUM*")}, QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
}

QStringList emptyResultsIndexes(const QString& strFolder)
{
    const QDir folder(strFolder);
    QStringList empty;
    for (const QString& place : savedResultsFolders(strFolder)) {
        const QString index = resultsIndex::indexPath(place);
        if (QFileInfo(folder.filePath(index)).isFile() && !hasEntries(folder.filePath(index))) {
            empty.append(index);
        }
    }
    return empty;
}

QString savedResultsAtStake(const QString& strFolder)
{
    const QDir folder(strFolder);
    for (const QString& place : savedResultsFolders(strFolder)) {
        const QString index = resultsIndex::indexPath(place);
        if (hasEntries(folder.filePath(index))) {
            return QStringLiteral(
                       "%1 holds saved results (%2), which would be lost with it: delete them first, or choose "
                       "another folder")
                .arg(QDir::cleanPath(folder.absolutePath()), index);
        }
    }
    return QString();
}
