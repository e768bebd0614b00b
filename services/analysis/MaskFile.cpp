// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/MaskFile.h"

#include "platform/orvimage/TiffIo.h"
#include "services/basis/Failure.h"

#include <new>

namespace {

// 1 where any of the mask's pixels that fall into a pixel of the analysis is above 0, else 0. Whole numbers: a binning
// that is a fraction would be rounded.
CILImage pixelsOfAnalysis(const CILImage& mask, int nSide)
{
    CILImage pixels;
    if (pixels.InitWithType(ORVTYPE_FLOAT, nSide, nSide) != EIL_SUCCESS) {
        throw std::bad_alloc();
    }
    pixels.setConstData(0.0);
    const long factor = mask.m_lWidth / nSide;
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

} // namespace

CILImage readMaskFile(const QString& strPath, int nSide, int nBinning)
{
    CILImage mask;
    QString error;
    if (!readTiff(strPath, 0, mask, &error)) {
        throw Failure(error);
    }
    if (mask.m_lWidth != mask.m_lHeight || mask.m_lWidth % nSide != 0) {
        throw Failure(QStringLiteral("%1: the mask has %2 x %3 pixels; the analysis needs %4 x %4 or a multiple of it")
                          .arg(strPath)
                          .arg(mask.m_lWidth)
                          .arg(mask.m_lHeight)
                          .arg(nSide));
    }
    CILImage pixels = pixelsOfAnalysis(mask, nSide);
    if (pixels.m_dMax <= 0.0) {
        throw Failure(QStringLiteral("%1: the mask has no pixel above 0").arg(strPath));
    }
    pixels.m_fBinning = static_cast<float>(nBinning);
    return pixels;
}
