// SPDX-License-Identifier: GPL-3.0-or-later
// Binary images and morphology.
#include "host/CILImage.h"
#include "platform/orvimage/PixelTypes.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace {

enum class Morphology
{
    Dilate,
    Erode
};

void replaceNaNs(CILImageBase& image, double replacement, std::vector<std::size_t>& places)
{
    orvimage::visitPixels(image, [&](auto* pixels, std::size_t n) {
        using Pixel = std::remove_pointer_t<decltype(pixels)>;
        if constexpr (std::is_floating_point_v<Pixel>) {
            for (std::size_t i = 0; i < n; ++i) {
                if (std::isnan(pixels[i])) {
                    places.push_back(i);
                    pixels[i] = static_cast<Pixel>(replacement);
                }
            }
        }
    });
}

int matrixType(ORVDataTypes type)
{
    switch (type) {
    case ORVTYPE_BYTE:
        return CV_8UC1;
    case ORVTYPE_USHORT:
        return CV_16UC1;
    case ORVTYPE_FLOAT:
        return CV_32FC1;
    default:
        return CV_64FC1;
    }
}

// Morphology of an image of bytes, 16 bit integers, floats or doubles in place.
void morphology(CILImageBase& image, Morphology operation, int kernel, int count)
{
    // What OpenCV takes beyond the border too: the extreme finite value.
    const double extreme = image.dataType() == ORVTYPE_FLOAT ? static_cast<double>(std::numeric_limits<float>::max())
                                                             : std::numeric_limits<double>::max();
    const double neutral = operation == Morphology::Dilate ? -extreme : extreme;
    std::vector<std::size_t> places;
    replaceNaNs(image, neutral, places);

    cv::Mat pixels(static_cast<int>(image.m_lHeight), static_cast<int>(image.m_lWidth), matrixType(image.dataType()),
                   image.m_pData);
    const cv::Mat element = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(kernel, kernel));
    const cv::Mat from = pixels.clone();
    if (operation == Morphology::Dilate) {
        cv::dilate(from, pixels, element, cv::Point(-1, -1), count);
    } else {
        cv::erode(from, pixels, element, cv::Point(-1, -1), count);
    }

    for (const std::size_t i : places) {
        if (image.value(i) == neutral) {
            image.setValue(i, std::numeric_limits<double>::quiet_NaN());
        }
    }
}

EILSTATUS applyMorphology(CILImage& image, Morphology operation, int kernel, int count)
{
    constexpr long maxSide = std::numeric_limits<int>::max();
    if (kernel < 1 || count < 0) {
        return EIL_INVALID_ARGUMENT;
    }
    if (image.isEmpty() || image.m_lWidth > maxSide || image.m_lHeight > maxSide) {
        return EIL_FAILURE;
    }
    if (count == 0 || kernel == 1) {
        return EIL_SUCCESS;
    }
    // Nothing changes any more once the kernel covers the image from any pixel.
    const long covering = 2 * std::max(image.m_lWidth, image.m_lHeight) - 1;
    const int odd = static_cast<int>(std::min<long>(kernel % 2 == 0 ? kernel + 1L : kernel, covering));
    const int times = std::min(count, static_cast<int>(covering / std::max(1, odd - 1)) + 1);

    const ORVDataTypes type = image.dataType();
    if (type == ORVTYPE_INT) { // OpenCV's morphology refuses 32 bit integers; doubles hold them exactly
        image.ChangeType(ORVTYPE_DOUBLE);
    }
    morphology(image, operation, odd, times);
    if (type == ORVTYPE_INT) {
        image.ChangeType(ORVTYPE_INT);
    }
    image.RefreshImageStats();
    return EIL_SUCCESS;
}

} // namespace

EILSTATUS CILImage::Threshold(float level, CILImage& out) const
{
    if (isEmpty()) {
        return EIL_FAILURE;
    }
    CILImage mask;
    const EILSTATUS status = mask.InitWithType(ORVTYPE_BYTE, m_lWidth, m_lHeight);
    if (status != EIL_SUCCESS) {
        return status;
    }
    const auto limit = static_cast<double>(level);
    orvimage::visitPixels(*this, [&](const auto* pixels, std::size_t n) {
        unsigned char* bits = mask.bytes();
        for (std::size_t i = 0; i < n; ++i) {
            bits[i] = static_cast<double>(pixels[i]) > limit ? 1 : 0;
        }
    });
    mask.m_fBinning = m_fBinning;
    mask.RefreshImageStats();
    out = std::move(mask);
    return EIL_SUCCESS;
}

EILSTATUS CILImage::Dilate(int kernel, int count)
{
    dropRGBImage();
    return applyMorphology(*this, Morphology::Dilate, kernel, count);
}

EILSTATUS CILImage::Erode(int kernel, int count)
{
    dropRGBImage();
    return applyMorphology(*this, Morphology::Erode, kernel, count);
}
