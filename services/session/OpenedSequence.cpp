// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/OpenedSequence.h"

#include "engine/CORVSpumKyvo.h"
#include "files/liesInside.h"
#include "host/CORVProcess.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "services/basis/Failure.h"
#include "services/basis/TruthFiles.h"
#include "services/basis/UnitNames.h"
#include "services/session/RegionFiles.h"
#include "services/session/openingAdvice.h"
#include "services/session/photographOrigin.h"

#include <QDir>
#include <QFileInfo>

OpenedSequence::OpenedSequence(const QString& strPath) : m_pSequence(std::make_unique<CORVSequenceDataset>())
{
    const QString unsettled = RegionFiles::settle(strPath, [] { return !CORVProcess::isProcessAborted(); });
    if (!unsettled.isEmpty()) {
        m_warnings.append(unsettled);
    }
    QString error;
    if (m_pSequence->open(strPath, &error, &m_warnings) != ESTATUS_SUCCESS) {
        throw Failure(error, openingAdvice(strPath));
    }
    const QString truth = clickText(m_pSequence->sequenceInfo(), SequenceKeys::kSequence, SequenceKeys::kTruthFolder);
    if (!orv::liesInside(folder(), truth)) {
        m_warnings.append(QStringLiteral("the truth folder %1 lies outside the sequence and is not read").arg(truth));
    }
    m_pEngine = std::make_unique<CORVSpumKyvo>(m_pSequence->getSequenceID());
    m_bAnalysable = m_pEngine->buildDatasetInfo();
    if (!m_bAnalysable) {
        m_strReason = findReason();
    }
}

OpenedSequence::~OpenedSequence() = default;

QString OpenedSequence::folder() const
{
    return m_pSequence->getSequenceInfoPath();
}

bool OpenedSequence::hasPhotographOfCamera() const
{
    return ::hasPhotographOfCamera(*m_pSequence);
}

QString OpenedSequence::truthFolder(int nUnit, bool bDecayCorrected) const
{
    QString name;
    CPLSection* section = m_pSequence->sequenceInfo()[QLatin1String(SequenceKeys::kSequence)];
    if (section == nullptr || section->getValue(QLatin1String(SequenceKeys::kTruthFolder), &name) != 0 ||
        name.isEmpty()) {
        return QString();
    }
    // The name comes from a file, and may be meant to lead elsewhere.
    if (!orv::liesInside(folder(), name)) {
        return QString();
    }
    const QString units = QDir(folder()).filePath(name) + QLatin1Char('/');
    const QString unit =
        bDecayCorrected ? truthDecayFolder(static_cast<tag_edisplayunit>(nUnit)) : UnitNames::options().value(nUnit);
    const QString path = units + unit + QLatin1Char('/');
    return QFileInfo(path).isDir() ? path : QString();
}

// The engine says no without words in some cases; the user is told the first that holds.
QString OpenedSequence::findReason() const
{
    const auto datasets = m_pSequence->getDatasets();
    if (datasets.isEmpty()) {
        return QStringLiteral("the sequence holds no image");
    }
    for (auto* dataset : datasets) {
        if (dataset->getCoreImage(IMAGETYPE_PHOTOGRAPH) == nullptr &&
            m_pSequence->getEquivalentImageFromSequence(dataset, IMAGETYPE_PHOTOGRAPH) == nullptr) {
            return QStringLiteral("there is no photograph");
        }
    }
    if (m_pEngine->m_spots.size() > 1 && m_pEngine->getAllKeyPairs().size() > 1) {
        return QStringLiteral("the scan is not complete: every spot needs every pair of filters");
    }
    return m_pSequence->isKyvoSequence()
               ? QStringLiteral("it takes images at two time points at least")
               : QStringLiteral(
                     "it takes images at two wavelengths at least, given by three digits in their filter texts");
}
