// SPDX-License-Identifier: GPL-3.0-or-later
// The units of a dataset's main data image.
#include "host/CILImage.h"
#include "host/CORVDataset.h"
#include "host/UnitTexts.h"
#include "host/orv_calibration.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "platform/orvapi/HostLog.h"
#include "platform/orvapi/ImageCalibration.h"
#include "platform/orvapi/ImageNames.h"
#include "platform/orvapi/KeptImages.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

// The binning that counts for the calibration: that of an image held in memory, else the click info's.
std::optional<double> calibrationBinning(bool bInMemory, float fBinning)
{
    return bInMemory ? std::optional<double>(static_cast<double>(fBinning)) : std::nullopt;
}

std::optional<double> positive(const CPLClickInfo& info, const char* pKey)
{
    const std::optional<double> value = clickNumberValue(info, acquisitionSections(IMAGETYPE_MAIN_DATA), pKey);
    return value && *value > 0.0 ? value : std::nullopt;
}

QString missingFigure(const char* pKey)
{
    return QStringLiteral("section \"%1\": \"%2\" is missing or not above 0")
        .arg(QLatin1String(ClickKeys::kLuminescentImage), QLatin1String(pKey));
}

// The unit in which the pixels are stored. The preferred unit 3 says the same of efficiencies.
int storedUnit(const CORVDataset& dataset)
{
    if (dataset.nativeUnit == DISPLAYUNIT_EFFICIENCY) {
        return DISPLAYUNIT_EFFICIENCY;
    }
    const QString text = clickText(dataset.clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kStoredUnit);
    return std::max<int>(displayUnitOf(text), DISPLAYUNIT_COUNTS);
}

// Divides by the reference pixel by pixel; 0 where there is no light to divide by.
void divideByReference(CILImage& image, const CILImage& reference)
{
    float* pPixels = image.floats();
    const float* pReference = reference.floats();
    const std::size_t count = image.pixelCount();
    for (std::size_t i = 0; i < count; ++i) {
        pPixels[i] = pReference[i] > 0.0F ? pPixels[i] / pReference[i] : 0.0F;
    }
    image.RefreshImageStats();
}

// The reference at the size of the image.
bool resampledTo(const CILImage& image, CILImage& reference)
{
    const int width = static_cast<int>(image.m_lWidth);
    const int height = static_cast<int>(image.m_lHeight);
    if (reference.m_lWidth > image.m_lWidth || reference.m_lHeight > image.m_lHeight) {
        return reference.downSample(width, height, IL_RESAMPLE_AREA) == EIL_SUCCESS;
    }
    if (reference.m_lWidth < image.m_lWidth || reference.m_lHeight < image.m_lHeight) {
        return reference.upSample(width, height, IL_RESAMPLE_SMOOTH) == EIL_SUCCESS;
    }
    return true;
}

} // namespace

bool CORVDataset::radianceFactor(tag_eimagetype eType, double* pFactor, QString* pReason) const
{
    return radianceOfCount(clickInfo, eType,
                           calibrationBinning(m_pCoreImages->image(eType) != nullptr, binningOf(eType)), pFactor,
                           pReason);
}

QString CORVDataset::unitUnavailableReason(tag_edisplayunit eUnit) const
{
    tag_eimagetype type = IMAGETYPE_MAIN_DATA;
    if (!resolveType(IMAGETYPE_MAIN_DATA, &type)) {
        return QStringLiteral("there is no luminescent image");
    }
    if (eUnit < DISPLAYUNIT_COUNTS || eUnit > DISPLAYUNIT_EFFICIENCY) {
        return QStringLiteral("there is no such unit");
    }
    if (eUnit > unitLimit()) {
        return QStringLiteral("the unit is beyond the limit that was set");
    }
    if (const int stored = storedUnit(*this); stored != DISPLAYUNIT_COUNTS) {
        return eUnit == stored ? QString()
                               : QStringLiteral("the data are stored as %1").arg(displayUnitText(stored).toLower());
    }
    if (eUnit == DISPLAYUNIT_COUNTS) {
        return QString();
    }
    QString reason;
    if (!radianceFactor(type, nullptr, &reason)) {
        return reason;
    }
    if (eUnit == DISPLAYUNIT_RADIANT_EFFICIENCY && !positive(clickInfo, ClickKeys::kExcitationIrradiance)) {
        return missingFigure(ClickKeys::kExcitationIrradiance);
    }
    return eUnit == DISPLAYUNIT_EFFICIENCY ? efficiencyUnavailableReason() : QString();
}

bool CORVDataset::hasReferenceImage(QString* pReason) const
{
    return hasImage(IMAGETYPE_FLUORESCENT_REFERENCE) &&
           radianceFactor(IMAGETYPE_FLUORESCENT_REFERENCE, nullptr, pReason);
}

QString CORVDataset::efficiencyUnavailableReason() const
{
    QString reason;
    if (hasReferenceImage(&reason) || positive(clickInfo, ClickKeys::kReferenceRadiance)) {
        return QString();
    }
    return reason.isEmpty()
               ? missingFigure(ClickKeys::kReferenceRadiance) + QLatin1String(", and there is no reference image")
               : reason;
}

CORVDataset::ImageReader CORVDataset::referenceReader(tag_edisplayunit eUnit, const QString& strCaller) const
{
    // Where there is no such image, the one number for all pixels is in the factor.
    double factor = 0.0;
    if (eUnit != DISPLAYUNIT_EFFICIENCY || storedUnit(*this) == DISPLAYUNIT_EFFICIENCY || !hasReferenceImage(nullptr) ||
        !radianceFactor(IMAGETYPE_FLUORESCENT_REFERENCE, &factor, nullptr)) {
        return {};
    }
    return [read = imageReader(IMAGETYPE_FLUORESCENT_REFERENCE, strCaller),
            bias = imageBias(clickInfo, IMAGETYPE_FLUORESCENT_REFERENCE), factor](CILImage* pOut) {
        const ESTATUS status = read(pOut);
        return status != ESTATUS_SUCCESS || applyCalibration(*pOut, bias, factor) ? status : ESTATUS_FAILURE;
    };
}

double CORVDataset::unitFactor(tag_edisplayunit eUnit, tag_eimagetype eType) const
{
    double factor = 1.0;
    if (eUnit == DISPLAYUNIT_COUNTS || storedUnit(*this) != DISPLAYUNIT_COUNTS) {
        return factor;
    }
    radianceFactor(eType, &factor, nullptr);
    if (eUnit == DISPLAYUNIT_RADIANT_EFFICIENCY) {
        factor /= positive(clickInfo, ClickKeys::kExcitationIrradiance).value_or(1.0);
    }
    if (eUnit == DISPLAYUNIT_EFFICIENCY && !hasReferenceImage(nullptr)) {
        factor /= positive(clickInfo, ClickKeys::kReferenceRadiance).value_or(1.0);
    }
    return factor;
}

bool CORVDataset::countInUnit(tag_edisplayunit eUnit, double* pValue) const
{
    tag_eimagetype type = IMAGETYPE_MAIN_DATA;
    if (!unitUnavailableReason(eUnit).isEmpty() || storedUnit(*this) != DISPLAYUNIT_COUNTS ||
        (eUnit == DISPLAYUNIT_EFFICIENCY && hasReferenceImage(nullptr)) || !resolveType(IMAGETYPE_MAIN_DATA, &type)) {
        return false;
    }
    *pValue = unitFactor(eUnit, type);
    return true;
}

ESTATUS CORVDataset::getCalibratedLuminImage(tag_edisplayunit eUnit, CILImage* pOut, const QString& strCaller)
{
    return pOut != nullptr ? luminImageReader(eUnit, strCaller)(pOut) : ESTATUS_INVALID_ARGUMENT;
}

CORVDataset::ImageReader CORVDataset::luminImageReader(tag_edisplayunit eUnit, const QString& strCaller) const
{
    tag_eimagetype type = IMAGETYPE_MAIN_DATA;
    if (!resolveType(IMAGETYPE_MAIN_DATA, &type)) {
        return [](CILImage*) { return ESTATUS_IMAGE_MISSING; };
    }
    if (!unitUnavailableReason(eUnit).isEmpty()) {
        return [](CILImage*) { return ESTATUS_UNIT_UNAVAILABLE; };
    }
    const double bias = storedUnit(*this) != DISPLAYUNIT_COUNTS ? 0.0 : imageBias(clickInfo, type);
    return [read = imageReader(type, strCaller), readReference = referenceReader(eUnit, strCaller), bias,
            factor = unitFactor(eUnit, type)](CILImage* pOut) {
        CILImage image;
        ESTATUS status = read(&image);
        if (status == ESTATUS_SUCCESS && !applyCalibration(image, bias, factor)) {
            status = ESTATUS_FAILURE;
        }
        if (status == ESTATUS_SUCCESS && readReference) {
            CILImage reference;
            status = readReference(&reference);
            if (status == ESTATUS_SUCCESS && !resampledTo(image, reference)) {
                status = ESTATUS_FAILURE;
            }
            if (status == ESTATUS_SUCCESS) {
                divideByReference(image, reference);
            }
        }
        if (status == ESTATUS_SUCCESS) {
            *pOut = std::move(image);
        }
        return status;
    };
}

bool CORVDataset::intensityCalibration(tag_eimagetype eType, const char* pUnit, double* pValue) const
{
    tag_eimagetype type = eType;
    if (pUnit == nullptr || pValue == nullptr || !resolveType(eType, &type)) {
        return false;
    }
    const bool mainData = type == IMAGETYPE_LUMINESCENT || type == IMAGETYPE_MAIN_DATA;
    if (mainData && storedUnit(*this) != DISPLAYUNIT_COUNTS) {
        return false;
    }
    if (std::strcmp(pUnit, "counts") == 0) {
        *pValue = 1.0;
        return true;
    }
    return std::strcmp(pUnit, "photons") == 0 && radianceFactor(type, pValue, nullptr);
}

bool ORV_getImageIntensityCalibrationValue(tag_eimagetype eType, const CORVDataset* pDataset, const char* pUnit,
                                           double* pValue)
{
    return pDataset != nullptr && pDataset->intensityCalibration(eType, pUnit, pValue);
}
