// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/resultsIndex.h"

#include "host/CPLSettingsFileWrapper.h"

#include <algorithm>

namespace {

QString filesFolderName()
{
    return QStringLiteral("SpecUnmix");
}

QString digits(const QDateTime& moment, const char* pSeparator)
{
    const QDate date = moment.date();
    const QTime time = moment.time();
    return QString::asprintf("%02d%02d%02d%s%02d%02d%02d", date.year(), date.month(), date.day(), pSeparator,
                             time.hour(), time.minute(), time.second());
}

} // namespace

QString resultFileStamp(const QDateTime& moment)
{
    return QStringLiteral("SPUM-") + digits(moment, "-");
}

namespace resultsIndex {

QString sectionTag()
{
    return QStringLiteral("SPUM");
}

QString menuNameTag()
{
    return QStringLiteral("MenuName");
}

QString fileNameTag()
{
    return QStringLiteral("FileName");
}

QString newMark()
{
    return QStringLiteral("(new)");
}

QString withoutNewMark(QString strName)
{
    return strName.endsWith(newMark()) ? strName.remove(newMark()) : strName;
}

QString batchStamp(const QDateTime& moment)
{
    return digits(moment, "");
}

QString folder(const QString& strInfoPath)
{
    return strInfoPath + QStringLiteral("XML");
}

QString batchFolder(const QString& strInfoPath, const QString& strBatchStamp)
{
    return strInfoPath + QStringLiteral("SPUM") + strBatchStamp;
}

QString indexPath(const QString& strFolder)
{
    return strFolder + QStringLiteral("/SPUM.txt");
}

QString filesFolder(const QString& strFolder)
{
    return strFolder + QLatin1Char('/') + filesFolderName();
}

QString resultFile(const QDateTime& moment)
{
    return filesFolderName() + QLatin1Char('/') + resultFileStamp(moment) + QStringLiteral(".xml");
}

QString batchResultFile(const QString& strBatchStamp)
{
    return filesFolderName() + QStringLiteral("/SPUM-XML") + strBatchStamp + QStringLiteral(".xml");
}

QString relativeFile(const QString& strFileName)
{
    return strFileName.mid(std::max(0, strFileName.lastIndexOf(filesFolderName())));
}

void setTags(CPLSettingsFileWrapper& index)
{
    index.setAutoMenuNameTag(QStringLiteral("SPUM_"));
    index.setMenuNameTag(menuNameTag());
    index.setFileNameTag(fileNameTag());
}

std::optional<QString> findName(const QStringList& names, const QString& strName)
{
    if (names.contains(strName)) {
        return strName;
    }
    const auto found = std::find_if(names.cbegin(), names.cend(), [&strName](const QString& name) {
        return name.compare(strName, Qt::CaseInsensitive) == 0;
    });
    return found != names.cend() ? std::optional<QString>(*found) : std::nullopt;
}

} // namespace resultsIndex
