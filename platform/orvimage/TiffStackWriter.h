// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvimage/TiffIo.h"

#include <QString>

#include <cstdint>
#include <memory>

// Writes a TIFF file page by page, beside the target first and renamed by finish(): after a failure, or without
// finish(), the target is as it was. Nothing of a page is kept once it is written. Every `error` may be null; it
// receives one sentence "file: reason". A writer writes one file and refuses further calls after a failure.
class TiffStackWriter
{
public:
    TiffStackWriter();
    ~TiffStackWriter();
    TiffStackWriter(const TiffStackWriter&) = delete;
    TiffStackWriter& operator=(const TiffStackWriter&) = delete;

    // Prepares the file. `pixelBytes`, those of all pages together, decides whether it becomes a BigTIFF.
    bool begin(const QString& path, std::uint64_t pixelBytes, QString* error);
    // Appends a page in the image's own pixel type. An empty image is refused.
    bool add(const CILImage& image, const TiffWriteOptions& options, QString* error);
    // Appends a picture as red, green and blue of 8 bits each.
    bool add(const QImage& picture, const TiffWriteOptions& options, QString* error);
    // Brings all to the disk and puts the file in its place.
    bool finish(QString* error);

private:
    struct Output;
    struct Page;
    bool addPage(const Page& page, const TiffWriteOptions& options, QString* error);
    bool fail(const QString& sentence, QString* error);
    // As fail(), for what the open file tells.
    bool failWriting(QString* error);

    std::unique_ptr<Output> m_pOutput;
    QString m_strPath;
};
