// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/unmixMemory.h"

#include "host/CPLClickInfo.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "platform/orvimage/TiffIo.h"
#include "platform/orvutils/InputFile.h"
#include "services/batch/UnmixDemand.h"
#include "services/importer/ImportMemory.h"
#include "services/session/RunMemory.h"

#include <QFileInfo>

#include <algorithm>

namespace {

bool isData(const QString& strFile)
{
    const QString name = QFileInfo(strFile).fileName().toLower();
    return name == QLatin1String("luminescent.tif") || name == QLatin1String("data.tif");
}

// What the first image tells of the others.
void readClickInfo(const QString& strFolder, SequenceSize* pSize)
{
    CPLClickInfo info;
    if (info.loadClickInfo(strFolder + QLatin1Char('/') + QLatin1String(SequenceFiles::kClickInfo)) != 0) {
        return;
    }
    const QStringList sections = {QLatin1String(ClickKeys::kMainDataImage),
                                  QLatin1String(ClickKeys::kLuminescentImage)};
    pSize->binning = std::max(1.0, clickNumberValue(info, sections, ClickKeys::kBinning).value_or(1.0));
    pSize->hasIsotope = !clickText(info, ClickKeys::kLuminescentImage, ClickKeys::kIsotope).isEmpty();
}

} // namespace

SequenceSize sizeOfSequence(const QString& strSequence, const QStringList& files)
{
    const QFileInfo info(strSequence);
    const QString folder = (info.isFile() ? info.absolutePath() : info.absoluteFilePath()) + QLatin1Char('/');
    SequenceSize size;
    for (const QString& name : files) {
        TiffInfo header;
        const QString path = folder + name;
        if (!QFileInfo(name).suffix().startsWith(QLatin1String("tif"), Qt::CaseInsensitive) ||
            !QFileInfo(path).isFile() || !readTiffHeader(path, 0, &header, nullptr) || header.type == ORVTYPE_NONE) {
            continue;
        }
        if (!isData(name)) {
            size.pictureBytes = std::max(size.pictureBytes, tiffMemory(header));
            continue;
        }
        if (size.images == 0) {
            readClickInfo(QFileInfo(path).path(), &size);
        }
        ++size.images;
        size.pixels = std::max(size.pixels, static_cast<qint64>(header.width) * header.height);
    }
    return size;
}

qint64 unmixMemory(const SequenceSize& size, const UnmixDemand& demand)
{
    // At a finer binning than that of the images there are more pixels; at a coarser one each is read as it is first.
    const double finer = demand.binning > 0 ? std::max(1.0, size.binning / demand.binning) : 1.0;
    RunSize run;
    run.pixels = static_cast<double>(size.pixels) * finer * finer;
    run.elements = run.pixels * size.images;
    run.otherBytes = static_cast<double>(size.pictureBytes);
    run.automatic = demand.automatic;
    run.keepsRaw = size.hasIsotope;
    return unmixMemory(run);
}

qint64 memoryToBeHad()
{
    return SystemMemory::ofThisMachine().free;
}
