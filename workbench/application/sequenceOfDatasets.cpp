// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/sequenceOfDatasets.h"

#include "host/CILImage.h"
#include "host/CORVSequenceDataset.h"
#include "host/CPLSection.h"
#include "platform/orvapi/SequenceWriter.h"
#include "workbench/application/freePlace.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <memory>

namespace {

// The open sequence that a map was made from; null when there is none.
CORVSequenceDataset* sourceOf(CPLClickInfo& info)
{
    QString id;
    CPLSection* pSection = info[QStringLiteral("luminescent image")];
    if (pSection == nullptr || pSection->getValue(QStringLiteral("Spectral Unmix Seq Dataset"), &id) != 0) {
        return nullptr;
    }
    return CORVSequenceDataset::getSequenceDataset(id);
}

CORVSequenceDataset* sourceOf(const QString& strClickInfo)
{
    CPLClickInfo info;
    return info.loadClickInfo(strClickInfo) == 0 ? sourceOf(info) : nullptr;
}

SequenceDescription describe(const QString& strTarget, const CORVSequenceDataset* pSource)
{
    SequenceDescription description;
    description.name = QDir(strTarget).dirName();
    // Two sequences of one name, made at different moments, have different ids.
    description.id = description.name + QDateTime::currentDateTimeUtc().toString(QStringLiteral("-yyyyMMddHHmmsszzz"));
    if (pSource != nullptr) {
        description.fluorescence = pSource->isFluorescence;
        description.transillumination = pSource->isTransillumination;
        description.adjust = *const_cast<CORVSequenceDataset*>(pSource)->getImageAdjust();
    }
    return description;
}

// A click number that no other dataset has: maps are made again and again.
QString clickNumber(const SequenceDescription& description, int nPlace)
{
    return QStringLiteral("%1-%2").arg(description.id, QString::number(nPlace + 1));
}

bool addDataset(SequenceWriter& writer, const SequenceDescription& sequence, const QString& strClickInfo, int nPlace,
                QString* pError)
{
    CORVDataset dataset;
    if (dataset.openMade(QFileInfo(strClickInfo).path(), pError) != ESTATUS_SUCCESS) {
        return false;
    }
    SequenceWriter::Images images;
    const QList<CORVImageDetails> all = dataset.imageList().images();
    for (const CORVImageDetails& details : all) {
        const CILImage* pImage = dataset.getCoreImage(details.imageType());
        if (pImage == nullptr) {
            *pError = QStringLiteral("%1: an image cannot be read; the log tells which").arg(dataset.folderPath());
            return false;
        }
        images.append({details.imageType(), pImage});
    }
    DatasetDescription description;
    description.clickNumber = clickNumber(sequence, nPlace);
    description.info = dataset.clickInfo;
    return writer.addDataset(description, images, pError);
}

} // namespace

bool writeSequenceOfDatasets(const QString& strTarget, const QStringList& clickInfos, QString* pError)
{
    if (clickInfos.isEmpty()) {
        *pError = QStringLiteral("there are no images to make a sequence of");
        return false;
    }
    const SequenceDescription description = describe(strTarget, sourceOf(clickInfos.first()));
    SequenceWriter writer;
    if (!writer.begin(strTarget, description, false, pError)) {
        return false;
    }
    for (int i = 0; i < clickInfos.size(); ++i) {
        if (!addDataset(writer, description, clickInfos.at(i), i, pError)) {
            return false;
        }
    }
    return writer.finish(pError);
}

QString proposedPlace(const QStringList& clickInfos, const QString& strFolder)
{
    const CORVSequenceDataset* pSource = clickInfos.isEmpty() ? nullptr : sourceOf(clickInfos.first());
    QString base = strFolder + QLatin1String("/unmixed");
    if (pSource != nullptr && !pSource->getSequenceInfoPath().isEmpty()) {
        base = QDir::cleanPath(pSource->getSequenceInfoPath()) + QLatin1String("-unmixed");
    }
    return freePlace(base);
}
