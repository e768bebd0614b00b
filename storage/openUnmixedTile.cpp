// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/openUnmixedTile.h"

#include "engine/CORVSpumKyvo.h"
#include "spectra/logLine.h"
#include "storage/exportRegions.h"
#include "storage/resultRegions.h"

#include "host/CILImage.h"
#include "host/CORVDataset.h"
#include "host/CORVLog.h"
#include "host/CORVUtilityFns.h"
#include "host/CPLClickInfo.h"
#include "host/CROIManager.h"

#include <QDir>
#include <QFileInfo>

namespace {

bool fail(const QString& strMessage)
{
    logLine(strMessage, CORVLOG_ERROR);
    return false;
}

std::unique_ptr<CORVDataset> load(const QString& strFolder)
{
    auto pDataset = std::make_unique<CORVDataset>();
    QString strReason;
    if (pDataset->openMade(strFolder, &strReason) != ESTATUS_SUCCESS) {
        fail(strReason);
        return nullptr;
    }
    return pDataset;
}

// The click info has the binning of the camera's image, which may have been a finer one than that of the analysis.
void setBinning(int nBinning, CORVDataset& dataset)
{
    double dSource = 0.0;
    CPLSection* pLuminescent = dataset.clickInfo[QStringLiteral("luminescent image")];
    const QString strBinning = QStringLiteral("Binning Factor");
    if (pLuminescent != nullptr && (pLuminescent->getValue(strBinning, &dSource) != 0 || dSource != nBinning)) {
        pLuminescent->setValue(strBinning, nBinning);
    }
}

// Those that were drawn on this map, as the result keeps them, else those of the source.
void takeRegions(CORVSpumKyvo& engine, int nImgIndex, CORVDataset& dataset)
{
    const int nTiles = engine.m_nComponents + 1;
    CORVDataset* pSource = engine.unmixedSource(nImgIndex % nTiles, nImgIndex / nTiles);
    const auto eUnit = static_cast<tag_edisplayunit>(engine.m_eUnit);
    ESTATUS status = ESTATUS_SUCCESS;
    if (takeBackRegions(engine.m_roiResults, dataset)) {
        status = dataset.roiManager()->measure(eUnit);
    } else if (pSource != nullptr) {
        status = takeOverRegions(*pSource, dataset, eUnit);
    }
    if (status != ESTATUS_SUCCESS) {
        logLine(QStringLiteral("%1: the regions of interest cannot be measured over the map").arg(dataset.folderPath()),
                CORVLOG_WARNING);
    }
}

// The dataset of a map, in `tile` in one of two ways; null when it could not be opened.
CORVDataset* openMap(CORVSpumKyvo& engine, int nImgIndex, const OpenByHost& open, OpenedTile& tile)
{
    QString strPath;
    if (!engine.openUnmixedDataset(nImgIndex, nullptr, &strPath)) {
        return nullptr;
    }
    const QString strFolder = QFileInfo(strPath).path();
    if (open) {
        tile.hostDataset = open(strPath);
    } else {
        tile.dataset = load(strFolder);
    }
    CORVDataset* pDataset = open ? tile.hostDataset : tile.dataset.get();
    if (pDataset == nullptr) {
        return nullptr;
    }
    setBinning(engine.m_nBinning, *pDataset);
    // What lies in the folder may be another map's the next time that it is looked at.
    if (!pDataset->takeImagesIntoMemory()) {
        tile.dataset.reset();
        return nullptr;
    }
    // A host that had read the image took the camera's binning for it.
    if (CILImage* pMap = pDataset->getCoreImage(IMAGETYPE_MAIN_DATA)) {
        pMap->m_fBinning = static_cast<float>(engine.m_nBinning);
    }
    pDataset->setFolderPath(strFolder);
    pDataset->setModified(true);
    takeRegions(engine, nImgIndex, *pDataset);
    pDataset->updateActiveImage();
    return pDataset;
}

// Where it was saved, empty when it was not.
QString saveInBatch(const QString& strBatchPath, CORVDataset& dataset)
{
    const QString strFolder = strBatchPath + QDir(dataset.folderPath()).dirName();
    // A name alone would be a folder of wherever the program was started.
    if (strBatchPath.isEmpty() || !QDir().mkpath(strFolder)) {
        fail(QStringLiteral("Failed to create %1 folder.").arg(strFolder));
        return QString();
    }
    const QString strTarget = strFolder + QLatin1Char('/');
    return dataset.saveDatasetAs(strTarget) == ESTATUS_SUCCESS ? strTarget : QString();
}

} // namespace

OpenedTile::OpenedTile() = default;
OpenedTile::OpenedTile(OpenedTile&& other) noexcept = default;
OpenedTile& OpenedTile::operator=(OpenedTile&& other) noexcept = default;
OpenedTile::~OpenedTile() = default;

OpenedTile openUnmixedTile(CORVSpumKyvo& engine, int nImgIndex, const OpenByHost& open)
{
    engine.m_bBatchMode = CORVUtilityFns::getSpumBatchStatus();
    engine.m_nComponents = static_cast<int>(engine.m_concentrations.num_rows());
    OpenedTile tile;
    const int nComponents = engine.m_nComponents;
    if (nComponents > 0 && nImgIndex >= 0 && nImgIndex % (nComponents + 1) == nComponents) {
        tile.kind = OpenedTile::Kind::Composite;
        return tile;
    }
    CORVDataset* pDataset = openMap(engine, nImgIndex, open, tile);
    if (pDataset == nullptr) {
        return tile;
    }
    tile.kind = OpenedTile::Kind::Dataset;
    if (engine.m_bBatchMode) {
        tile.savedFolder = saveInBatch(engine.m_strBatchPath, *pDataset);
    }
    return tile;
}
