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

// One sequence: a folder with "SequenceInfo.txt" and a folder for each dataset. An open sequence is known by its id to every
// user of the process as long as it lives.
class CORVSequenceDataset : public QObject
{
    Q_OBJECT

public:
    explicit CORVSequenceDataset(QObject* pParent = nullptr);
    ~CORVSequenceDataset() override;

    // The open sequence with this id, or null.
    static CORVSequenceDataset* getSequenceDataset(const QString& strId);
    static QList<CORVSequenceDataset*> openSequences();

    // Opens the sequence at `strPath` (its folder, or the info file). A dataset that cannot be read is left out and told in
    // *pWarnings with file and reason; only a sequence of which nothing can be read fails, with *pError. An id that is open
    // already gets a number behind.
    ESTATUS open(const QString& strPath, QString* pError = nullptr, QStringList* pWarnings = nullptr);
    // Adds a dataset that was made in memory; the sequence owns it from then on.
    void addDataset(CORVDataset* pDataset);

    QString getSequenceID() const { return m_strId; }
    void setSequenceID(const QString& strId);
    QString getSequenceName() const { return m_strName; }
    void setSequenceName(const QString& strName) { m_strName = strName; }
    // Folder of the sequence's info files, with its separator at the end; empty for a sequence without a home.
    QString getSequenceInfoPath() const { return m_strInfoPath; }
    // Sections of the info file; keys that are not ours are kept.
    CPLClickInfo& sequenceInfo() { return m_info; }

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
    void setKyvoSequence(bool bKyvo) { m_bKyvo = bKyvo; }
    void set3DSceneOnlySequence(bool bOnly) { m_b3DSceneOnly = bOnly; }

    // True if the data hold an isotope whose decay gives Cherenkov light (it is named in a dataset's click info and the
    // database knows it as one); the argument receives its name.
    bool isCherenkovIsotopeInData(QString& strIsotope) const;
    // One factor per click number, with L = ln 2 / half life: exp(L (t - t0)) * L dt / (1 - exp(-L dt)), where t is the
    // start of the exposure, dt its length and t0 the earliest start among the given click numbers: it turns the mean of an
    // exposure into the value at t0. False when a dataset, a time or a length is missing, a length is not above 0, or the
    // half life is not above 0; the output is then empty.
    bool calculateDecayCorrectFactor_CherenkovData(const QVector<QString>& clickNumbers, double dHalfLifeSec,
                                                   QVector<double>& factors) const;

    void setModified(bool bModified);
    bool isModified() const { return m_bModified; }
    // Announces a change of `pSequence` to its listeners.
    void sequencePropertyChanged(CORVSequenceDataset* pSequence);

    // Read directly by the system.
    bool isFluorescence = false;
    bool isTransillumination = false; // fluorescence was excited from below, spot by spot

Q_SIGNALS:
    void propertyChanged(CORVSequenceDataset* pSequence);

private:
    void readSequenceInfo();

    QString m_strId;
    QString m_strName;
    QString m_strInfoPath;
    CPLClickInfo m_info;
    QList<QSharedPointer<CORVDataset>> m_datasets;
    tag_simageadjust m_adjust;
    bool m_bKyvo = false;
    bool m_b3DSceneOnly = false;
    bool m_bModified = false;
};
