// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/photoMask.h"

#include "XTNT/xtnt_assert.h"
#include "host/CILHistogram.h"
#include "host/CSLComposite.h"

namespace {

constexpr unsigned long long kBins = 256;
constexpr float kBinFraction = 0.00390625F; // one of the 256 bins
constexpr double kCountedShare = 0.999;

constexpr int kKernel = 3;
constexpr int kOpenings = 3;

bool cutOut(const CILImage& photo, float threshold, CILImage& mask)
{
    if (mask.InitWithType(ORVTYPE_BYTE, photo.m_lWidth, photo.m_lHeight) != EIL_SUCCESS) {
        return false;
    }
    mask.m_fBinning = photo.m_fBinning;
    return photo.Threshold(threshold, mask) == EIL_SUCCESS && mask.Erode(kKernel, kOpenings) == EIL_SUCCESS &&
           mask.Dilate(kKernel, kOpenings) == EIL_SUCCESS;
}

} // namespace

float photoRange(const CILImage& photo)
{
    CILHistogram histogram;
    histogram.setMaxBins(kBins);
    histogram.setImageMin(photo.Min());
    histogram.setImageMax(photo.Max());
    photo.Histogram(histogram);
    histogram.integrate(nullptr);
    const double counted = static_cast<double>(photo.m_lWidth) * kCountedShare * static_cast<double>(photo.m_lHeight);
    return static_cast<float>(histogram.findLevel(static_cast<float>(counted))) * kBinFraction;
}

float automaticThreshold(const CILImage& photo, float fRange)
{
    // Without a range there is nothing to take a percentage of, and the quotient would be infinite, or no number for a
    // constant photograph. 0 is a value that the slider has too, and the one that means something: it keeps what is
    // brighter than the minimum, a dark photograph's few bright places, and nothing of a constant photograph.
    if (!(fRange > 0.0F)) {
        return 0.0F;
    }
    return CSLComposite::AutomaticThresholdOtsu(&photo) / fRange;
}

float photoThreshold(const CILImage& photo, float v, float fRange)
{
    const auto minimum = static_cast<float>(photo.getMin());
    const auto maximum = static_cast<float>(photo.getMax());
    // Products pass through memory: fused with the sum behind them they would not be rounded.
    const volatile float top = maximum * fRange;
    const volatile float rise = v * ((top - minimum) / 100.0F);
    return minimum + rise;
}

bool makePhotoMask(const CILImage& photo, float v, float fRange, CILImage& mask)
{
    XTNT_ASSERT(&photo != &mask);
    if (!cutOut(photo, photoThreshold(photo, v, fRange), mask)) {
        mask.clear();
        return false;
    }
    CSLComposite::closeHolesInBinaryImage(mask);
    return true;
}
