// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QString>

#include <utility>
#include <vector>

// What is done to each image before it is stored: a dark image is subtracted, then the rest is divided by a flat field.
// Corrected pixels are floats (doubles where the image has 32 bit integers or doubles); results below 0 stay.
class ImageCorrection
{
public:
    // The dark image of the images that follow, until another one is set.
    void setDark(std::vector<double> pixels) { m_dark = std::move(pixels); }
    // Reads a TIFF file of one page that has w x h finite pixels. It is taken as it is and normalised to a mean of 1.
    // False with "file: reason" in *pError; a pixel that is not above 0 is refused.
    bool loadFlat(const QString& strPath, long w, long h, QString* pError);

    bool hasFlat() const { return !m_gain.empty(); }

    // Corrects an image of their size; without dark and flat it stays as it is. False without memory.
    bool apply(CILImage& image) const;
    // Makes floats of integers, doubles of those with 32 bits. False without memory.
    static bool makeReal(CILImage& image);

private:
    std::vector<double> m_dark;
    std::vector<double> m_gain; // flat over its mean
};
