// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/resultRegions.h"

#include "host/CORVDataset.h"
#include "host/CPLClickInfo.h"
#include "host/CPLSection.h"
#include "host/CROIManager.h"

#include <algorithm>

namespace {

struct ResultImage
{
    CORVDataset* dataset;
    QString map; // null when the click info does not name it
};

QList<ResultImage> resultImages(const QString& strSeqId)
{
    QList<ResultImage> images;
    const QList<CORVDataset*> datasets = CORVDataset::loadedDatasets();
    for (CORVDataset* pDataset : datasets) {
        const CPLSection* pSection = pDataset->clickInfo["luminescent image"];
        QString strSource;
        if (pSection == nullptr || pSection->getValue("Spectral Unmix Seq Dataset", &strSource) != 0 ||
            strSource.compare(strSeqId, Qt::CaseInsensitive) != 0) {
            continue;
        }
        QString strMap;
        pSection->getValue("Unmixed Concentration", &strMap);
        images.append({pDataset, strMap});
    }
    return images;
}

RoiRecord regionsOf(const ResultImage& image)
{
    RoiRecord record;
    record.concentrationMap = image.map;
    CPLClickInfo info;
    image.dataset->roiManager()->saveROIData(&info);
    if (const CPLSection* pSection = info["ROIs"]) {
        pSection->getKeyList(&record.keys);
        pSection->getValueList(&record.values);
    }
    return record;
}

} // namespace

ResultRegions collectResultRegions(const QString& strSeqId)
{
    ResultRegions regions;
    const QList<ResultImage> images = resultImages(strSeqId);
    regions.hasResultImage = !images.isEmpty();
    for (const ResultImage& image : images) {
        if (image.map.isNull()) {
            break;
        }
        if (image.dataset->hasROIData()) {
            regions.records.append(regionsOf(image));
        }
    }
    return regions;
}

std::optional<ClosingRegions> closingRegions(CORVDataset* pDataset)
{
    const CPLSection* pSection = pDataset != nullptr ? pDataset->clickInfo["luminescent image"] : nullptr;
    ClosingRegions closing;
    ResultImage image{pDataset, QString()};
    if (pSection == nullptr || pSection->getValue("Spectral Unmix Seq Dataset", &closing.sequenceId) != 0 ||
        pSection->getValue("Unmixed Concentration", &image.map) != 0) {
        return std::nullopt;
    }
    closing.record = regionsOf(image);
    return closing;
}

void replaceRegions(QList<RoiRecord>& records, const RoiRecord& record)
{
    const int nMap = record.concentrationMap.toInt();
    const auto isSameMap = [nMap](const RoiRecord& other) { return other.concentrationMap.toInt() == nMap; };
    records.erase(std::remove_if(records.begin(), records.end(), isSameMap), records.end());
    records.append(record);
}

bool takeBackRegions(QList<RoiRecord>& records, CORVDataset& map)
{
    QString strMap;
    const CPLSection* pSection = map.clickInfo["luminescent image"];
    if (pSection == nullptr || pSection->getValue("Unmixed Concentration", &strMap) != 0) {
        return false;
    }
    CROIManager& manager = *map.roiManager();
    manager.clearROIInfoList();
    const auto isOfMap = [&strMap](const RoiRecord& record) { return record.concentrationMap == strMap; };
    for (const RoiRecord& record : qAsConst(records)) {
        for (int i = 0; i < record.keys.size() && isOfMap(record); ++i) {
            manager.loadROIData(record.keys.at(i), record.values.value(i));
        }
    }
    const QList<tagROIInfo*>* pFound = manager.getCreatedROIInfoList();
    const bool bFound = !pFound->isEmpty();
    if (bFound) {
        manager.createROIFromFile(pFound, true, false);
        records.erase(std::remove_if(records.begin(), records.end(), isOfMap), records.end());
    }
    manager.clearROIInfoList();
    return bFound;
}
