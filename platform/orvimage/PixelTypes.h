// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImageBase.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <type_traits>

namespace orvimage {

// A number as a pixel of type T: integers by rounding to nearest (halves away from zero) and limiting to the type's
// range, NaN as 0; floats by conversion.
template <typename T>
T toPixel(double v)
{
    if constexpr (std::is_integral_v<T>) {
        constexpr double lowest = static_cast<double>(std::numeric_limits<T>::min());
        constexpr double highest = static_cast<double>(std::numeric_limits<T>::max());
        if (!(v > lowest)) { // NaN too, which no comparison lets through
            return std::isnan(v) ? T{0} : std::numeric_limits<T>::min();
        }
        if (v >= highest) {
            return std::numeric_limits<T>::max();
        }
        return static_cast<T>(std::round(v));
    } else {
        return static_cast<T>(v);
    }
}

// Calls visit(first pixel, number of pixels) with the pixels in their own type; nothing for an empty image.
template <typename Visitor>
void visitPixels(CILImageBase& image, Visitor&& visit)
{
    const std::size_t n = image.pixelCount();
    switch (image.dataType()) {
    case ORVTYPE_BYTE:
        visit(image.bytes(), n);
        break;
    case ORVTYPE_USHORT:
        visit(static_cast<unsigned short*>(image.pixels()), n);
        break;
    case ORVTYPE_INT:
        visit(static_cast<int*>(image.pixels()), n);
        break;
    case ORVTYPE_FLOAT:
        visit(image.floats(), n);
        break;
    case ORVTYPE_DOUBLE:
        visit(image.doubles(), n);
        break;
    case ORVTYPE_NONE:
        break;
    }
}

template <typename Visitor>
void visitPixels(const CILImageBase& image, Visitor&& visit)
{
    visitPixels(const_cast<CILImageBase&>(image), [&](auto* pixels, std::size_t n) {
        visit(static_cast<const std::remove_pointer_t<decltype(pixels)>*>(pixels), n);
    });
}

// Range of the finite pixels.
struct FiniteRange
{
    double minimum = 0.0;
    double maximum = 0.0;
    std::size_t count = 0; // finite pixels; 0 leaves the range at 0 to 0
};

FiniteRange finiteRange(const CILImageBase& image);

} // namespace orvimage
