// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/imagePadding.h"

#include "host/CORVDataset.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"

#include <QRegularExpression>

#include <algorithm>
#include <cstring>
#include <new>

std::optional<QSize> extentBeforePadding(const CORVDataset& dataset)
{
    static const QRegularExpression size(QStringLiteral(R"(^([0-9]{1,6})\s*x\s*([0-9]{1,6})$)"));
    const auto match = size.match(clickText(dataset.clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kImageExtent));
    return match.hasMatch() ? std::optional<QSize>(QSize(match.captured(1).toInt(), match.captured(2).toInt()))
                            : std::nullopt;
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
