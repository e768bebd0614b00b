// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/ImageCheck.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CILImage.h"
#include "host/CORVSequenceDataset.h"
#include "services/basis/Failure.h"

#include <algorithm>
#include <cmath>

namespace {

// Pixels that are not finite, in a float image.
long long badPixels(const CILImage& image)
{
    const float* pixels = image.floats();
    long long bad = 0;
    for (std::size_t i = 0; i < image.pixelCount(); ++i) {
        bad += std::isfinite(pixels[i]) ? 0 : 1;
    }
    return bad;
}

void checkSize(const CORVSpumKyvo& engine, const QString& strName, const CILImage& image)
{
    if (image.m_lWidth != image.m_lHeight) {
        throw Failure(QStringLiteral("the image %1 is not square (%2 x %3)")
                          .arg(strName)
                          .arg(image.m_lWidth)
                          .arg(image.m_lHeight));
    }
    const int binning = static_cast<int>(image.m_fBinning);
    const long long side = static_cast<long long>(image.m_lWidth) * binning / engine.m_nBinning;
    if (side != engine.m_nWidth) {
        throw Failure(
            QStringLiteral("the image %1 (%2 pixels a side at binning %3) does not cover the area of the first "
                           "image (%4 a side at binning %5)")
                .arg(strName)
                .arg(image.m_lWidth)
                .arg(binning)
                .arg(engine.m_nWidth)
                .arg(engine.m_nBinning));
    }
}

bool allEqual(const CORVSpumKyvo& engine, const CILImage& image)
{
    const float* pixels = image.floats();
    if (engine.m_bUseMask == 0 || image.m_lWidth != engine.m_nWidth) {
        const auto last = pixels + image.pixelCount();
        return std::all_of(pixels, last, [&](float v) { return v == pixels[0]; });
    }
    const auto& indices = engine.m_maskIndices;
    return std::all_of(indices.begin(), indices.end(), [&](int i) { return pixels[i] == pixels[indices.front()]; });
}

} // namespace

QStringList checkImagePixels(const CORVSequenceDataset& sequence, const CORVSpumKyvo& engine, tag_edisplayunit eUnit,
                             const std::function<void(double fraction)>& step)
{
    QStringList bad;
    QStringList constant;
    const int count = engine.m_imageList.size();
    for (int i = 0; i < count; ++i) {
        step(static_cast<double>(i) / count);
        const QString name = engine.m_imageList[i];
        CORVDataset* dataset = sequence.getDataset(name);
        CILImage image;
        if (dataset == nullptr ||
            dataset->getCalibratedLuminImage(eUnit, &image, QStringLiteral("spum")) != ESTATUS_SUCCESS) {
            throw Failure(QStringLiteral("the image %1 cannot be read").arg(name),
                          QStringLiteral("--verbose tells more"));
        }
        image.ChangeType(ORVTYPE_FLOAT);
        checkSize(engine, name, image);
        const long long pixels = badPixels(image);
        if (pixels > 0) {
            bad.append(QStringLiteral("%1 (%2 pixels)").arg(name).arg(pixels));
        } else if (allEqual(engine, image)) {
            constant.append(name);
        }
    }
    if (!bad.isEmpty()) {
        throw Failure(QStringLiteral("these images hold pixels that are NaN or infinite: %1")
                          .arg(bad.join(QStringLiteral(", "))));
    }
    return constant;
}
