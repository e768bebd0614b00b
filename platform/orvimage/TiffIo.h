// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QImage>
#include <QString>

// TIFF files. Every function is safe to call from several threads at once, prints nothing, and on failure gives false
// (or 0) and one sentence "file: reason" in `error`, which may be null. Pages count from 0.

// What a page's header says.
struct TiffInfo
{
    enum class Samples
    {
        Unsigned,
        Signed,
        Float,
        Other // readTiff refuses these
    };
    long width = 0;
    long height = 0;
    int bitsPerSample = 0;
    Samples sampleFormat = Samples::Unsigned;
    int samplesPerPixel = 1;
    bool isColour = false;            // shown in colours: red, green and blue, a colour map and the like
    ORVDataTypes type = ORVTYPE_NONE; // of the image that readTiff gives; ORVTYPE_NONE when it refuses the page
    QString description;              // ImageDescription, Software: empty when absent
    QString software;
};

struct TiffReadOptions
{
    // A colour picture is kept beside its grey values (CILImage::setRGBImage); pixels are then bytes.
    bool keepColours = false;
    // Reads this sample of each pixel (from 0), as stored: with a colour map, the index into it. Below 0: colours
    // become their luma, else sample 0.
    int band = -1;
    // What becomes of what `out` holds, an image of the page's extent: of the type that the page gives, of which each
    // pixel then is the larger of both (NaN where one is); of doubles, to which the page is added. No more than a strip
    // or a row of tiles is held beside it. Pages in colours or of less than 8 bits are refused.
    enum class Combine
    {
        Replace,
        Larger,
        Sum
    };
    Combine combine = Combine::Replace;
};

struct TiffWriteOptions
{
    enum class Compression
    {
        None,
        Deflate // with the predictor of the pixel type
    };
    QString description;
    Compression compression = Compression::None;
    QString pageName{};
};

// Reads a page. Unsigned 8 and 16 bit samples become bytes and 16 bit pixels, signed 8, 16 and 32 bit ones 32 bit
// integers, unsigned 32 bit and all 64 bit ones doubles, half floats floats, floats and doubles themselves (NaNs stay).
// Colours become luma (ITU-R BT.601) in the type of their samples; samples below 8 bits and colour maps give bytes.
// Where white is the smallest value, unsigned samples are turned over. Strips, tiles, planes apart, either byte order,
// BigTIFF and all compressions of the installed libtiff serve. A header that claims more than 4 GiB, or more than a
// file of that length can hold, is refused before memory is taken. `out` keeps its binning; after a failure it is
// empty.
bool readTiff(const QString& path, int page, CILImage& out, QString* error);
bool readTiff(const QString& path, int page, const TiffReadOptions& options, CILImage& out, QString* error);

// Reads a page's header; after a failure *info is as it was.
bool readTiffHeader(const QString& path, int page, TiffInfo* info, QString* error);

// Number of pages; 0 when the file cannot be read.
int tiffPageCount(const QString& path, QString* error);

// Writes the pixels in their own type, beside the target first and renamed when all is on disk: after a failure the
// target is as it was. A file that would pass 4 GB becomes a BigTIFF.
bool writeTiff(const QString& path, const CILImage& image, const TiffWriteOptions& options, QString* error);
// The same for a picture, as red, green and blue of 8 bits each; what shines through is not told.
bool writeTiff(const QString& path, const QImage& picture, const TiffWriteOptions& options, QString* error);
