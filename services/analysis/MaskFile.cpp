// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/MaskFile.h"

#include "platform/orvimage/TiffIo.h"
#include "services/basis/Failure.h"

#include <algorithm>
#include <new>

namespace {

// 1 where any of the mask's pixels, `factor` along the side of a pixel of the analysis, is above 0, else 0. Whole
// numbers: a binning that is a fraction would be rounded.
CILImage pixelsOfAnalysis(const CILImage& mask, int nSide, long factor)
{
    CILImage pixels;
    if (pixels.InitWithType(ORVTYPE_FLOAT, nSide, nSide) != EIL_SUCCESS) {
        throw std::bad_alloc();
    }
    pixels.setConstData(0.0);
    for (long y = 0; y < mask.m_lHeight; ++y) {
        for (long x = 0; x < mask.m_lWidth; ++x) {
            if (mask.value(static_cast<std::size_t>(y * mask.m_lWidth + x)) > 0.0) {
                pixels.floats()[(y / factor) * nSide + x / factor] = 1.0F;
            }
        }
    }
    pixels.RefreshImageStats();
    return pixels;
}

// How many pixels along the side of an image of that shape the mask has for each of the image's; 0 where its shape is
// another.
long factorOf(const CILImage& mask, const QSize& shape)
{
    const long factor = mask.m_lWidth / shape.width();
    return mask.m_lWidth == factor * shape.width() && mask.m_lHeight == factor * shape.height() ? factor : 0;
}

} // namespace

CILImage readMaskFile(const QString& strPath, int nSide, int nBinning, const QSize& extent)
{
    CILImage mask;
    QString error;
    if (!readTiff(strPath, 0, mask, &error)) {
        throw Failure(error);
    }
    const QSize shape = extent.isValid() ? extent : QSize(nSide, nSide);
    const long factor = std::max(factorOf(mask, shape), factorOf(mask, QSize(nSide, nSide)));
    if (factor == 0) {
        throw Failure(QStringLiteral("%1: the mask has %2 x %3 pixels; the analysis needs %4 x %5 or a multiple of it")
                          .arg(strPath)
                          .arg(mask.m_lWidth)
                          .arg(mask.m_lHeight)
                          .arg(shape.width())
                          .arg(shape.height()));
    }
    CILImage pixels = pixelsOfAnalysis(mask, nSide, factor);
    if (pixels.m_dMax <= 0.0) {
        throw Failure(QStringLiteral("%1: the mask has no pixel above 0").arg(strPath));
    }
    pixels.m_fBinning = static_cast<float>(nBinning);
    return pixels;
}
