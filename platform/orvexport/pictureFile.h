// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvexport/DicomSubject.h"

#include <QImage>
#include <QString>
#include <QStringList>

namespace orvexport {

// In the order in which formats are offered.
QStringList formatSuffixes();

// Writes the picture, whole or not at all, in the format of the suffix (letters of any case); a DICOM file tells of the
// subject. False with one sentence "file: reason", which the log gets too.
bool writePicture(const QImage& picture, const QString& strFile, const QString& strSuffix, const DicomSubject& subject,
                  QString* pError);

} // namespace orvexport
