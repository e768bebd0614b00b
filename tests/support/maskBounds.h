// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QRect>

// The pixels of a mask of bytes that are inside, as a rectangle around them; empty without any.
inline QRect maskBounds(const CILImage& mask)
{
    QRect around;
    for (long y = 0; y < mask.m_lHeight; ++y) {
        for (long x = 0; x < mask.m_lWidth; ++x) {
            if (mask.bytes()[y * mask.m_lWidth + x] != 0) {
                around |= QRect(static_cast<int>(x), static_cast<int>(y), 1, 1);
            }
        }
    }
    return around;
}
