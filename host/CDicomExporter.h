// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class CORVSequenceDataset;
class QImage;

// Writes a picture as a DICOM file: a secondary capture in red, green and blue, explicit little endian.
class CDicomExporter
{
public:
    // The sequence, borrowed, tells subject, user and day; null for a picture of which nothing is known.
    explicit CDicomExporter(const QString& strFile, const CORVSequenceDataset* pSequence = nullptr);

    // Every call makes a new object of a new study. Failures are told as CORVImageExporter::saveImage tells them, and
    // what was there stays; a side holds 65535 pixels at most.
    bool writeDicomGraphics(const QImage& picture, QString* pError = nullptr) const;

private:
    QString m_strFile;
    const CORVSequenceDataset* m_pSequence;
};
