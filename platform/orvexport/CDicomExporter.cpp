// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CDicomExporter.h"

#include "platform/orvexport/pictureFile.h"

CDicomExporter::CDicomExporter(const QString& strFile, const CORVSequenceDataset* pSequence)
    : m_strFile(strFile), m_pSequence(pSequence)
{
}

bool CDicomExporter::writeDicomGraphics(const QImage& picture, QString* pError) const
{
    return orvexport::writePicture(picture, m_strFile, QStringLiteral("dcm"), orvexport::subjectOf(m_pSequence),
                                   pError);
}
