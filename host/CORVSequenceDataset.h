// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CORVDataset.h"
#include "host/orv_types.h"

#include <QList>
#include <QObject>
#include <QSharedPointer>
#include <QString>
#include <QStringList>
#include <QVector>

struct SequenceInfo; // the implementation's

// One sequence: a folder with "SequenceInfo.txt" and a folder for each dataset. An open sequence is known by its id to
// every user of the process as long as it lives. Sequences come, go and change on the user-interface thread only.
class CORVSequenceDataset : public QObject
{
    Q_OBJECT

public:
    explicit CORVSequenceDataset(QObject* pParent = nullptr);
    ~CORVSequenceDataset() override;

    // The open sequence with this id, or null.
    static CORVSequenceDataset* getSequenceDataset(const QString& strId);
    static QList<CORVSequenceDataset*> openSequences();

    // Opens the sequence at `strPath` (its folder, or the info file). Images are not read. A dataset that cannot be
    // read, has the click number of an earlier one, or lies outside the folder is left out and told in *pWarnings with
    // file and reason; only a sequence of which nothing can be read fails, with *pError, and is then empty. Without an
    // info file, or with a broken one, the folders that hold a click info are the datasets, ordered by name with
    // numbers by value, and the kinds are derived from their click infos, told in *pWarnings. An id that is open
    // already gets a number behind.
    ESTATUS open(const QString& strPath, QString* pError = nullptr, QStringList* pWarnings = nullptr);
    // Adds a dataset that was made in memory; the sequence owns it from then on. False for null and for a click number
    // that the sequence has already; the dataset then stays the caller's.
    bool addDataset(CORVDataset* pDataset);

    QString getSequenceID() const { return m_strId; }
    // As open() does, with a number behind when another open sequence has the id.
    void setSequenceID(const QString& strId);
    QString getSequenceName() const { return m_strName; }
    void setSequenceName(const QString& strName) { m_strName = strName; }
    // Folder of the sequence's info files, with its separator at the end; empty for a sequence without a home.
    QString getSequenceInfoPath() const { return m_strInfoPath; }
    // Sections of the info file; keys that are not ours are kept.
    CPLClickInfo& sequenceInfo() { return m_info; }

    // A dataset that open() left out: its folder, with a separator at its end, and why.
    struct LeftOut
    {
        QString folder;
        QString reason;
        int before = 0; // datasets that stand before it
    };
    const QVector<LeftOut>& leftOut() const { return m_leftOut; }

    // In sequence order; owned by the sequence.
    QList<CORVDataset*> getDatasets() const;
    CORVDataset* getDataset(const QString& strClickNumber) const;
    // The first image of that type among the other datasets, in sequence order, or null; not owned by the caller.
    CILImage* getEquivalentImageFromSequence(CORVDataset* pDataset, tag_eimagetype eType) const;

    tag_simageadjust* getImageAdjust() { return &m_adjust; }

    bool isKyvoSequence() const { return m_bKyvo; }
    bool is3DSceneOnlySequence() const { return m_b3DSceneOnly; }
    bool isSLASequence() const;
    // True when the sequence is a tomography scan; the bool also counts one whose scan is not complete.
    bool isCTSequence(bool bIncomplete) const;
    void setCTScan(bool bScan, bool bComplete);
    void setKyvoSequence(bool bKyvo) { m_bKyvo = bKyvo; }
    void set3DSceneOnlySequence(bool bOnly) { m_b3DSceneOnly = bOnly; }

    // True if the data hold an isotope whose decay gives Cherenkov light (it is named in a dataset's click info and the
    // database knows it as one); the argument receives the first such name as the database spells it, else an empty
    // text.
    bool isCherenkovIsotopeInData(QString& strIsotope) const;
    // One factor per click number, with L = ln 2 / half life: exp(L (t - t0)) * L dt / (1 - exp(-L dt)), where t is the
    // start of the exposure, dt its length and t0 the earliest start among the given click numbers: it turns the mean
    // of an exposure into the value at t0. False when a dataset, a time or a length is missing, a length is not above
    // 0, the half life is not above 0, or a factor exceeds what a double holds; the output is then empty.
    bool calculateDecayCorrectFactor_CherenkovData(const QVector<QString>& clickNumbers, double dHalfLifeSec,
                                                   QVector<double>& factors) const;

    void setModified(bool bModified);
    bool isModified() const { return m_bModified; }

    // Read directly by the system.
    bool isFluorescence = false;
    // A second kind of fluorescence sequence, which is not unmixed as a tomography scan. Off unless the info file says
    // otherwise.
    bool isSecondKind = false;
    bool isTransillumination = false; // fluorescence was excited from below, spot by spot
    // Whether an analysis of spectra can begin: luminescent images of two different filters at least, and not a scene
    // alone. Set by open() and addDataset(); who finds it to be wrong clears it.
    bool isSpectrallyAnalysable = false;

Q_SIGNALS:
    // Raised by whoever changed `pSequence`.
    void sequencePropertyChanged(CORVSequenceDataset* pSequence);
    // Asks the tool to look at `pSequence` anew.
    void updateSpumProperties(CORVSequenceDataset* pSequence);
    // Asks the tool to offer to save a result of this sequence before it is gone.
    void saveExistingAnalysisResult();

private:
    bool readInfo(SequenceInfo* pInfo, QStringList* pWarnings);
    // The datasets' folders in order, from the info file or, failing that, from what lies in the folder.
    QStringList findFolders(bool bDescribed, const SequenceInfo& info, QStringList* pWarnings) const;
    QStringList foldersOnDisk() const;
    void readDatasets(const QStringList& folders, QStringList* pWarnings);
    // Takes over what the info file says, and the rest from the click infos.
    void takeOver(bool bDescribed, const SequenceInfo& info, QStringList* pWarnings);
    void reset();
    bool hasSpectra() const;

    QString m_strId;
    QString m_strName;
    QString m_strInfoPath;
    CPLClickInfo m_info;
    QList<QSharedPointer<CORVDataset>> m_datasets;
    QVector<LeftOut> m_leftOut;
    tag_simageadjust m_adjust;
    bool m_bKyvo = false;
    bool m_b3DSceneOnly = false;
    bool m_bCTScan = false;
    bool m_bCTComplete = false;
    bool m_bModified = false;
};
