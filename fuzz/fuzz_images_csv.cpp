// SPDX-License-Identifier: GPL-3.0-or-later
// Tables of images: whatever the bytes, rows of figures that mean something or an error that names the file.
#include "require.h"
#include "services/importer/ImagesTable.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ImagesTable table;
    QString error;
    const QString name = QStringLiteral("images.csv");
    if (!table.parse(QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size)), name, &error)) {
        require(error.startsWith(name + QLatin1Char(':')) && table.rows().isEmpty());
        return 0;
    }
    require(!table.rows().isEmpty());
    int line = 1;
    for (const ImageRow& row : table.rows()) {
        require(row.line > line);
        line = row.line;
        require(row.page.value_or(1) > 0 && row.band.value_or(1) > 0 && row.interval.value_or(1) > 0);
        require(row.projection.isNone()
                    ? row.projection.pages.isEmpty()
                    : row.page == row.projection.pages.value(0) && !row.projection.text().isEmpty());
        QVector<int> pages;
        require(PageProjection::readPages(row.projection.pagesText(), &pages, &error) && pages == row.projection.pages);
        require(std::isfinite(row.excitation.value_or(0)) && std::isfinite(row.emission.value_or(0)) &&
                std::isfinite(row.time.value_or(0)));
    }
    return 0;
}
