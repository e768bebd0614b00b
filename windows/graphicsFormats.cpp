// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/graphicsFormats.h"

#include <QFileInfo>

namespace graphicsFormats {

QStringList filters()
{
    return {QStringLiteral("Bitmap Image (*.bmp)"),
            QStringLiteral("JPEG Image (*.jpg)"),
            QStringLiteral("PNG Image (*.png)"),
            QStringLiteral("Windows Metafile Format (*.wmf)"),
            QStringLiteral("Enhanced Metafile Format (*.emf)"),
            QStringLiteral("Postscript Enhanced Metafile (*.eps)"),
            QStringLiteral("Tagged Image File Format (*.tiff)"),
            QStringLiteral("DICOM (*.dcm)")};
}

QStringList suffixes()
{
    return {QStringLiteral("bmp"), QStringLiteral("jpg"), QStringLiteral("png"),  QStringLiteral("wmf"),
            QStringLiteral("emf"), QStringLiteral("eps"), QStringLiteral("tiff"), QStringLiteral("dcm")};
}

QString rememberedFormat(const QString& strFile)
{
    return QFileInfo(strFile).completeSuffix();
}

bool isDicom(const QString& strFile)
{
    return QFileInfo(strFile).suffix().compare(QLatin1String("dcm"), Qt::CaseInsensitive) == 0;
}

} // namespace graphicsFormats
