// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/batchCandidate.h"

#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "workbench/application/openable.h"
#include "workbench/application/paletteReason.h"

#include <QCoreApplication>
#include <QDir>
#include <QSet>

#include <algorithm>

namespace {

QString tr(const char* pText)
{
    return QCoreApplication::translate("batchCandidate", pText);
}

// As the tool names a filter in its libraries: the three digits of a wavelength, else its text without regard to case.
QString bandText(const QString& strFilter)
{
    constexpr int wavelengthLength = 3;
    QString strDigits;
    for (const QChar c : strFilter) {
        strDigits += c.isDigit() ? QString(c) : QString();
    }
    return strDigits.size() < wavelengthLength ? strFilter.toLower() : strDigits.left(wavelengthLength);
}

QString pairText(const QString& strExcitation, const QString& strEmission)
{
    return QStringLiteral("%1 / %2").arg(bandText(strExcitation), bandText(strEmission));
}

// Pairs of filters of spectral images that the spectra have no value for, each once. In a temporal sequence images are
// told apart by time.
QStringList missingBands(const CORVSequenceDataset& sequence, const BatchBands& bands)
{
    QSet<QString> known;
    for (int i = 0; i < std::min(bands.excitation.size(), bands.emission.size()); ++i) {
        known.insert(pairText(bands.excitation.at(i), bands.emission.at(i)));
    }
    QStringList missing;
    if (known.isEmpty() || sequence.isKyvoSequence()) {
        return missing;
    }
    for (const CORVDataset* pDataset : sequence.getDatasets()) {
        const QString strPair = pairText(pDataset->getExcitationFilter(), pDataset->getEmissionFilter());
        if (pDataset->hasLuminescentImage && !known.contains(strPair) && !missing.contains(strPair)) {
            missing.append(strPair);
        }
    }
    return missing;
}

// Empty where none is missing.
QString reasonOf(const QStringList& missing)
{
    constexpr int named = 4;
    if (missing.isEmpty()) {
        return QString();
    }
    const QString strNames = missing.mid(0, named).join(QStringLiteral(", "));
    return missing.size() == 1 ? tr("The spectra have no value for its band %1.").arg(strNames)
                               : tr("The spectra have no values for %1 of its bands: %2%3.")
                                     .arg(QString::number(missing.size()), strNames,
                                          missing.size() > named ? QStringLiteral(", \u2026") : QString());
}

} // namespace

BatchCandidate batchCandidate(const QString& strFolder, const BatchBands& bands)
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
        return candidate;
    }
    candidate.reason = reasonOf(missingBands(sequence, bands));
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
