// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/imagePadding.h"

#include "host/CORVDataset.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"

#include <QRegularExpression>

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

std::optional<QSize> extentBeforePadding(const CORVDataset& dataset)
{
    static const QRegularExpression size(QStringLiteral(R"(^([0-9]{1,6})\s*x\s*([0-9]{1,6})$)"));
    const auto match = size.match(clickText(dataset.clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kImageExtent));
    return match.hasMatch() ? std::optional<QSize>(QSize(match.captured(1).toInt(), match.captured(2).toInt()))
                            : std::nullopt;
}

namespace {

int shareOfSide(int nPart, int nSquare, long lPixels)
{
    if (nPart < 1 || nPart >= nSquare) {
        return static_cast<int>(lPixels);
    }
    return static_cast<int>(std::max(1LL, static_cast<long long>(lPixels) * nPart / nSquare));
}

} // namespace

QSize shareOf(const QSize& extent, const QSize& square, long lWidth, long lHeight)
{
    return {shareOfSide(extent.width(), square.width(), lWidth),
            shareOfSide(extent.height(), square.height(), lHeight)};
}

QSize ownSize(const QSize& extent, long lWidth, long lHeight)
{
    // Only squares were made.
    if (extent.isEmpty() || lWidth != lHeight) {
        return {static_cast<int>(lWidth), static_cast<int>(lHeight)};
    }
    const int side = std::max(extent.width(), extent.height());
    return shareOf(extent, {side, side}, lWidth, lHeight);
}

CILImage ownPart(const QSize& extent, CILImage image)
{
    const QSize size = ownSize(extent, image.m_lWidth, image.m_lHeight);
    const bool whole = size.width() == image.m_lWidth && size.height() == image.m_lHeight;
    return whole || image.isRGB() ? std::move(image) : croppedImage(image, size.width(), size.height());
}

CILImage croppedImage(const CILImage& image, long lWidth, long lHeight)
{
    const long width = std::min(lWidth, image.m_lWidth);
    const long height = std::min(lHeight, image.m_lHeight);
    if (image.isEmpty() || (width == image.m_lWidth && height == image.m_lHeight)) {
        return image;
    }
    CILImage part;
    if (part.InitWithType(image.dataType(), width, height) != EIL_SUCCESS) {
        throw std::bad_alloc();
    }
    const std::size_t pixel = CILImageBase::bytesPerPixel(image.dataType());
    const std::size_t from = static_cast<std::size_t>(image.m_lWidth) * pixel;
    const std::size_t to = static_cast<std::size_t>(width) * pixel;
    for (std::size_t y = 0; y < static_cast<std::size_t>(height); ++y) {
        std::memcpy(static_cast<char*>(part.m_pData) + y * to, static_cast<const char*>(image.m_pData) + y * from, to);
    }
    part.m_fBinning = image.m_fBinning;
    return part;
}
