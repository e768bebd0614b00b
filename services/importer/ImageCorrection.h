// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QString>

#include <vector>

// What is done to each image before it is stored: a dark image is subtracted, then the rest is divided by a flat field.
// Corrected pixels are floats (doubles where the image has 32 bit integers or doubles); results below 0 stay.
class ImageCorrection
{
public:
    // Reads a TIFF file of one page that has w x h finite pixels. False with "file: reason" in *pError.
    bool loadDark(const QString& strPath, long w, long h, QString* pError);
    // As loadDark(). The flat is taken as it is and normalised to a mean of 1; a pixel that is not above 0 is refused.
    bool loadFlat(const QString& strPath, long w, long h, QString* pError);

    bool hasDark() const { return !m_dark.empty(); }
    bool hasFlat() const { return !m_gain.empty(); }

    // Corrects an image of the size above; without dark and flat it stays as it is. False without memory.
    bool apply(CILImage& image) const;

private:
    std::vector<double> m_dark;
    std::vector<double> m_gain; // flat over its mean
};
