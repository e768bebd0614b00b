// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CROIManager.h"

#include "host/CILImage.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "host/UnitTexts.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/HostLog.h"
#include "platform/orvapi/ROISection.h"
#include "platform/orvapi/ROIShape.h"
#include "platform/orvapi/ROIStatistics.h"
#include "platform/orvapi/imagePadding.h"
#include "platform/orvapi/validPixels.h"

#include <algorithm>

namespace {

QString sectionKey()
{
    return QString::fromLatin1(ClickKeys::kROIs);
}

} // namespace

CROIManager::CROIManager(CORVDataset* pDataset) : m_pDataset(pDataset) {}

CROIManager::~CROIManager() = default;

bool CROIManager::hasRegion(const QString& strName) const
{
    return std::any_of(m_regions.begin(), m_regions.end(),
                       [&](const tagROIInfo& region) { return region.name == strName; });
}

QString CROIManager::freeName(const QString& strName) const
{
    return ROISection::freeName(strName, [this](const QString& strOther) { return hasRegion(strOther); });
}

QString CROIManager::reasonAgainstName(const QString& strName) const
{
    const QString reason = ROISection::reasonAgainstName(strName);
    if (!reason.isEmpty()) {
        return QStringLiteral("the name ") + reason;
    }
    return hasRegion(strName) ? QStringLiteral("there is a region \"%1\" already").arg(strName) : QString();
}

bool CROIManager::addRegion(const tagROIInfo& region, QString* pError)
{
    QString reason = reasonAgainstName(region.name);
    if (reason.isEmpty() && m_regions.size() >= ROISection::kMaximumRegions) {
        reason = QStringLiteral("a dataset has %1 regions at most").arg(ROISection::kMaximumRegions);
    }
    if (reason.isEmpty()) {
        reason = ROIShape::reasonAgainst(region);
    }
    if (pError != nullptr && !reason.isEmpty()) {
        *pError = reason;
    }
    if (reason.isEmpty()) {
        m_regions.append(region);
    }
    return reason.isEmpty();
}

bool CROIManager::removeRegion(const QString& strName)
{
    const auto found = std::find_if(m_regions.begin(), m_regions.end(),
                                    [&](const tagROIInfo& region) { return region.name == strName; });
    if (found == m_regions.end()) {
        return false;
    }
    m_regions.erase(found);
    return true;
}

bool CROIManager::renameRegion(const QString& strName, const QString& strNewName, QString* pError)
{
    const auto found = std::find_if(m_regions.begin(), m_regions.end(),
                                    [&](const tagROIInfo& region) { return region.name == strName; });
    const QString reason = found == m_regions.end() ? QStringLiteral("there is no region \"%1\"").arg(strName)
                                                    : reasonAgainstName(strNewName);
    if (!reason.isEmpty()) {
        if (pError != nullptr) {
            *pError = reason;
        }
        return false;
    }
    found->name = strNewName;
    return true;
}

ESTATUS CROIManager::measure(tag_edisplayunit eUnit)
{
    if (m_pDataset == nullptr) {
        return ESTATUS_IMAGE_MISSING;
    }
    CILImage image;
    const ESTATUS status = m_pDataset->getCalibratedLuminImage(eUnit, &image, QStringLiteral("CROIManager"));
    if (status != ESTATUS_SUCCESS) {
        return status;
    }
    return measureOver(image, eUnit);
}

ESTATUS CROIManager::measureOver(const CILImage& image, tag_edisplayunit eUnit)
{
    std::optional<double> pixelSize;
    MeasuredPixels pixels;
    if (m_pDataset != nullptr) {
        pixelSize = pixelSizeOf(m_pDataset->clickInfo);
        pixels.size = ownSize(extentBeforePadding(*m_pDataset).value_or(QSize()), image.m_lWidth, image.m_lHeight);
        QString error;
        const CORVSequenceDataset* pSequence = m_pDataset->sequence();
        if (pSequence != nullptr && !readValidPixels(*pSequence, &pixels.valid, &error)) {
            logError(error);
            return ESTATUS_FILE_UNREADABLE;
        }
    }
    for (tagROIInfo& region : m_regions) {
        region.statistics = measureROI(region, image, displayUnitText(eUnit), pixelSize, pixels);
    }
    return ESTATUS_SUCCESS;
}

bool CROIManager::loadROIData(const QString& strKey, const QString& strValue)
{
    m_created.clear();
    m_createdList.clear();
    if (!ROISection::regionNumber(strKey)) {
        return false;
    }
    m_loaded.append({strKey, strValue});
    return true;
}

const QList<tagROIInfo*>* CROIManager::getCreatedROIInfoList()
{
    if (m_created.empty() && !m_loaded.isEmpty()) {
        const ROISection::Reading reading = ROISection::read(m_loaded);
        m_messages = reading.messages;
        for (const tagROIInfo& region : reading.regions) {
            m_created.push_back(std::make_unique<tagROIInfo>(region));
            m_createdList.append(m_created.back().get());
        }
    }
    return &m_createdList;
}

ESTATUS CROIManager::createROIFromFile(const QList<tagROIInfo*>* pInfos, bool bReplace, bool bStatistics)
{
    if (pInfos == nullptr) {
        return ESTATUS_INVALID_ARGUMENT;
    }
    m_messages.clear();
    if (bReplace) {
        m_regions.clear();
    }
    for (const tagROIInfo* pInfo : *pInfos) {
        if (pInfo == nullptr) {
            m_messages.append(QStringLiteral("a region is missing"));
            continue;
        }
        tagROIInfo region = *pInfo;
        region.name = freeName(region.name);
        if (!bStatistics) {
            region.statistics = tagROIStatistics();
        }
        QString reason;
        if (!addRegion(region, &reason)) {
            m_messages.append(QStringLiteral("the region \"%1\" is left out: %2").arg(region.name, reason));
        }
    }
    return m_messages.isEmpty() ? ESTATUS_SUCCESS : ESTATUS_FAILURE;
}

void CROIManager::readROIData(const CPLClickInfo& info)
{
    clearAllLists();
    const CPLSection* pSection = info[sectionKey()];
    if (pSection == nullptr) {
        return;
    }
    for (const auto& entry : ROISection::entriesOf(*pSection)) {
        loadROIData(entry.first, entry.second);
    }
    getCreatedROIInfoList();
    const QStringList ofReading = m_messages;
    createROIFromFile(&m_createdList, true, true);
    m_messages = ofReading + m_messages;
    clearROIInfoList();
}

ESTATUS CROIManager::saveROIData(CPLClickInfo* pInfo) const
{
    if (pInfo == nullptr) {
        return ESTATUS_INVALID_ARGUMENT;
    }
    CPLSection* pOld = (*pInfo)[sectionKey()];
    ROISection::Entries kept;
    QSet<int> taken;
    if (pOld != nullptr) {
        const ROISection::Entries entries = ROISection::entriesOf(*pOld);
        const QSet<int> readable = ROISection::read(entries).numbers;
        for (const auto& entry : entries) {
            const std::optional<int> number = ROISection::regionNumber(entry.first);
            if (number && readable.contains(*number)) {
                continue;
            }
            kept.append(entry);
            if (number) {
                taken.insert(*number);
            }
        }
    }
    CPLSection section(sectionKey(), QStringLiteral("Regions of interest"));
    int number = 0;
    for (const tagROIInfo& region : m_regions) {
        do {
            ++number;
        } while (taken.contains(number));
        ROISection::write(region, number, section);
    }
    for (const auto& entry : kept) {
        section.addKeyValue(entry.first, entry.second);
    }
    if (section.count() == 0) {
        pInfo->removeSection(sectionKey());
    } else if (pOld != nullptr) {
        *pOld = section;
    } else {
        pInfo->addSection(&section);
    }
    return ESTATUS_SUCCESS;
}

void CROIManager::clearAllLists()
{
    m_regions.clear();
    m_messages.clear();
    clearROIInfoList();
}

void CROIManager::clearROIInfoList()
{
    m_loaded.clear();
    m_created.clear();
    m_createdList.clear();
}
