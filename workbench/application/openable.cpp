// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/openable.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

const QLatin1String sequenceInfo("SequenceInfo.txt");
const QLatin1String clickInfo("ClickInfo.txt");

bool holdsDatasets(const QDir& folder)
{
    const QStringList below = folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    return std::any_of(below.cbegin(), below.cend(), [&folder](const QString& name) {
        return QFileInfo::exists(folder.filePath(name + QLatin1Char('/') + clickInfo));
    });
}

} // namespace

Openable openableKind(const QString& strPath)
{
    const QFileInfo info(strPath);
    if (strPath.isEmpty() || !info.exists()) {
        return Openable::Missing;
    }
    if (!info.isDir()) {
        return info.fileName() == sequenceInfo ? Openable::Sequence
               : info.fileName() == clickInfo  ? Openable::Dataset
                                               : Openable::Images;
    }
    const QDir folder(info.filePath());
    if (folder.exists(sequenceInfo)) {
        return Openable::Sequence;
    }
    if (folder.exists(clickInfo)) {
        return Openable::Dataset;
    }
    // What cannot be looked into is told as a sequence that cannot be opened.
    return holdsDatasets(folder) || !info.isReadable() ? Openable::Sequence : Openable::Images;
}
