// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/exportImages.h"

#include "host/CILImage.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "host/CPLClickInfo.h"

#include <QFile>

namespace {

// A copy of the image, as saving must not touch what the dataset shows. True without an image.
bool saveCopy(CORVDataset& dataset, tag_eimagetype eType, const QString& strPath)
{
    const CILImage* pImage = dataset.getCoreImage(eType);
    if (pImage == nullptr) {
        return true;
    }
    const CILImage copy(*pImage);
    return copy.saveAsTIFF(QFile::encodeName(strPath).constData()) == EIL_SUCCESS;
}

void copySection(const CPLClickInfo& from, const QString& strKey, CPLClickInfo& to)
{
    if (const CPLSection* pSection = from[strKey]) {
        to.addSection(pSection);
    }
}

} // namespace

bool exportStructuredLight(const CORVSequenceDataset& sequence, const QString& strFolder, CPLClickInfo& info)
{
    const QList<CORVDataset*> datasets = sequence.getDatasets();
    for (CORVDataset* pDataset : datasets) {
        if (!pDataset->isSLADataset()) {
            continue;
        }
        copySection(pDataset->clickInfo, QStringLiteral("structure image"), info);
        copySection(pDataset->clickInfo, QStringLiteral("reference image"), info);
        return saveCopy(*pDataset, IMAGETYPE_STRUCTURE, strFolder + QLatin1String("structure.TIF")) &&
               saveCopy(*pDataset, IMAGETYPE_REFERENCE, strFolder + QLatin1String("reference.TIF"));
    }
    return true;
}

bool exportPhotograph(CORVDataset& source, const QString& strFolder)
{
    return saveCopy(source, IMAGETYPE_PHOTOGRAPH, strFolder + QLatin1String("photograph.TIF"));
}

bool exportReference(CORVDataset& source, const QString& strFolder, CPLClickInfo& info)
{
    if (source.getCoreImage(IMAGETYPE_FLUORESCENT_REFERENCE) == nullptr) {
        return true;
    }
    copySection(source.clickInfo, QStringLiteral("fluorescent reference image"), info);
    const QString strName =
        source.hasTransmissionImage ? QStringLiteral("transmission.tif") : QStringLiteral("FluorescentReference.TIF");
    return saveCopy(source, IMAGETYPE_FLUORESCENT_REFERENCE, strFolder + strName);
}

bool exportXRay(CORVDataset& source, const QString& strFolder, CPLClickInfo& info)
{
    if (!source.hasXRayImage) {
        return true;
    }
    copySection(source.clickInfo, QStringLiteral("x-ray image"), info);
    return saveCopy(source, IMAGETYPE_XRAY, strFolder + QLatin1String("X-ray.TIF"));
}
