// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/ImageCalibration.h"

#include "host/CILImage.h"
#include "host/CPLClickInfo.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "platform/orvapi/ImageNames.h"

#include <cmath>

namespace {

constexpr double kCoarsestBinning = 1024.0;

// A figure that must be above 0; else *pReason names it.
bool positiveFigure(const CPLClickInfo& info, const QStringList& sections, const char* pKey, double* pValue,
                    QString* pReason)
{
    const std::optional<double> value = clickNumberValue(info, sections, pKey);
    if (value && *value > 0.0) {
        *pValue = *value;
        return true;
    }
    if (pReason != nullptr) {
        *pReason = QStringLiteral("section \"%1\": \"%2\" %3")
                       .arg(sections.first(), QString::fromLatin1(pKey),
                            value ? QStringLiteral("is not above 0") : QStringLiteral("is missing or no number"));
    }
    return false;
}

} // namespace

double imageBias(const CPLClickInfo& info, tag_eimagetype eType)
{
    // What is stored in a unit, counts included, has been calibrated: no bias is left on it.
    const bool dataImage = eType == IMAGETYPE_LUMINESCENT || eType == IMAGETYPE_MAIN_DATA;
    if (dataImage && !clickText(info, ClickKeys::kLuminescentImage, ClickKeys::kStoredUnit).isEmpty()) {
        return 0.0;
    }
    for (const QString& section : acquisitionSections(eType)) {
        const std::optional<bool> corrected =
            clickFlag(info, section.toLatin1().constData(), ClickKeys::kBackgroundCorrected);
        if (corrected && *corrected) {
            return 0.0;
        }
        if (corrected) {
            break;
        }
    }
    return clickNumberValue(info, acquisitionSections(eType), ClickKeys::kReadBiasLevel).value_or(0.0);
}

float imageBinning(const CPLClickInfo& info, tag_eimagetype eType)
{
    const double binning = clickNumberValue(info, acquisitionSections(eType), ClickKeys::kBinning).value_or(1.0);
    return binning > 0.0 && binning <= kCoarsestBinning ? static_cast<float>(binning) : 1.0F;
}

bool radianceOfCount(const CPLClickInfo& info, tag_eimagetype eType, std::optional<double> ownBinning, double* pFactor,
                     QString* pReason)
{
    const QStringList own = acquisitionSections(eType);
    QStringList lens = own;
    if (eType == IMAGETYPE_FLUORESCENT_REFERENCE) {
        lens.append(imageSection(IMAGETYPE_LUMINESCENT));
    }
    const QStringList camera{QString::fromLatin1(ClickKeys::kCameraSystemInfo)};
    double photons = 0.0;
    double exposure = 0.0;
    double pixelSize = 0.0;
    double binning = ownBinning.value_or(0.0);
    double solidAngle = 0.0;
    double fNumber = 0.0;
    if (!positiveFigure(info, camera, ClickKeys::kPhotonsPerCount, &photons, pReason) ||
        !positiveFigure(info, own, ClickKeys::kExposureTime, &exposure, pReason) ||
        !positiveFigure(info, camera, ClickKeys::kPixelSize, &pixelSize, pReason) ||
        (!ownBinning && !positiveFigure(info, own, ClickKeys::kBinning, &binning, pReason)) ||
        !positiveFigure(info, camera, ClickKeys::kLensSolidAngle, &solidAngle, pReason) ||
        !positiveFigure(info, lens, ClickKeys::kFNumber, &fNumber, pReason)) {
        return false;
    }
    const double side = pixelSize * binning;
    const double factor = photons / (exposure * side * side * solidAngle / (fNumber * fNumber));
    if (!std::isfinite(factor) || factor <= 0.0 || binning > kCoarsestBinning) {
        if (pReason != nullptr) {
            *pReason = QStringLiteral("the calibration figures give no usable factor");
        }
        return false;
    }
    if (pFactor != nullptr) {
        *pFactor = factor;
    }
    return true;
}

bool applyCalibration(CILImage& image, double bias, double factor)
{
    if (image.isEmpty() || image.ChangeType(ORVTYPE_FLOAT) != EIL_SUCCESS) {
        return false;
    }
    float* pPixels = image.floats();
    const std::size_t count = image.pixelCount();
    for (std::size_t i = 0; i < count; ++i) {
        pPixels[i] = static_cast<float>((static_cast<double>(pPixels[i]) - bias) * factor);
    }
    image.RefreshImageStats();
    return true;
}
