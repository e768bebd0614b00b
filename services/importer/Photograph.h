// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QString>
#include <QStringList>

#include <vector>

// The mean of images of one size, for a sequence without a photograph.
class MeanImage
{
public:
    // Adds an image. The first one sets the size, which the others must have; their pixels must be finite.
    void add(const CILImage& image);
    // The mean as bytes: the darkest and the brightest half per cent of the pixels become 0 and 255, what lies between
    // is stretched linearly. A constant mean gives 128. False when there is nothing to show or no memory.
    bool stretched(CILImage& out) const;

private:
    long m_lWidth = 0;
    long m_lHeight = 0;
    int m_nImages = 0;
    std::vector<double> m_sum;
};

// Reads a photograph, TIFF or whatever Qt reads, as grey values, and fits it to w x h pixels, of which it is taken to
// show the same extent. A shape that differs by more than 2 % is told in *pWarnings. False with "file: reason" in
// *pError when it cannot be read or holds a pixel that is not finite; `out` is then empty.
bool loadPhotograph(const QString& strPath, long w, long h, CILImage& out, QStringList* pWarnings, QString* pError);

// Adds zeros at the right or the bottom, so that the image becomes a square; the type stays. False without memory.
bool padToSquare(CILImage& image);

// The first pixel (row-major) that is not finite, or beyond what single precision holds; -1 without.
long long firstUnusablePixel(const CILImage& image);
