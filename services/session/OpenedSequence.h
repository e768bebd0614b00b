// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <memory>

class CORVSequenceDataset;
class CORVSpumKyvo;

// A sequence that a command has opened, with its engine.
class OpenedSequence
{
public:
    // Opens the sequence; throws Failure with file and reason when nothing of it can be read.
    explicit OpenedSequence(const QString& strPath);
    ~OpenedSequence();
    OpenedSequence(const OpenedSequence&) = delete;
    OpenedSequence& operator=(const OpenedSequence&) = delete;

    CORVSequenceDataset& sequence() { return *m_pSequence; }
    CORVSpumKyvo& engine() { return *m_pEngine; }
    // What could not be read, with file and place.
    const QStringList& warnings() const { return m_warnings; }
    // The sequence's folder with a separator at its end.
    QString folder() const;
    // False for a photograph that was made of the images.
    bool hasPhotographOfCamera() const;
    // Whether the engine's inspection says that the sequence can be analysed; if not, why.
    bool canBeAnalysed() const { return m_bAnalysable; }
    QString reasonAgainst() const { return m_strReason; }
    // Unit folder of the sequence's truth ("truth/counts/"), with a separator at its end; empty without one.
    // Data corrected for decay have a truth of their own, that of the isotope's half life.
    QString truthFolder(int nUnit, bool bDecayCorrected = false) const;

private:
    QString findReason() const;

    std::unique_ptr<CORVSequenceDataset> m_pSequence;
    std::unique_ptr<CORVSpumKyvo> m_pEngine;
    QStringList m_warnings;
    bool m_bAnalysable = false;
    QString m_strReason;
};
