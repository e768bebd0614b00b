// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/imageFile.h"

#include "host/CILImage.h"
#include "host/CORVDataset.h"
#include "platform/orvimage/TiffIo.h"

QString imageFile::pathOf(const CORVDataset& dataset, tag_eimagetype eType)
{
    const CORVImageDetails* pDetails = dataset.imageList().getImage(eType);
    if (pDetails == nullptr && eType == IMAGETYPE_MAIN_DATA) {
        pDetails = dataset.imageList().getImage(IMAGETYPE_LUMINESCENT);
    }
    return pDetails != nullptr ? pDetails->path() : QString();
}

QString imageFile::reasonAgainst(const QString& strPath)
{
    if (strPath.isEmpty()) {
        return QStringLiteral("there is no such image");
    }
    CILImage image;
    QString reason;
    return readTiff(strPath, 0, image, &reason) ? QStringLiteral("the image cannot be calibrated") : reason;
}
