// SPDX-License-Identifier: GPL-3.0-or-later
// Conversion, arithmetic and statistics of images.
#include "host/CILImage.h"
#include "host/CILHistogram.h"
#include "platform/orvimage/PixelTypes.h"
#include "platform/orvimage/TiffIo.h"

#include <QFile>

#include <algorithm>
#include <utility>

using orvimage::toPixel;
using orvimage::visitPixels;

CILImage::~CILImage() = default;

EILSTATUS CILImage::ChangeType(ORVDataTypes type)
{
    if (bytesPerPixel(type) == 0) {
        return EIL_INVALID_ARGUMENT;
    }
    if (isEmpty()) {
        return EIL_FAILURE;
    }
    if (type == m_eType) {
        return EIL_SUCCESS;
    }

    CILImageBase converted;
    const EILSTATUS status = converted.InitWithType(type, m_lWidth, m_lHeight);
    if (status != EIL_SUCCESS) {
        return status;
    }
    visitPixels(std::as_const(*this), [&](const auto* from, std::size_t) {
        visitPixels(converted, [&](auto* to, std::size_t n) {
            using Pixel = std::remove_pointer_t<decltype(to)>;
            for (std::size_t i = 0; i < n; ++i) {
                to[i] = toPixel<Pixel>(static_cast<double>(from[i]));
            }
        });
    });
    converted.m_fBinning = m_fBinning;
    converted.m_dMin = m_dMin;
    converted.m_dMax = m_dMax;
    CILImageBase::operator=(std::move(converted)); // the colour picture, if any, stays
    return EIL_SUCCESS;
}

namespace {

// Pixel i of `image` becomes operation(pixel i, pixel i of `other`).
template <typename Operation>
void combine(CILImage& image, const CILImage& other, Operation operation)
{
    visitPixels(std::as_const(other), [&](const auto* operand, std::size_t) {
        visitPixels(image, [&](auto* pixels, std::size_t n) {
            using Pixel = std::remove_pointer_t<decltype(pixels)>;
            for (std::size_t i = 0; i < n; ++i) {
                pixels[i] = toPixel<Pixel>(operation(static_cast<double>(pixels[i]), static_cast<double>(operand[i])));
            }
        });
    });
}

} // namespace

CILImage& CILImage::operator*=(const CILImage& other)
{
    m_bLastOk = m_lWidth == other.m_lWidth && m_lHeight == other.m_lHeight;
    if (!m_bLastOk) {
        return *this;
    }
    combine(*this, other, [](double a, double b) { return a * b; });
    dropRGBImage();
    return *this;
}

CILImage& CILImage::operator/=(const CILImage& other)
{
    m_bLastOk = m_lWidth == other.m_lWidth && m_lHeight == other.m_lHeight;
    if (!m_bLastOk) {
        return *this;
    }
    combine(*this, other, [](double a, double b) { return a / b; });
    dropRGBImage();
    return *this;
}

CILImage& CILImage::operator/=(double divisor)
{
    m_bLastOk = true;
    visitPixels(*this, [&](auto* pixels, std::size_t n) {
        using Pixel = std::remove_pointer_t<decltype(pixels)>;
        for (std::size_t i = 0; i < n; ++i) {
            pixels[i] = toPixel<Pixel>(static_cast<double>(pixels[i]) / divisor);
        }
    });
    dropRGBImage();
    return *this;
}

void CILImage::setConstData(double value)
{
    visitPixels(*this, [&](auto* pixels, std::size_t n) {
        using Pixel = std::remove_pointer_t<decltype(pixels)>;
        std::fill(pixels, pixels + n, toPixel<Pixel>(value));
    });
    dropRGBImage();
}

void CILImage::RefreshImageStats()
{
    const orvimage::FiniteRange range = orvimage::finiteRange(*this);
    m_dMin = range.minimum;
    m_dMax = range.maximum;
}

void CILImage::Histogram(CILHistogram& histogram) const
{
    histogram.reset();
    visitPixels(*this, [&](const auto* pixels, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) {
            histogram.add(static_cast<double>(pixels[i]));
        }
    });
}

EILSTATUS CILImage::saveAsTIFF(const char* path) const
{
    if (path == nullptr || *path == '\0') {
        return EIL_INVALID_ARGUMENT;
    }
    if (isEmpty()) {
        return EIL_FAILURE;
    }
    return writeTiff(QFile::decodeName(path), *this, {}, nullptr) ? EIL_SUCCESS : EIL_FILE_UNWRITABLE;
}
