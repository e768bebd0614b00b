// SPDX-License-Identifier: GPL-3.0-or-later
// A dataset on its way to a folder.
#include "host/CILImage.h"
#include "host/CORVDataset.h"
#include "host/CROIManager.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/DatasetFolder.h"
#include "platform/orvapi/HostLog.h"
#include "platform/orvapi/ImageCalibration.h"
#include "platform/orvapi/ImageNames.h"
#include "platform/orvapi/ImageObserver.h"
#include "platform/orvapi/KeptImages.h"
#include "platform/orvapi/SectionIn.h"

#include <QFileInfo>

QString CORVDataset::imageFileName(tag_eimagetype eType) const
{
    if (const CORVImageDetails* pDetails = m_images.getImage(eType)) {
        return pDetails->fileName();
    }
    const QStringList names = imageFileNames(eType);
    return eType == IMAGETYPE_FLUORESCENT_REFERENCE && hasTransmissionImage ? names.last() : names.first();
}

ESTATUS CORVDataset::writeImages(DatasetFolder& folder, CPLClickInfo& info, CORVImageList* pImages,
                                 QString* pReason) const
{
    for (const tag_eimagetype type : allImageTypes()) {
        if (!hasImage(type)) {
            continue;
        }
        const QString name = imageFileName(type);
        const auto pGiven = m_givenImages.contains(type) ? m_pCoreImages->image(type) : QSharedPointer<CILImage>();
        const ESTATUS status = pGiven != nullptr ? folder.addImage(name, *pGiven, pReason)
                                                 : folder.addFile(m_images.getImage(type)->path(), name, pReason);
        if (status != ESTATUS_SUCCESS) {
            return status;
        }
        if (pGiven != nullptr && imageBinning(info, type) != pGiven->m_fBinning) {
            sectionIn(info, imageSection(type))
                .setValue(QString::fromLatin1(ClickKeys::kBinning),
                          QString::number(static_cast<double>(pGiven->m_fBinning)));
        }
        pImages->add(CORVImageDetails(type, name, folder.target() + QLatin1Char('/') + name));
    }
    return ESTATUS_SUCCESS;
}

ESTATUS CORVDataset::writeFolder(DatasetFolder& folder, CPLClickInfo& info, CORVImageList* pImages,
                                 QString* pReason) const
{
    ESTATUS status = writeImages(folder, info, pImages, pReason);
    const QString analyzed = QString::fromLatin1(SequenceFiles::kAnalyzedClickInfo);
    if (status == ESTATUS_SUCCESS && !m_strFolder.isEmpty() && QFileInfo(m_strFolder + analyzed).isFile()) {
        CPLClickInfo withoutCamera = info;
        withoutCamera.removeSection(QString::fromLatin1(ClickKeys::kCameraSystemInfo));
        status = folder.addClickInfo(analyzed, withoutCamera, pReason);
    }
    if (status == ESTATUS_SUCCESS) {
        status = folder.addClickInfo(QString::fromLatin1(SequenceFiles::kClickInfo), info, pReason);
    }
    return status == ESTATUS_SUCCESS ? folder.keepOtherFiles(pReason) : status;
}

ESTATUS CORVDataset::saveDatasetAs(const QString& strFolder)
{
    if (strFolder.isEmpty() || getClickNumber().isEmpty()) {
        logError(strFolder.isEmpty()
                     ? QStringLiteral("a dataset cannot be saved without a folder")
                     : QStringLiteral("%1: a dataset without a click number is not saved").arg(strFolder));
        return ESTATUS_INVALID_ARGUMENT;
    }
    DatasetFolder folder;
    CPLClickInfo info = clickInfo;
    CORVImageList images;
    QString reason;
    ESTATUS status = folder.begin(strFolder, m_strFolder, &reason);
    if (status == ESTATUS_SUCCESS) {
        if (m_pROIManager) {
            m_pROIManager->saveROIData(&info);
        }
        sectionIn(info, QString::fromLatin1(ClickKeys::kClickNumber))
            .setValue(QString::fromLatin1(ClickKeys::kFolderOnDisk), QFileInfo(folder.target()).fileName());
        status = writeFolder(folder, info, &images, &reason);
    }
    if (status == ESTATUS_SUCCESS) {
        status = folder.commit(&reason);
    }
    if (status != ESTATUS_SUCCESS) {
        logError(reason);
        return status;
    }
    clickInfo = info;
    m_images = images;
    m_givenImages.clear();
    setFolderPath(folder.target());
    m_bModified = false;
    return ESTATUS_SUCCESS;
}

ImageObserver& imageObserver()
{
    static ImageObserver s_observer;
    return s_observer;
}

void CORVDataset::updateActiveImage()
{
    for (const auto& pImage : m_pCoreImages->all()) {
        pImage->RefreshImageStats();
    }
    if (const ImageObserver& observer = imageObserver()) {
        observer(this);
    }
}
