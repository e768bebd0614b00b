// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QString>

#include <array>

class TiffPageReader;

// A picture in colours as three images of one size: red, green and blue.
struct ColourPlanes
{
    std::array<CILImage, 3> planes;

    enum class Kind
    {
        Grey,   // the three are alike
        OneHue, // every pixel is a multiple of one pure colour: what a microscope's grey image was dyed with
        Colours
    };
    // Alike and of one hue count within what JPEG makes of them.
    Kind kind() const;
    // The plane that has most of the light.
    int strongest() const;

    // Grey values (ITU-R BT.601) in the planes' type; they take the place of the red plane.
    CILImage luma();

    static QString name(int nPlane); // "red", ...

    // Of a PNG or JPEG file. 8 bit samples become bytes, 16 bit ones 16 bit pixels. False with "file: reason" in
    // *pError.
    static bool readPicture(const QString& strPath, ColourPlanes& out, QString* pError);
    // Of a page in red, green and blue of a TIFF file. Fails as TiffPageReader::read() does.
    static bool readTiffPage(TiffPageReader& reader, const QString& strPath, int nPage, ColourPlanes& out,
                             QString* pError);
};
