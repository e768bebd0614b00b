// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

#include <cstddef>
#include <vector>

// A typed two-dimensional array of pixels: row-major, row 0 on top, no padding between rows.
class CILImageBase
{
public:
    CILImageBase() = default;
    // A copy that finds no memory throws std::bad_alloc and leaves the target as it was. A moved-from image is empty.
    CILImageBase(const CILImageBase& other);
    CILImageBase& operator=(const CILImageBase& other);
    CILImageBase(CILImageBase&& other) noexcept;
    CILImageBase& operator=(CILImageBase&& other) noexcept;
    virtual ~CILImageBase();

    // Allocates w x h pixels of the type, all zero; the earlier pixels are gone, the binning stays. A size below 1 or
    // an unknown type gives EIL_INVALID_ARGUMENT, exhausted memory EIL_NO_MEMORY; both leave an empty image.
    EILSTATUS InitWithType(ORVDataTypes type, long w, long h);
    // As InitWithType, then copies w x h pixels of that type from `data`, which stays the caller's and may not be this
    // image's own block. Null gives EIL_INVALID_ARGUMENT.
    EILSTATUS initWithData(ORVDataTypes type, long w, long h, const void* data);
    // Drops the pixels; the binning stays.
    void clear();

    ORVDataTypes dataType() const { return m_eType; }
    bool isEmpty() const { return m_lWidth < 1 || m_lHeight < 1; }
    std::size_t pixelCount() const { return static_cast<std::size_t>(m_lWidth) * static_cast<std::size_t>(m_lHeight); }
    static std::size_t bytesPerPixel(ORVDataTypes type);

    // Pixel i (row-major) as a number; writing rounds and limits to the range of an integer type. No bounds test.
    double value(std::size_t i) const;
    void setValue(std::size_t i, double v);

    // Typed access to the first pixel. The caller knows the type.
    unsigned char* bytes() { return static_cast<unsigned char*>(pixels()); }
    const unsigned char* bytes() const { return static_cast<const unsigned char*>(pixels()); }
    float* floats() { return static_cast<float*>(pixels()); }
    const float* floats() const { return static_cast<const float*>(pixels()); }
    double* doubles() { return static_cast<double*>(pixels()); }
    const double* doubles() const { return static_cast<const double*>(pixels()); }
    // The first pixel, null without any. Throws std::bad_alloc when pixels that are not made yet find no memory.
    void* pixels() const
    {
        if (m_pData == nullptr && !isEmpty()) {
            makePixels();
        }
        return m_pData;
    }

    // Read directly by the system. m_pData points at the first pixel and belongs to the image. Of a blend
    // (CORVOverlayImage) pixels and statistics are made when pixels() or a function is first asked for them.
    long m_lWidth = 0;
    long m_lHeight = 0;
    float m_fBinning = 1.0F; // side of a pixel in pixels of the unbinned camera
    mutable void* m_pData = nullptr;
    mutable double m_dMin = 0.0; // of the pixels at the last RefreshImageStats(); NaNs do not count
    mutable double m_dMax = 0.0;

protected:
    // Called after the block of pixels was replaced or dropped, so that a class above can drop what it derived from it.
    virtual void pixelsReplaced() {}
    // Called for an image that has a size and no block: makes the block and the statistics, or throws std::bad_alloc.
    virtual void makePixels() const {}

    ORVDataTypes m_eType = ORVTYPE_NONE;
};
