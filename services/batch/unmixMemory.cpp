// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/unmixMemory.h"

#include "host/CPLClickInfo.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "platform/orvimage/TiffIo.h"
#include "platform/orvutils/InputFile.h"
#include "services/batch/UnmixDemand.h"
#include "services/importer/ImportMemory.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

// What `spum unmix` was seen to hold at its peak (512 to 2048 pixels a side, 6 and 24 images, 4 components), and some
// more: the program with its libraries; copies of the images as doubles; for each pixel maps, pictures and what they
// are drawn from.
constexpr double programBytes = 72.0 * (1 << 20);
constexpr double elementBytes = 8.0;
constexpr double copiesOfFit = 1.1;
constexpr double copiesOfResolution = 4.5; // the data, their left vectors, the denoised data, residuals
constexpr double pixelBytesOfFit = 160.0;
constexpr double pixelBytesOfResolution = 220.0;

bool isData(const QString& strFile)
{
    const QString name = QFileInfo(strFile).fileName().toLower();
    return name == QLatin1String("luminescent.tif") || name == QLatin1String("data.tif");
}

double binningOf(const QString& strFolder)
{
    CPLClickInfo info;
    if (info.loadClickInfo(strFolder + QLatin1Char('/') + QLatin1String(SequenceFiles::kClickInfo)) != 0) {
        return 1.0;
    }
    const QStringList sections = {QLatin1String(ClickKeys::kMainDataImage),
                                  QLatin1String(ClickKeys::kLuminescentImage)};
    return std::max(1.0, clickNumberValue(info, sections, ClickKeys::kBinning).value_or(1.0));
}

// A line "NAME: 123 kB" of the system's figures; -1 without one.
qint64 figureOf(const QString& strFile, const QByteArray& name, qint64 lUnit)
{
    QFile file(strFile);
    if (!file.open(QIODevice::ReadOnly)) {
        return -1;
    }
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (!line.startsWith(name)) {
            continue;
        }
        bool good = false;
        const qint64 figure = line.mid(name.size()).trimmed().split(' ').first().toLongLong(&good);
        return good ? figure * lUnit : -1;
    }
    return -1;
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
            size.binning = binningOf(QFileInfo(path).path());
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
    const double pixels = static_cast<double>(size.pixels) * finer * finer;
    const double data = pixels * size.images * elementBytes;
    const double bytes = demand.automatic ? copiesOfResolution * data + pixelBytesOfResolution * pixels
                                          : copiesOfFit * data + pixelBytesOfFit * pixels;
    constexpr double most = 9e18; // within the number's range
    return static_cast<qint64>(std::min(programBytes + bytes + static_cast<double>(size.pictureBytes), most));
}

qint64 memoryToBeHad()
{
    constexpr qint64 unknown = 2LL << 30;
    const qint64 free = figureOf(QStringLiteral("/proc/meminfo"), "MemAvailable:", 1024);
    const qint64 limit = figureOf(QStringLiteral("/sys/fs/cgroup/memory.max"), "", 1);
    const qint64 used = std::max<qint64>(0, figureOf(QStringLiteral("/sys/fs/cgroup/memory.current"), "", 1));
    const qint64 system = free > 0 ? free : unknown;
    return limit > 0 ? std::min(system, std::max<qint64>(0, limit - used)) : system;
}
