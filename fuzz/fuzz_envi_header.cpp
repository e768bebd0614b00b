// SPDX-License-Identifier: GPL-3.0-or-later
// ENVI headers: whatever the bytes, a header whose figures fit together or an error.
#include "require.h"
#include "services/importer/EnviHeader.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    EnviHeader header;
    QString error;
    if (header.parse(QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size)), &error)) {
        require(header.width > 0 && header.height > 0 && header.bands > 0 && header.bytesPerPixel() > 0);
        require(header.imageType() != ORVTYPE_NONE);
        require(header.headerOffset >= 0 && header.requiredBytes() > header.headerOffset);
        require(header.wavelengths.isEmpty() || header.wavelengths.size() == header.bands);
        require(header.bandNames.isEmpty() || header.bandNames.size() == header.bands);
    } else {
        require(!error.isEmpty() && header.width == 0);
    }
    return 0;
}
