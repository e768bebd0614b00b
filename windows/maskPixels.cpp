// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/maskPixels.h"

#include <algorithm>

std::size_t countMaskPixels(const CILImage& mask)
{
    if (mask.isEmpty()) {
        return 0;
    }
    std::size_t count = 0;
    const std::size_t n = mask.pixelCount();
    if (mask.dataType() == ORVTYPE_BYTE) { // as masks are made
        const unsigned char* const bytes = mask.bytes();
        return static_cast<std::size_t>(std::count_if(bytes, bytes + n, [](unsigned char b) { return b > 0; }));
    }
    for (std::size_t i = 0; i < n; ++i) {
        count += mask.value(i) > 0.0 ? 1 : 0;
    }
    return count;
}

bool isMaskValid(const CILImage& mask)
{
    return countMaskPixels(mask) >= kMinMaskPixels;
}

QString maskStatusText(std::size_t nPixels, bool bDrawn)
{
    QString text = nPixels == 1 ? QStringLiteral("mask: 1 pixel") : QStringLiteral("mask: %1 pixels").arg(nPixels);
    if (nPixels < kMinMaskPixels) {
        text += QStringLiteral(", at least %1 needed").arg(kMinMaskPixels);
        if (bDrawn && nPixels == 0) {
            text += QStringLiteral("; drag over the picture to draw it");
        }
    }
    return text;
}
