// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/batchCandidate.h"

#include "host/CORVSequenceDataset.h"
#include "workbench/application/openable.h"
#include "workbench/application/paletteReason.h"

#include <QCoreApplication>
#include <QDir>

namespace {

QString tr(const char* pText)
{
    return QCoreApplication::translate("batchCandidate", pText);
}

} // namespace

BatchCandidate batchCandidate(const QString& strFolder)
{
    BatchCandidate candidate;
    candidate.folder = QDir::cleanPath(QDir(strFolder).absolutePath());
    candidate.name = QDir(candidate.folder).dirName();
    switch (openableKind(strFolder)) {
    case Openable::Missing:
        candidate.reason = tr("There is no such folder.");
        return candidate;
    case Openable::Sequence:
        break;
    default:
        candidate.reason = tr("It is no sequence. Images of other programs are imported first.");
        return candidate;
    }
    CORVSequenceDataset sequence;
    QString error;
    QStringList warnings;
    if (sequence.open(strFolder, &error, &warnings) != ESTATUS_SUCCESS) {
        candidate.reason = tr("It cannot be opened: %1").arg(error);
        return candidate;
    }
    PaletteFacts facts;
    facts.anythingOpen = facts.sequenceInFront = true;
    facts.name = sequence.getSequenceName();
    facts.images = candidate.images = sequence.getDatasets().size();
    facts.analysable = sequence.isSpectrallyAnalysable || sequence.isKyvoSequence();
    if (facts.images < 2 || !facts.analysable) {
        candidate.reason = paletteReason(facts);
    }
    return candidate;
}

QStringList sequencesIn(const QString& strFolder)
{
    const QDir folder(strFolder);
    if (openableKind(strFolder) == Openable::Sequence) {
        return {strFolder};
    }
    QStringList found;
    const QStringList below = folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::LocaleAware);
    for (const QString& name : below) {
        if (openableKind(folder.filePath(name)) == Openable::Sequence) {
            found.append(folder.filePath(name));
        }
    }
    return found.isEmpty() ? QStringList(strFolder) : found;
}
