// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILPalette.h"
#include "host/orv_types.h"

#include <cstddef>
#include <vector>

namespace orvimage {

// The colour of a palette as an image of that GL format shows it (see CILImage::setGLFormat).
QRgb shownColor(QRgb color, unsigned format);

// Many values of one image through a palette. Gives for each what shownColor() of CILPalette::map() gives, to the bit;
// the steps are those of that function, taken for a block of values at a time, and the logarithm and the types with few
// values by table. Holds the palette by reference; read-only after construction, so threads may share it.
class PaletteMapper
{
public:
    // The range is as CILPalette::map() takes it. `count` values of `type` are to come: a table that would cost more
    // than it spares is not made.
    PaletteMapper(const CILPalette& palette, double minimum, double maximum, unsigned format, ORVDataTypes type,
                  std::size_t count);

    void map(const unsigned char* values, std::size_t count, QRgb* colors) const;
    void map(const unsigned short* values, std::size_t count, QRgb* colors) const;
    void map(const int* values, std::size_t count, QRgb* colors) const;
    void map(const float* values, std::size_t count, QRgb* colors) const;
    void map(const double* values, std::size_t count, QRgb* colors) const;

private:
    template <typename T>
    void mapBlocks(const T* values, std::size_t count, QRgb* colors) const;
    void mapBlock(const double* values, int count, QRgb* colors) const;
    // Colours without the alpha where that follows the value.
    void takeColors(const double* fractions, int count, QRgb* colors) const;
    QRgb plain(double value) const;
    void fillLogBins();
    void fillLevels(std::size_t levels);

    const CILPalette& m_palette;
    double m_minimum;
    double m_maximum;
    unsigned m_format;
    bool m_blockwise = false; // otherwise something is not finite, and each value goes through plain()
    bool m_empty = false;     // the range is
    bool m_alphaFollows = false;
    double m_halfMinimum = 0.0;
    double m_halfSpan = 1.0;
    std::vector<QRgb> m_colors; // as they are shown
    std::vector<int> m_logBins; // place in the table of all fractions of a bin, or -1 where it changes within
    std::vector<QRgb> m_levels; // colour of each value of a type with few
};

} // namespace orvimage
