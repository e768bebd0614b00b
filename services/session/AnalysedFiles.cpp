// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/AnalysedFiles.h"

#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "services/basis/fileHash.h"

#include <QDir>
#include <QMap>

namespace {

bool isPhotograph(const QString& strName)
{
    return strName.startsWith(QLatin1String("photograph"), Qt::CaseInsensitive);
}

QStringList namesIn(const QString& strFolder)
{
    return QDir(strFolder).entryList(
        {QStringLiteral("*.tif"), QStringLiteral("*.tiff"), QStringLiteral("*.txt"), QStringLiteral("*.csv")},
        QDir::Files, QDir::Name);
}

} // namespace

AnalysedFolders analysedFolders(const CORVSequenceDataset& sequence, const QVector<QString>& clickNumbers)
{
    AnalysedFolders folders{sequence.getSequenceInfoPath(), {}};
    for (const CORVDataset* pDataset : sequence.getDatasets()) {
        const QString click = pDataset->getClickNumber();
        folders.folders.append({click, pDataset->folderPath(), clickNumbers.contains(click)});
    }
    return folders;
}

QList<AnalysedFile> analysedFiles(const AnalysedFolders& folders)
{
    const QDir root(folders.sequence);
    QMap<QString, AnalysedFile> files; // sorted, each once: two datasets may lie in one folder
    for (const char* pName : {SequenceFiles::kSequenceInfo, SequenceFiles::kValidPixels}) {
        const QString own = QString::fromLatin1(pName);
        if (root.exists(own)) {
            files.insert(own, {QString(), own, QString()});
        }
    }
    for (const AnalysedFolders::Folder& folder : folders.folders) {
        for (const QString& name : namesIn(folder.path)) {
            const QString file = root.relativeFilePath(folder.path + name);
            if ((folder.analysed || isPhotograph(name)) && !files.contains(file)) {
                files.insert(file, {folder.image, file, QString()});
            }
        }
    }
    return files.values();
}

QList<AnalysedFile> analysedFiles(const CORVSequenceDataset& sequence, const QVector<QString>& clickNumbers)
{
    return analysedFiles(analysedFolders(sequence, clickNumbers));
}

QList<AnalysedFile> hashedFiles(const QString& strSequenceFolder, QList<AnalysedFile> files,
                                const std::function<bool()>& goesOn)
{
    const QDir root(strSequenceFolder);
    for (AnalysedFile& file : files) {
        file.sha1 = fileHash(root.filePath(file.name), goesOn);
    }
    return files;
}
