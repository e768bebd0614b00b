// SPDX-License-Identifier: GPL-3.0-or-later
// TIFF reader: whatever the bytes, an image of the announced size or an error that names the file.
#include "platform/orvimage/TiffIo.h"
#include "require.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>

namespace {

void readPage(const QString& path, int page, const TiffReadOptions& options)
{
    CILImage image;
    QString error;
    if (readTiff(path, page, options, image, &error)) {
        TiffInfo info;
        require(readTiffHeader(path, page, &info, &error));
        require(!image.isEmpty() && image.m_lWidth == info.width && image.m_lHeight == info.height);
        // A sample asked for by its number is the stored one, which is wider than the colours of a map can be.
        require(image.isRGB() || options.keepColours || options.band >= 0 || image.dataType() == info.type);
    } else {
        require(image.isEmpty() && error.startsWith(path));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const int file = memfd_create("fuzz.tif", MFD_CLOEXEC);
    require(file >= 0 && write(file, data, size) == static_cast<ssize_t>(size));
    const QString path = QStringLiteral("/proc/self/fd/%1").arg(file);
    tiffPageCount(path, nullptr);
    readPage(path, 0, {});
    TiffReadOptions options;
    options.keepColours = true;
    readPage(path, 0, options);
    options.keepColours = false;
    options.band = 1;
    readPage(path, 1, options);
    close(file);
    return 0;
}
