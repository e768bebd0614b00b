// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/ImportMemory.h"

#include "platform/orvimage/TiffIo.h"

#include <algorithm>

namespace {

constexpr int doubleBytes = 8;

QString gibibytes(qint64 bytes)
{
    constexpr double gibibyte = 1 << 30;
    return QString::number(static_cast<double>(bytes) / gibibyte, 'g', 3);
}

} // namespace

qint64 tiffMemory(const TiffInfo& info)
{
    constexpr qint64 colourBytes = 4; // of a pixel that libtiff converts
    const qint64 decoded = (static_cast<qint64>(info.bitsPerSample) * info.samplesPerPixel + 7) / 8;
    const qint64 source = info.isColour ? std::max(decoded, colourBytes) : decoded;
    return static_cast<qint64>(info.width) * info.height *
           (source + static_cast<qint64>(CILImage::bytesPerPixel(info.type)));
}

qint64 importMemory(const ImportSize& size)
{
    const qint64 pixels = static_cast<qint64>(size.width) * size.height;
    const qint64 side = std::max(size.width, size.height);
    const bool bReal = size.corrections > 0 || size.sorted || size.resized;
    // Corrected pixels may be doubles, and stand beside the image for a while, as resized ones do.
    const qint64 corrected = bReal ? size.readPixels * doubleBytes : 0;
    const qint64 stored = bReal ? doubleBytes : size.pixelBytes;
    const qint64 copies = (size.sorted ? 1 : 0) + (size.resized ? 1 : 0);
    return size.readBytes + corrected + size.corrections * size.readPixels * doubleBytes +
           copies * pixels * doubleBytes + side * side * (stored + 1) + size.photograph;
}

QString reasonAgainstMemory(const ImportSize& size, qint64 lMost)
{
    const qint64 bytes = importMemory(size);
    return bytes <= lMost ? QString()
                          : QStringLiteral("images of %1 x %2 pixels take %3 GiB of memory, where %4 are allowed; "
                                           "--max-memory allows more")
                                .arg(size.width)
                                .arg(size.height)
                                .arg(gibibytes(bytes), gibibytes(lMost));
}
