// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"
#include "services/importer/ImageFacts.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

// The header of an ENVI cube: a text whose first line is "ENVI", then "key = value" lines, where a value in braces may
// go over several lines and a line that begins with ";" is a comment.
struct EnviHeader
{
    enum class Interleave
    {
        Bsq, // band by band
        Bil, // line by line, in each line band by band
        Bip  // pixel by pixel
    };

    long width = 0;  // "samples"
    long height = 0; // "lines"
    int bands = 0;
    int dataType = 0; // 1 uint8, 2 int16, 3 int32, 4 float, 5 double, 12 uint16, 13 uint32, 14 int64, 15 uint64
    Interleave interleave = Interleave::Bsq;
    bool bigEndian = false;            // "byte order" 1
    qint64 headerOffset = 0;           // bytes ahead of the pixels in the data file
    QVector<double> wavelengths;       // of the bands, in nm; empty without
    QVector<double> wavenumbers;       // of the bands, in 1/cm; empty without
    QStringList bandNames;             // one each; empty without
    QVector<bool> badBands;            // "bbl", true for a bad one; empty without, and where it does not fit the bands
    std::optional<double> ignoreValue; // "data ignore value" of pixels without a value; may be NaN
    double scale = 1.0;                // "reflectance scale factor" that stored values are divided by, above 0
    QVector<ImageFacts> facts;         // of the bands, as an export of this program notes them; empty without
    QString dataFile;                  // as the header has it; usually empty
    QByteArray dataDigest; // SHA-1 of the whole data file, as an export of this program notes it; empty without

    int bytesPerPixel() const;
    // Of the images: the type itself where there is one, 32 bit integers for int16, doubles for what only they hold.
    ORVDataTypes imageType() const;
    // Bytes that the data file must have.
    qint64 requiredBytes() const;

    // Reads the text of a header file. Sizes below 1, a cube of 2^62 bytes or more, complex data, compressed data and
    // frames with offsets are refused. False with "line N: reason" (or the reason, where no line is to blame) in
    // *pError; the header is then as it was.
    bool parse(const QByteArray& text, QString* pError);
};
