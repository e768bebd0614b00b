// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/validPixels.h"

#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvimage/TiffIo.h"

#include <QDir>
#include <QFileInfo>

bool readValidPixels(const CORVSequenceDataset& sequence, CILImage* pStored, QString* pError)
{
    pStored->clear();
    const QString path = QDir(sequence.getSequenceInfoPath()).filePath(QLatin1String(SequenceFiles::kValidPixels));
    return !QFileInfo::exists(path) || readTiff(path, 0, *pStored, pError);
}
