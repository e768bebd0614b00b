// SPDX-License-Identifier: GPL-3.0-or-later
// OME-XML, ImageJ's description and names, as an import without a table reads them.
#include "services/importer/ImageJMetadata.h"
#include "services/importer/NameFigures.h"
#include "services/importer/OmeMetadata.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr int pages = 5;
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    QString error;
    OmeMetadata ome;
    const bool parsed = ome.parse(text, QStringLiteral("a.ome.tif"), pages, &error);
    if (ome.pages().size() != pages || parsed != error.isEmpty()) {
        __builtin_trap();
    }
    ImageJMetadata imageJ;
    imageJ.parse(text, text.split(QLatin1Char('\n')), pages);
    for (const Figure& figure : NameFigures::read(text, QStringLiteral("name")).figures) {
        if (!(figure.value >= 0.0)) {
            __builtin_trap();
        }
    }
    return 0;
}
