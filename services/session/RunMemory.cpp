// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/RunMemory.h"

#include <QByteArray>
#include <QFile>

#include <algorithm>

namespace {

// What `spum unmix` was seen to hold at its peak (512 to 2048 pixels a side, 6 and 24 images, 4 components), and some
// more: the program with its libraries; copies of the images as doubles; for each pixel maps, pictures and what they
// are drawn from.
constexpr double programBytes = 72.0 * (1 << 20);
constexpr double elementBytes = 8.0;
constexpr double copiesOfFit = 1.1;
constexpr double copiesOfResolution = 2.1; // the data; their left vectors, which become the denoised data
constexpr double pixelBytesOfFit = 160.0;
constexpr double pixelBytesOfResolution = 110.0;

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

qint64 meminfo(const char* pName)
{
    return figureOf(QStringLiteral("/proc/meminfo"), pName, 1024);
}

QString gibibytes(qint64 lBytes)
{
    constexpr double gibibyte = 1 << 30;
    return QString::number(static_cast<double>(lBytes) / gibibyte, 'g', 3);
}

} // namespace

qint64 unmixMemory(const RunSize& size)
{
    const double copies = (size.automatic ? copiesOfResolution : copiesOfFit) + (size.keepsRaw ? 1.0 : 0.0);
    const double bytes = copies * elementBytes * size.elements +
                         (size.automatic ? pixelBytesOfResolution : pixelBytesOfFit) * size.pixels;
    constexpr double most = 9e18; // within the number's range
    return static_cast<qint64>(std::min(programBytes + bytes + size.otherBytes, most));
}

SystemMemory SystemMemory::ofThisMachine()
{
    constexpr qint64 unknown = 2LL << 30;
    SystemMemory memory;
    const qint64 free = meminfo("MemAvailable:");
    memory.free = free > 0 ? free : unknown;
    memory.whole = std::max<qint64>(0, meminfo("MemTotal:") + std::max<qint64>(0, meminfo("SwapTotal:")));
    const qint64 limit = figureOf(QStringLiteral("/sys/fs/cgroup/memory.max"), "", 1);
    const qint64 used = std::max<qint64>(0, figureOf(QStringLiteral("/sys/fs/cgroup/memory.current"), "", 1));
    if (limit > 0) {
        memory.free = std::min(memory.free, std::max<qint64>(0, limit - used));
        memory.whole = memory.whole > 0 ? std::min(memory.whole, limit) : limit;
    }
    return memory;
}

QString tooMuchMemoryText(qint64 lBytes, const SystemMemory& memory)
{
    return lBytes <= memory.free ? QString()
                                 : QStringLiteral("the run takes about %1 GiB of memory, where %2 are to be had")
                                       .arg(gibibytes(lBytes), gibibytes(memory.free));
}
