// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/exportNames.h"

#include <QDir>

namespace {

constexpr const char* datasetName = "Unmixed Result ";

QString lastThree(int nNumber)
{
    return QString::number(nNumber).right(3);
}

} // namespace

QString unmixedDatasetName(int nComponent, int nSpot, int nSpots)
{
    const QString strName = QLatin1String(datasetName) + lastThree(nComponent + 1);
    return nSpots > 1 ? strName + lastThree(1001 + nSpot) : strName;
}

QString unmixedDatasetPattern()
{
    return QLatin1String(datasetName) + QLatin1Char('*');
}

QString unmixedDatasetLabel(const QString& strSeqId, int nComponent)
{
    QString strLabel = strSeqId;
    strLabel.chop(3);
    return strLabel + QStringLiteral("UMX%1").arg(nComponent + 1);
}

QString unmixedTargetFolder(const QString& strSeqId)
{
    QString strId = strSeqId;
    strId.replace(QLatin1Char('/'), QLatin1Char('_'));
    return QDir::tempPath() + QLatin1String("/SPUM_") + strId;
}
