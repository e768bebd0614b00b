// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVImageExporter.h"

#include "platform/orvexport/pictureFile.h"

#include <QFileInfo>

QStringList CORVImageExporter::suffixes()
{
    return orvexport::formatSuffixes();
}

bool CORVImageExporter::saveImage(const QImage& picture, const QString& strFile, QString* pError)
{
    return orvexport::writePicture(picture, strFile, QFileInfo(strFile).suffix(), {}, pError);
}
