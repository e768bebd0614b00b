// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/unmixedMapScale.h"

#include "host/CILImage.h"
#include "host/CORVDataset.h"
#include "host/orv_calibration.h"

#include <cmath>

namespace {

const char* const caller = "SpumKyvo";

// Counts over radiance, pixel by pixel; `dFallback` where that is no number.
bool countsOverRadiance(const CILImage& counts, const CILImage& radiance, double dFallback, CILImage& out)
{
    out = counts;
    if (out.ChangeType(ORVTYPE_FLOAT) != EIL_SUCCESS) {
        return false;
    }
    out /= radiance;
    float* pPixels = out.floats();
    for (std::size_t i = 0; i < out.pixelCount(); ++i) {
        if (!std::isfinite(pPixels[i])) {
            pPixels[i] = static_cast<float>(dFallback);
        }
    }
    return out.lastOperationOk();
}

bool bringToSize(CILImage& image, const CILImage& map)
{
    const int nWidth = static_cast<int>(map.m_lWidth);
    const int nHeight = static_cast<int>(map.m_lHeight);
    if (image.m_lWidth > map.m_lWidth && image.downSample(nWidth, nHeight, IL_RESAMPLE_AREA) != EIL_SUCCESS) {
        return false;
    }
    // Does nothing to an image that has the size.
    return image.upSample(nWidth, nHeight, IL_RESAMPLE_SMOOTH) == EIL_SUCCESS;
}

} // namespace

bool scaleMapBySource(CORVDataset& source, CILImage& map)
{
    double dCalibration = 1.0;
    CILImage counts;
    const ESTATUS eStatus = source.getCalibratedLuminImage(DISPLAYUNIT_COUNTS, &counts, caller);
    if (eStatus == ESTATUS_UNIT_UNAVAILABLE ||
        !ORV_getImageIntensityCalibrationValue(IMAGETYPE_LUMINESCENT, &source, "photons", &dCalibration)) {
        return true;
    }
    CILImage radiance;
    CILImage ratio;
    if (eStatus != ESTATUS_SUCCESS ||
        source.getCalibratedLuminImage(DISPLAYUNIT_RADIANCE, &radiance, caller) != ESTATUS_SUCCESS ||
        !countsOverRadiance(counts, radiance, 1.0 / dCalibration, ratio) || !bringToSize(ratio, map)) {
        return false;
    }
    float* pPixels = map.floats();
    for (std::size_t i = 0; i < map.pixelCount(); ++i) {
        // In double precision: a calibration value may exceed what a float holds of the product.
        pPixels[i] =
            static_cast<float>(static_cast<double>(pPixels[i]) * dCalibration * static_cast<double>(ratio.floats()[i]));
    }
    map.RefreshImageStats();
    return true;
}
