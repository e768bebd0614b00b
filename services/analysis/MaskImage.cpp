// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/MaskImage.h"

#include "engine/CORVSpumKyvo.h"
#include "services/analysis/MaskFile.h"
#include "services/analysis/analysedRegion.h"
#include "services/basis/Failure.h"
#include "services/basis/ImageExtent.h"
#include "windows/drawnMask.h"
#include "windows/maskPixels.h"
#include "windows/photoMask.h"

#include <new>
#include <vector>

namespace {

float thresholdOf(double dThreshold, const CILImage& photo, float fRange)
{
    return dThreshold < 0.0 ? automaticThreshold(photo, fRange) : static_cast<float>(dThreshold);
}

CILImage photographMask(double dThreshold, const CORVSpumKyvo& engine)
{
    if (engine.m_pPhoto == nullptr || engine.m_pPhoto->isEmpty()) {
        throw Failure(QStringLiteral("--mask auto: there is no photograph"));
    }
    CILImage photo = *engine.m_pPhoto;
    photo.RefreshImageStats();
    const float range = photoRange(photo);
    const float threshold = thresholdOf(dThreshold, photo, range);
    CILImage mask;
    if (!makePhotoMask(photo, threshold, range, mask)) {
        throw std::bad_alloc();
    }
    if (!isMaskValid(mask)) {
        throw Failure(QStringLiteral("--mask auto: only %1 pixels of the photograph are brighter than %2 % of its "
                                     "range; --threshold sets another limit, --mask none takes every pixel")
                          .arg(countMaskPixels(mask))
                          .arg(static_cast<double>(threshold), 0, 'g', 4));
    }
    return mask;
}

CILImage drawnMask(const MaskRequest& option, const CORVSpumKyvo& engine)
{
    const QSize extent = analysedExtent(engine);
    if (option.x < 0 || option.y < 0 || option.x > extent.width() - option.width ||
        option.y > extent.height() - option.height) {
        throw Failure(QStringLiteral("--mask: the shape %1,%2,%3,%4 leaves the images of %5 x %6 pixels at binning %7")
                          .arg(option.x)
                          .arg(option.y)
                          .arg(option.width)
                          .arg(option.height)
                          .arg(extent.width())
                          .arg(extent.height())
                          .arg(engine.m_nBinning));
    }
    const DrawnShape shape = shapeOverPixels(engine.m_nWidth, engine.m_nHeight, option.x, option.y, option.width,
                                             option.height, option.kind == MaskRequest::Kind::Ellipse);
    CILImage mask;
    if (!makeDrawnMask(engine.m_nWidth, engine.m_nHeight, static_cast<float>(engine.m_nBinning), shape, mask)) {
        throw std::bad_alloc();
    }
    return mask;
}

CILImage regionMask(const QString& strRegion, const CORVSpumKyvo& engine)
{
    const QString option = QStringLiteral("--mask");
    const std::vector<int> pixels = pixelsOfRegion(option, analysedRegion(option, strRegion, engine), engine);
    CILImage mask;
    if (mask.InitWithType(ORVTYPE_FLOAT, engine.m_nWidth, engine.m_nHeight) != EIL_SUCCESS) {
        throw std::bad_alloc();
    }
    mask.setConstData(0.0);
    for (const int pixel : pixels) {
        mask.floats()[pixel] = 1.0F;
    }
    mask.m_fBinning = static_cast<float>(engine.m_nBinning);
    mask.RefreshImageStats();
    return mask;
}

} // namespace

CILImage maskImageOf(const MaskRequest& option, const CORVSpumKyvo& engine)
{
    switch (option.kind) {
    case MaskRequest::Kind::Photograph:
        return photographMask(option.threshold, engine);
    case MaskRequest::Kind::File:
        return readMaskFile(option.file, engine.m_nWidth, engine.m_nBinning, analysedExtent(engine));
    case MaskRequest::Kind::Rectangle:
    case MaskRequest::Kind::Ellipse:
        return drawnMask(option, engine);
    case MaskRequest::Kind::Region:
        return regionMask(option.region, engine);
    case MaskRequest::Kind::None:
        break;
    }
    return CILImage();
}

double photographThreshold(double dThreshold, const CORVSpumKyvo& engine)
{
    if (engine.m_pPhoto == nullptr || dThreshold >= 0.0) {
        return dThreshold;
    }
    CILImage photo = *engine.m_pPhoto;
    photo.RefreshImageStats();
    return static_cast<double>(thresholdOf(dThreshold, photo, photoRange(photo)));
}

QString unusableMaskText(const MaskRequest& option, const CORVSpumKyvo& engine)
{
    if (option.kind == MaskRequest::Kind::File) {
        return QStringLiteral("%1 cannot serve as a mask").arg(option.file);
    }
    return QStringLiteral(
               "SpumKyvo: unable to get a valid photo mask! The photograph (%1 x %2 pixels at binning %3) does "
               "not cover the area of the images (%4 x %5 at binning %6); --mask none does without")
        .arg(engine.m_pPhoto->m_lWidth)
        .arg(engine.m_pPhoto->m_lHeight)
        .arg(static_cast<double>(engine.m_pPhoto->m_fBinning))
        .arg(engine.m_nWidth)
        .arg(engine.m_nHeight)
        .arg(engine.m_nBinning);
}
