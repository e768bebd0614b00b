// SPDX-License-Identifier: GPL-3.0-or-later
// Unmixed maps as datasets of the host.
#include "engine/CORVSpumKyvo.h"

#include "engine/runTexts.h"
#include "files/deleteFolderTree.h"
#include "spectra/logLine.h"
#include "storage/exportClickInfo.h"
#include "storage/exportImages.h"
#include "storage/exportNames.h"
#include "storage/unmixedMap.h"
#include "storage/unmixedMapScale.h"

#include "host/CILImage.h"
#include "host/CILPalette.h"
#include "host/CORVDataset.h"
#include "host/CORVInputDialog.h"
#include "host/CORVLog.h"
#include "host/CORVPreference.h"
#include "host/CORVSequenceDataset.h"
#include "host/CPLClickInfo.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

bool fail(const char* pMessage)
{
    logLine(QString::fromLatin1(pMessage), CORVLOG_ERROR);
    return false;
}

constexpr const char* noFolder =
    "SpumKyvo: Unable to open the unmixed image because failed to access the system's temporary directory!";
constexpr const char* noDataset =
    "SpumKyvo: Unable to locate the required dataset. It looks like the sequence has been "
    "modified. Please close and restart.";
constexpr const char* noImage = "SpumKyvo: Invalid fluorescent image instance encountered, unable to load the image.";

} // namespace

int CORVSpumKyvo::exportedSpots() const
{
    return std::max(1, static_cast<int>(m_spots.size()));
}

CORVDataset* CORVSpumKyvo::unmixedSource(int nComponent, int nSpot) const
{
    const CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(m_strSeqId);
    const long long nImage = spectrumPeak(m_spectra, nComponent).image + m_spectra.num_cols() * nSpot;
    const bool bKnown = nSpot >= 0 && nImage >= 0 && nImage < m_imageList.size();
    return pSequence != nullptr && bKnown ? pSequence->getDataset(m_imageList.at(static_cast<int>(nImage))) : nullptr;
}

QString CORVSpumKyvo::makeDatasetFolder(const QString& strName)
{
    const QString strTarget = unmixedTargetFolder(m_strSeqId);
    const QString strFolder = strTarget + QLatin1Char('/') + strName + QLatin1Char('/');
    if (!QDir().mkpath(strTarget)) {
        return QString();
    }
    bool bModified = false;
    QString strClickNumber;
    if (CORVDataset::isLoadedClickInfo(strFolder + QLatin1String("ClickInfo.txt"), bModified, &strClickNumber) &&
        !bModified) {
        m_pResultView->closeImageWindow(strClickNumber);
    }
    const QFileInfo earlier(QDir::cleanPath(strFolder));
    if ((earlier.isDir() || earlier.isSymLink()) && !orv::deleteFolderTree(strFolder)) {
        return QString();
    }
    return QDir().mkdir(QDir::cleanPath(strFolder)) ? strFolder : QString();
}

bool CORVSpumKyvo::makeUnmixedMap(CORVDataset& source, int nComponent, int nSpot, CILImage& out)
{
    UnmixedMapPlace place;
    place.component = nComponent;
    place.spot = nSpot;
    place.width = m_nWidth;
    place.height = m_nHeight;
    place.binning = m_nBinning;
    place.pixels = m_bUseMask != 0 ? &m_maskIndices : nullptr;
    if (!unmixedMap(m_concentrations, place, spectrumPeak(m_spectra, nComponent).value, out)) {
        return fail(noDataset);
    }
    if (m_eUnit == DISPLAYUNIT_RADIANCE && !scaleMapBySource(source, out)) {
        return fail(noImage);
    }
    return true;
}

void CORVSpumKyvo::buildClickInfo(CPLClickInfo* pOut, CORVDataset* pSource, CILImage* pMap, int, int nClick,
                                  QString strName, bool bMerge, bool bKeepInfo)
{
    ExportClickFacts facts;
    facts.sequenceId = m_strSeqId;
    facts.label = strName;
    facts.unit = unitText(m_eUnit);
    facts.version = CORVPreference::getAppVersion();
    facts.buildDate = QStringLiteral(ORV_BUILD_DATE);
    facts.clickNumber = nClick;
    if (!m_spots.isEmpty()) {
        facts.spotX = pSource->getFLXspot();
        facts.spotY = pSource->getFLYspot();
    }
    facts.backgroundSubtracted = pSource->isLuminBackgroundSubtracted();
    facts.flatFieldCorrected = pSource->isLuminFlatFieldCorrected();
    facts.fluorescentBackgroundSubtracted = pSource->isLuminFLBkgSubtracted();
    facts.display.reversed = m_bReverse;
    facts.display.logScale = m_bLogScale;
    facts.display.colorTable = CILPalette::colorTableNames().value(m_nColorMap);
    facts.display.opacity = m_nOverlayOpacity;
    facts.merge = bMerge;
    facts.keepInfo = bKeepInfo;
    exportClickInfo(pSource->clickInfo, *pMap, facts, *pOut);
}

bool CORVSpumKyvo::writeUnmixedDataset(CORVDataset& source, const CILImage& map, const QString& strFolder,
                                       CPLClickInfo& info)
{
    const CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(m_strSeqId);
    if (pSequence == nullptr) {
        return fail(noDataset);
    }
    if (!exportStructuredLight(*pSequence, strFolder, info) || !exportPhotograph(source, strFolder) ||
        !exportReference(source, strFolder, info) || !exportXRay(source, strFolder, info) ||
        info.saveClickInfo(strFolder + QLatin1String("AnalyzedClickInfo.txt")) != 0) {
        return fail(noFolder);
    }
    if (const CPLSection* pCamera = source.clickInfo[QStringLiteral("Camera System Info")]) {
        info.addSection(pCamera);
    }
    const QByteArray luminescent = QFile::encodeName(strFolder + QLatin1String("luminescent.TIF"));
    if (info.saveClickInfo(strFolder + QLatin1String("ClickInfo.txt")) != 0 ||
        map.saveAsTIFF(luminescent.constData()) != EIL_SUCCESS) {
        return fail(noFolder);
    }
    return true;
}

bool CORVSpumKyvo::openUnmixedDataset(int nIndex, QString* pStrName, QString* pStrPath)
{
    if (nIndex < 0) {
        return fail(noDataset);
    }
    m_nComponents = static_cast<int>(m_concentrations.num_rows());
    const int nSpot = nIndex / (m_nComponents + 1);
    const int nComponent = nIndex % (m_nComponents + 1);
    if (nComponent == m_nComponents) {
        return false; // the composite is no dataset
    }
    const int nSpots = exportedSpots();
    const QString strFolder = makeDatasetFolder(unmixedDatasetName(nComponent, nSpot, nSpots));
    if (strFolder.isEmpty()) {
        return fail(noFolder);
    }
    CORVDataset* pSource = unmixedSource(nComponent, nSpot);
    if (pSource == nullptr) {
        return fail(noDataset);
    }
    if (pSource->getCoreImage(IMAGETYPE_LUMINESCENT) == nullptr) {
        return fail(noImage);
    }
    CILImage map;
    if (!makeUnmixedMap(*pSource, nComponent, nSpot, map)) {
        return false;
    }
    const QString strLabel = unmixedDatasetLabel(m_strSeqId, nComponent);
    CPLClickInfo info;
    buildClickInfo(&info, pSource, &map, nComponent, nSpots > 1 ? nSpot + 1 : 0, strLabel, true, false);
    if (!writeUnmixedDataset(*pSource, map, strFolder, info)) {
        return false;
    }
    if (pStrName != nullptr) {
        *pStrName = strLabel;
    }
    if (pStrPath != nullptr) {
        *pStrPath = strFolder + QLatin1String("ClickInfo.txt");
    }
    return true;
}

QList<int> CORVSpumKyvo::askForExportedMaps() const
{
    QList<int> indices;
    const int nSpots = exportedSpots();
    if (nSpots < 2) {
        for (int c = 0; c < m_nComponents; ++c) {
            indices.append(c);
        }
        return indices;
    }
    QStringList items;
    for (int c = 0; c < m_nComponents; ++c) {
        items.append(QStringLiteral("No.%1").arg(c + 1));
    }
    bool bChosen = false;
    const QString strItem =
        CORVInputDialog::getItem(nullptr, tr("Select component to export)"),
                                 tr("Which one to export as a FRAX sequence?"), items, 0, false, &bChosen);
    if (!bChosen) {
        return indices;
    }
    const int nComponent = strItem.mid(strItem.indexOf(QLatin1Char('.')) + 1).toInt() - 1;
    for (int s = 0; s < nSpots; ++s) {
        indices.append(s * (m_nComponents + 1) + nComponent);
    }
    return indices;
}

void CORVSpumKyvo::onClickExportAsSequence()
{
    m_nComponents = static_cast<int>(m_concentrations.num_rows());
    QStringList paths;
    const QList<int> indices = askForExportedMaps();
    for (const int nIndex : indices) {
        QString strName;
        QString strPath;
        if (!openUnmixedDataset(nIndex, &strName, &strPath)) {
            return;
        }
        paths.append(strPath);
    }
    if (!paths.isEmpty()) {
        Q_EMIT createSpumKyvoSequence(paths, false);
    }
}
