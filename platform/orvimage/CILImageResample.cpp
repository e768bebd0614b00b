// SPDX-License-Identifier: GPL-3.0-or-later
// Images at another binning or size.
#include "host/CILImage.h"
#include "platform/orvimage/Resampler.h"

#include <cmath>
#include <limits>
#include <utility>

using orvimage::AxisTaps;

namespace {

// Type that holds sums and shares of pixels of `type`.
ORVDataTypes sumType(ORVDataTypes type)
{
    switch (type) {
    case ORVTYPE_BYTE:
    case ORVTYPE_USHORT:
        return ORVTYPE_FLOAT;
    case ORVTYPE_INT:
        return ORVTYPE_DOUBLE;
    default:
        return type;
    }
}

// Whole new pixels along a side. The small share keeps a quotient such as 3 * 0.1 / 0.3 from losing its last one.
long wholePixels(long side, double ratio)
{
    const double pixels = std::floor(static_cast<double>(side) / ratio * (1.0 + 1e-12));
    return pixels < static_cast<double>(std::numeric_limits<int>::max()) ? static_cast<long>(pixels) : 0;
}

AxisTaps tapsFor(IL_RESAMPLEMODES mode, int from, int to)
{
    const double ratio = static_cast<double>(from) / to;
    switch (mode) {
    case IL_RESAMPLE_NEAREST:
        return orvimage::nearestTaps(from, to);
    case IL_RESAMPLE_AREA:
        return orvimage::areaTaps(from, to, ratio, true);
    case IL_RESAMPLE_CUBIC:
        return orvimage::cubicTaps(from, to);
    case IL_RESAMPLE_SMOOTH:
        return to < from ? orvimage::areaTaps(from, to, ratio, true) : orvimage::linearTaps(from, to);
    case IL_RESAMPLE_LINEAR:
        break;
    }
    return orvimage::linearTaps(from, to);
}

EILSTATUS resampled(const CILImage& source, int w, int h, IL_RESAMPLEMODES mode, CILImageBase& out)
{
    const EILSTATUS status = out.InitWithType(source.dataType(), w, h);
    if (status != EIL_SUCCESS) {
        return status;
    }
    const auto width = static_cast<int>(source.m_lWidth);
    const auto height = static_cast<int>(source.m_lHeight);
    orvimage::resample(source, tapsFor(mode, width, w), tapsFor(mode, height, h), true, out);
    out.m_fBinning = source.m_fBinning * static_cast<float>(source.m_lWidth) / static_cast<float>(w);
    return EIL_SUCCESS;
}

bool isResampleMode(IL_RESAMPLEMODES mode)
{
    return mode >= IL_RESAMPLE_NEAREST && mode <= IL_RESAMPLE_SMOOTH;
}

bool isTooLarge(const CILImage& image)
{
    return image.m_lWidth > std::numeric_limits<int>::max() || image.m_lHeight > std::numeric_limits<int>::max();
}

} // namespace

EILSTATUS CILImage::changeBinning(int binning, CILImage& out) const
{
    if (binning < 1 || !(m_fBinning > 0.0F) || !std::isfinite(m_fBinning)) {
        return EIL_INVALID_ARGUMENT;
    }
    if (isEmpty() || isTooLarge(*this)) {
        return EIL_FAILURE;
    }
    const double ratio = binning / static_cast<double>(m_fBinning);
    if (ratio == 1.0) {
        if (&out != this) {
            out = *this;
        }
        return EIL_SUCCESS;
    }
    const long width = wholePixels(m_lWidth, ratio);
    const long height = wholePixels(m_lHeight, ratio);
    if (width < 1 || height < 1) {
        return EIL_FAILURE;
    }

    CILImage binned;
    const EILSTATUS status = binned.InitWithType(sumType(m_eType), width, height);
    if (status != EIL_SUCCESS) {
        return status;
    }
    const auto taps = [ratio](long from, long to) {
        return orvimage::areaTaps(static_cast<int>(from), static_cast<int>(to), ratio, false);
    };
    orvimage::resample(*this, taps(m_lWidth, width), taps(m_lHeight, height), false, binned);
    binned.m_fBinning = static_cast<float>(binning);
    binned.m_palette = m_palette;
    binned.m_nGLFormat = m_nGLFormat;
    binned.m_nBrightness = m_nBrightness;
    binned.RefreshImageStats();
    out = std::move(binned);
    return EIL_SUCCESS;
}

EILSTATUS CILImage::upSample(int w, int h, IL_RESAMPLEMODES mode)
{
    if (w < 1 || h < 1 || !isResampleMode(mode)) {
        return EIL_INVALID_ARGUMENT;
    }
    if (isEmpty() || isTooLarge(*this)) {
        return EIL_FAILURE;
    }
    if (w == m_lWidth && h == m_lHeight) {
        return EIL_SUCCESS;
    }
    CILImageBase result;
    const EILSTATUS status = resampled(*this, w, h, mode, result);
    if (status != EIL_SUCCESS) {
        return status;
    }
    CILImageBase::operator=(std::move(result));
    dropRGBImage();
    RefreshImageStats();
    return EIL_SUCCESS;
}

EILSTATUS CILImage::downSample(int w, int h, IL_RESAMPLEMODES mode)
{
    return upSample(w, h, mode);
}
