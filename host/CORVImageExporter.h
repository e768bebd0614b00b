// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

class QImage;

// Writes pictures to files for other programs.
class CORVImageExporter
{
public:
    // The suffixes that name a format, in small letters: BMP, JPEG, PNG, WMF, EMF, EPS, TIFF, DICOM.
    static QStringList suffixes();

    // Writes the picture in the format that the file's suffix names, in letters of any case. The file appears whole or
    // not at all: after a failure what was there stays. False on a failure (an empty picture, a suffix that names no
    // format, more pixels a side than the format holds, no folder, no permission, a full disk); the log gets one
    // sentence with the file and the reason, and so does *pError, which may be null.
    //
    // One pixel is one pixel of the format, whatever the picture's ratio of device pixels, and a point wide in WMF, EMF
    // and EPS files. What shines through becomes white; only a PNG keeps it. A DICOM file names no subject, for which
    // there is CDicomExporter.
    static bool saveImage(const QImage& picture, const QString& strFile, QString* pError = nullptr);
};
