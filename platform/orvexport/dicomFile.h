// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvexport/DicomSubject.h"

#include <QByteArray>
#include <QImage>
#include <QString>

namespace orvexport {

// A DICOM file of one picture: a secondary capture that a workstation has made ("WSD"), red, green and blue of 8 bits
// each, explicit little endian, texts as UTF-8, times in UTC, all identifiers new. The attributes are those that
// PS3.3 of the DICOM standard, A.8.1, lists for the object. `picture` is QImage::Format_RGB32, not empty and at most
// 65535 pixels a side. No bytes on a failure, with half a sentence in *pReason.
QByteArray dicomBytes(const QImage& picture, const DicomSubject& subject, QString* pReason);

} // namespace orvexport
