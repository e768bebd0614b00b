// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvimage/TiffIo.h"

#include <memory>

namespace orvimage {
class TiffFile;
}

// Reads many pages of one TIFF file, which stays open meanwhile: each page next to the one before is found at once,
// where readTiff() walks from the first page every time. Otherwise as readTiffHeader() and readTiff(). Used from one
// thread.
class TiffPageReader
{
public:
    TiffPageReader();
    ~TiffPageReader();
    TiffPageReader(const TiffPageReader&) = delete;
    TiffPageReader& operator=(const TiffPageReader&) = delete;

    // Opens another file where `path` is not the one that is open.
    bool readHeader(const QString& path, int page, TiffInfo* info, QString* error);
    // Of combined pages (TiffReadOptions) the statistics of `out` are whoever's who reads the last one.
    bool read(const QString& path, int page, const TiffReadOptions& options, CILImage& out, QString* error);

private:
    bool open(const QString& path, QString* error);

    std::unique_ptr<orvimage::TiffFile> m_pFile; // null without an open file, and after a failure
    QString m_strPath;
};
