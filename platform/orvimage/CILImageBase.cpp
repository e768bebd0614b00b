// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CILImageBase.h"
#include "platform/orvimage/PixelTypes.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <numeric>
#include <utility>

CILImageBase::CILImageBase(const CILImageBase& other)
    : m_lWidth(other.m_lWidth), m_lHeight(other.m_lHeight), m_fBinning(other.m_fBinning), m_dMin(other.m_dMin),
      m_dMax(other.m_dMax), m_eType(other.m_eType)
{
    if (other.pixels() == nullptr) {
        return;
    }
    m_dMin = other.m_dMin; // made with the pixels, where these were not yet
    m_dMax = other.m_dMax;
    const std::size_t size = other.pixelCount() * bytesPerPixel(other.m_eType);
    m_pData = std::malloc(size);
    if (m_pData == nullptr) {
        throw std::bad_alloc();
    }
    std::memcpy(m_pData, other.m_pData, size);
}

CILImageBase& CILImageBase::operator=(const CILImageBase& other)
{
    if (this != &other) {
        *this = CILImageBase(other);
    }
    return *this;
}

CILImageBase::CILImageBase(CILImageBase&& other) noexcept
    : m_lWidth(std::exchange(other.m_lWidth, 0)), m_lHeight(std::exchange(other.m_lHeight, 0)),
      m_fBinning(other.m_fBinning), m_pData(std::exchange(other.m_pData, nullptr)),
      m_dMin(std::exchange(other.m_dMin, 0.0)), m_dMax(std::exchange(other.m_dMax, 0.0)),
      m_eType(std::exchange(other.m_eType, ORVTYPE_NONE))
{
}

CILImageBase& CILImageBase::operator=(CILImageBase&& other) noexcept
{
    if (this == &other) {
        return *this;
    }
    std::free(m_pData);
    m_lWidth = std::exchange(other.m_lWidth, 0);
    m_lHeight = std::exchange(other.m_lHeight, 0);
    m_fBinning = other.m_fBinning;
    m_pData = std::exchange(other.m_pData, nullptr);
    m_dMin = std::exchange(other.m_dMin, 0.0);
    m_dMax = std::exchange(other.m_dMax, 0.0);
    m_eType = std::exchange(other.m_eType, ORVTYPE_NONE);
    return *this;
}

CILImageBase::~CILImageBase()
{
    std::free(m_pData);
}

EILSTATUS CILImageBase::InitWithType(ORVDataTypes type, long w, long h)
{
    clear();
    const std::size_t bytes = bytesPerPixel(type);
    if (w < 1 || h < 1 || bytes == 0) {
        return EIL_INVALID_ARGUMENT;
    }
    const auto width = static_cast<std::size_t>(w);
    const auto height = static_cast<std::size_t>(h);
    if (width > SIZE_MAX / bytes / height) {
        return EIL_NO_MEMORY;
    }
    m_pData = std::calloc(width * height, bytes);
    if (m_pData == nullptr) {
        return EIL_NO_MEMORY;
    }
    m_lWidth = w;
    m_lHeight = h;
    m_eType = type;
    return EIL_SUCCESS;
}

EILSTATUS CILImageBase::initWithData(ORVDataTypes type, long w, long h, const void* data)
{
    if (data == nullptr) {
        clear();
        return EIL_INVALID_ARGUMENT;
    }
    const EILSTATUS status = InitWithType(type, w, h);
    if (status == EIL_SUCCESS) {
        std::memcpy(m_pData, data, pixelCount() * bytesPerPixel(type));
    }
    return status;
}

void CILImageBase::clear()
{
    std::free(m_pData);
    m_pData = nullptr;
    m_lWidth = 0;
    m_lHeight = 0;
    m_dMin = 0.0;
    m_dMax = 0.0;
    m_eType = ORVTYPE_NONE;
    pixelsReplaced();
}

std::size_t CILImageBase::bytesPerPixel(ORVDataTypes type)
{
    switch (type) {
    case ORVTYPE_BYTE:
        return sizeof(unsigned char);
    case ORVTYPE_USHORT:
        return sizeof(unsigned short);
    case ORVTYPE_INT:
        return sizeof(int);
    case ORVTYPE_FLOAT:
        return sizeof(float);
    case ORVTYPE_DOUBLE:
        return sizeof(double);
    case ORVTYPE_NONE:
        break;
    }
    return 0;
}

double CILImageBase::value(std::size_t i) const
{
    double v = 0.0;
    orvimage::visitPixels(*this, [&](const auto* pixels, std::size_t) { v = static_cast<double>(pixels[i]); });
    return v;
}

void CILImageBase::setValue(std::size_t i, double v)
{
    orvimage::visitPixels(*this, [&](auto* pixels, std::size_t) {
        using Pixel = std::remove_pointer_t<decltype(pixels)>;
        pixels[i] = orvimage::toPixel<Pixel>(v);
    });
}

namespace {

// Values that are compared side by side: a comparison does not wait for the one before.
constexpr std::size_t kLanes = 8;

// Of equals the first stays, as for one running extreme: 0 and -0 are equal, and what is written of an image may show
// the sign. The range holds a zero where `extreme` is one.
template <typename T>
double firstOfZeros(const T* pixels, double extreme)
{
    while (extreme == 0.0) {
        if (*pixels == T{0}) {
            return static_cast<double>(*pixels);
        }
        ++pixels;
    }
    return extreme;
}

// Of integers, at least one.
template <typename T>
orvimage::FiniteRange integerRange(const T* pixels, std::size_t n)
{
    T lowest = pixels[0];
    T highest = pixels[0];
    for (std::size_t i = 0; i < n; ++i) {
        lowest = std::min(lowest, pixels[i]);
        highest = std::max(highest, pixels[i]);
    }
    return {static_cast<double>(lowest), static_cast<double>(highest), n};
}

template <typename T>
orvimage::FiniteRange floatingRange(const T* pixels, std::size_t n)
{
    std::array<T, kLanes> lowest;
    std::array<T, kLanes> highest;
    std::array<std::size_t, kLanes> counts{};
    lowest.fill(std::numeric_limits<T>::max());
    highest.fill(std::numeric_limits<T>::lowest());
    const auto take = [&](std::size_t lane, T v) {
        const bool finite = v - v == T{0}; // not so for infinities and what is no number
        const T low = v < lowest[lane] ? v : lowest[lane];
        const T high = v > highest[lane] ? v : highest[lane];
        lowest[lane] = finite ? low : lowest[lane];
        highest[lane] = finite ? high : highest[lane];
        counts[lane] += finite ? 1U : 0U;
    };
    std::size_t i = 0;
    for (; i + kLanes <= n; i += kLanes) {
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            take(lane, pixels[i + lane]);
        }
    }
    for (; i < n; ++i) {
        take(0, pixels[i]);
    }
    orvimage::FiniteRange range;
    range.count = std::accumulate(counts.begin(), counts.end(), std::size_t{0});
    if (range.count > 0) {
        range.minimum = firstOfZeros(pixels, static_cast<double>(*std::min_element(lowest.begin(), lowest.end())));
        range.maximum = firstOfZeros(pixels, static_cast<double>(*std::max_element(highest.begin(), highest.end())));
    }
    return range;
}

} // namespace

orvimage::FiniteRange orvimage::finiteRange(const CILImageBase& image)
{
    FiniteRange range;
    visitPixels(image, [&](const auto* pixels, std::size_t n) {
        using Pixel = std::remove_const_t<std::remove_pointer_t<decltype(pixels)>>;
        if constexpr (std::is_floating_point_v<Pixel>) {
            range = floatingRange(pixels, n);
        } else if (n > 0) {
            range = integerRange(pixels, n);
        }
    });
    return range;
}
