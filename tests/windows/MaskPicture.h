// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

// Masks as rows of text, "#" inside and "." outside.
using MaskPicture = std::vector<std::string>;

inline MaskPicture pictureOf(const CILImage& mask)
{
    MaskPicture rows;
    for (long y = 0; y < mask.m_lHeight; ++y) {
        std::string row;
        for (long x = 0; x < mask.m_lWidth; ++x) {
            const double pixel = mask.value(static_cast<std::size_t>(y * mask.m_lWidth + x));
            row += pixel == 0.0 ? '.' : pixel == 1.0 ? '#' : '?';
        }
        rows.push_back(row);
    }
    return rows;
}

inline MaskPicture blankPicture(long lWidth, long lHeight)
{
    return MaskPicture(static_cast<std::size_t>(lHeight), std::string(static_cast<std::size_t>(lWidth), '.'));
}

// Sets a rectangle of pixels in anything that takes (column, row).
template <class Set>
void overRectangle(long lLeft, long lTop, long lWidth, long lHeight, Set set)
{
    for (long y = lTop; y < lTop + lHeight; ++y) {
        for (long x = lLeft; x < lLeft + lWidth; ++x) {
            set(x, y);
        }
    }
}

inline void draw(MaskPicture& picture, long lLeft, long lTop, long lWidth, long lHeight, char mark = '#')
{
    overRectangle(lLeft, lTop, lWidth, lHeight,
                  [&](long x, long y) { picture[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] = mark; });
}

inline void paint(CILImage& image, long lLeft, long lTop, long lWidth, long lHeight, double dValue)
{
    overRectangle(lLeft, lTop, lWidth, lHeight,
                  [&](long x, long y) { image.setValue(static_cast<std::size_t>(y * image.m_lWidth + x), dValue); });
    image.RefreshImageStats();
}

inline CILImage plainImage(ORVDataTypes eType, long lWidth, long lHeight, double dValue)
{
    CILImage image;
    EXPECT_EQ(image.InitWithType(eType, lWidth, lHeight), EIL_SUCCESS);
    paint(image, 0, 0, lWidth, lHeight, dValue);
    return image;
}

inline void setPixel(CILImage& image, std::size_t index, double dValue)
{
    image.setValue(index, dValue);
    image.RefreshImageStats();
}
