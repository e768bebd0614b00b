// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QVector>

#include <functional>

class CORVSequenceDataset;

// A file of a sequence that an analysis of it depends on.
struct AnalysedFile
{
    QString image; // click number of the dataset that it belongs to; empty for the sequence's own
    QString name;  // relative to the sequence's folder
    QString sha1;  // of its bytes; empty where it cannot be read
};

// The images, infos and tables in the folders of those datasets, the sequence's own info and valid pixels, and the
// photographs of the other datasets, as one of them may serve; sorted by name, without hashes.
QList<AnalysedFile> analysedFiles(const CORVSequenceDataset& sequence, const QVector<QString>& clickNumbers);

// The same in two steps: the folders of the datasets, and then the files in them, which touches no dataset, so any
// thread may do it.
struct AnalysedFolders
{
    struct Folder
    {
        QString image; // click number of its dataset
        QString path;  // with a separator at its end
        bool analysed = false;
    };
    QString sequence; // that of the sequence
    QList<Folder> folders;
};
AnalysedFolders analysedFolders(const CORVSequenceDataset& sequence, const QVector<QString>& clickNumbers);
QList<AnalysedFile> analysedFiles(const AnalysedFolders& folders);

// The same files with their hashes. Reads every byte until `goesOn` says no; touches no dataset, so any thread may do
// it.
QList<AnalysedFile> hashedFiles(const QString& strSequenceFolder, QList<AnalysedFile> files,
                                const std::function<bool()>& goesOn = {});
