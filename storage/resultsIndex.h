// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>

class CPLSettingsFileWrapper;

// "SPUM-", the date, a dash and the time, to the second: SPUM-20240131-235959. Two results of one second have the same.
QString resultFileStamp(const QDateTime& moment);

// Where saved results lie and how their index names them; docs/formats.md tells the layout.
namespace resultsIndex {

// Key of the sections of results.
QString sectionTag();
// Keys of an entry: the result's name as the user sees it, and its file relative to the index.
QString menuNameTag();
QString fileNameTag();
// "(new)", behind the name of a result that is not saved yet.
QString newMark();
// Of a name that ends in "(new)" every "(new)" is taken out; any other stays as it is.
QString withoutNewMark(QString strName);

// The digits of date and time alone, which all results of one batch have in common: 20240131235959.
QString batchStamp(const QDateTime& moment);

// Folders of the results of a sequence; the info path has its separator at the end, these have none.
QString folder(const QString& strInfoPath);
QString batchFolder(const QString& strInfoPath, const QString& strBatchStamp);
// The index and the folder of the files in such a folder.
QString indexPath(const QString& strFolder);
QString filesFolder(const QString& strFolder);

// Files of results, relative to the index.
QString resultFile(const QDateTime& moment);
QString batchResultFile(const QString& strBatchStamp);
// From the last "SpecUnmix" on; the whole of a text without one.
QString relativeFile(const QString& strFileName);

// To be called ahead of every use of an index.
void setTags(CPLSettingsFileWrapper& index);
// The name that is meant, without regard to case. Names that differ in case alone may stand beside each other, so the
// one that is equal comes first.
std::optional<QString> findName(const QStringList& names, const QString& strName);

} // namespace resultsIndex
