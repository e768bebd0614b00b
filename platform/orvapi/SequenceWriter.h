// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/StagedFolder.h"
#include "host/CPLClickInfo.h"
#include "host/orv_types.h"

#include <QList>
#include <QPair>
#include <QSet>
#include <QString>
#include <QStringList>

class CILImage;

// What the info file of a new sequence says.
struct SequenceDescription
{
    QString id;   // must not be empty
    QString name; // the id serves when empty
    bool temporal = false;
    bool fluorescence = false;
    bool transillumination = false;
    bool secondKind = false; // of fluorescence
    bool sceneOnly3D = false;
    bool ctScan = false;     // holds a CT scan
    bool ctComplete = false; // all of it; counts only with ctScan
    tag_simageadjust adjust;
    QString
        photographOrigin; // e.g. "mean image" for a photograph that no camera took; empty when there is nothing to say
    QString truthFolder;  // name of the extra folder that holds the truth of a simulated sequence; empty without
    CPLClickInfo extraSections; // written behind the sequence's own
};

// One dataset of a new sequence.
struct DatasetDescription
{
    QString
        clickNumber;   // unique in the sequence; should be unique among all sequences, as datasets are looked up by it
    CPLClickInfo info; // complete sections; the entry "ClickNumber" and missing "Binning Factor"s are filled in
};

// Writes a new sequence folder as a whole or not at all. Everything is built in a hidden folder beside the target,
// which finish() renames; the destructor removes what was not finished. After a failure the writer refuses further
// calls, and the target is as it was.
//
//     SequenceWriter writer;
//     if (!writer.begin(target, description, force, &error)) ...
//     if (!writer.addDataset(dataset, {{IMAGETYPE_LUMINESCENT, &image}, {IMAGETYPE_PHOTOGRAPH, &photo}}, &error)) ...
//     if (!writer.finish(&error)) ...
//
// Every `pError` may be null; it receives one sentence with the path concerned.
class SequenceWriter
{
public:
    using Images = QList<QPair<tag_eimagetype, const CILImage*>>;

    SequenceWriter();
    SequenceWriter(const SequenceWriter&) = delete;
    SequenceWriter& operator=(const SequenceWriter&) = delete;
    ~SequenceWriter();

    // Prepares the folder `strTarget`, whose parent must exist. A target that exists is refused; with `bForce` it is
    // replaced at finish(), provided that it is an empty folder, or a sequence that holds nothing but what was written
    // with it: no file, no region and no result that came later, but for what lies in its folders `givenUp`.
    bool begin(const QString& strTarget, const SequenceDescription& description, bool bForce, QString* pError = nullptr,
               const QStringList& givenUp = {});

    // Appends a dataset with its images, which are written in their own pixel type and stay the caller's. Refused: an
    // empty or repeated click number, an empty image, two images of one type. Only the first dataset needs a
    // photograph; the sequence lends it to the others.
    bool addDataset(const DatasetDescription& dataset, const Images& images, QString* pError = nullptr);

    // A folder of that name inside the sequence, made when missing, to write further files to before finish(); with a
    // separator at its end. Empty before begin(), when it cannot be made, or for a name that is not a plain folder
    // name.
    QString extraFolder(const QString& strName);

    // Where to write a further file of that name, beside the datasets, before finish(). Empty before begin(), or for a
    // name that is not a plain file name or is taken.
    QString extraFile(const QString& strName);

    // Writes the info file and puts the folder in its place. Refused without a dataset.
    bool finish(QString* pError = nullptr);

private:
    bool fail(const QString& strReason, QString* pError);
    bool checkDataset(const DatasetDescription& dataset, const Images& images, QString* pError);
    bool writeImages(const QString& strFolder, const Images& images, CPLClickInfo& info, QString* pError);
    CPLClickInfo sequenceInfo() const;
    QString freeFolderName(const QString& strClickNumber) const;
    QString reasonAgainstReplacing() const;

    enum class State
    {
        Idle,
        Open,
        Failed,
        Done
    };

    State m_state = State::Idle;
    bool m_bForce = false;
    QStringList m_givenUp;
    StagedFolder m_folder;
    SequenceDescription m_description;
    QStringList m_folders;
    QSet<QString> m_clickNumbers;
    QSet<QString> m_taken; // names inside the folder, in lower case
};
