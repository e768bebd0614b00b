// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

// What the pages of a TIFF file say in words.
struct TiffTexts
{
    struct Page
    {
        QString description; // ImageDescription; of a later page than the first cut to 4096 characters
        QString pageName;    // PageName
    };
    QVector<Page> pages; // all pages of the file
    QStringList labels;  // of the slices, which ImageJ keeps with the first page (tags 50838 and 50839); may be fewer
};

// Reads the texts of all pages in one pass; no pixels. Texts are taken as UTF-8. A text above 16 MiB is refused. False
// with one sentence "file: reason" in `error`, which may be null; *texts is then as it was. Malformed labels count as
// none.
bool readTiffTexts(const QString& path, TiffTexts* texts, QString* error);
