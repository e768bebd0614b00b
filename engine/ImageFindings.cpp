// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ImageFindings.h"

#include "host/CILImage.h"

#include <algorithm>
#include <cmath>

namespace {

// Pixels that are not finite, in a float image.
long long badPixels(const CILImage& image)
{
    const float* pixels = image.floats();
    return std::count_if(pixels, pixels + image.pixelCount(), [](float v) { return !std::isfinite(v); });
}

// Why the image does not lie on the cube; empty when it does.
QString misfit(const QString& strName, const CILImage& image, const ImageFindings::Frame& frame)
{
    if (image.m_lWidth != image.m_lHeight) {
        return QStringLiteral("the image %1 is not square (%2 x %3)")
            .arg(strName, QString::number(image.m_lWidth), QString::number(image.m_lHeight));
    }
    const int binning = static_cast<int>(image.m_fBinning);
    const long long side = static_cast<long long>(image.m_lWidth) * binning / frame.binning;
    if (side == frame.width) {
        return QString();
    }
    return QStringLiteral(
               "the image %1 (%2 pixels a side at binning %3) does not cover the area of the first image (%4 "
               "a side at binning %5)")
        .arg(strName, QString::number(image.m_lWidth), QString::number(binning), QString::number(frame.width),
             QString::number(frame.binning));
}

bool allEqual(const CILImage& image, const ImageFindings::Frame& frame)
{
    const float* pixels = image.floats();
    if (frame.mask->empty() || image.m_lWidth != frame.width) {
        return std::all_of(pixels, pixels + image.pixelCount(), [&](float v) { return v == pixels[0]; });
    }
    const std::vector<int>& mask = *frame.mask;
    // A mask that goes beyond the image is refused by the cube.
    const auto nPixels = static_cast<long long>(image.pixelCount());
    const auto isInside = [nPixels](int i) { return i >= 0 && i < nPixels; };
    return isInside(mask.front()) && std::all_of(mask.begin(), mask.end(), [&](int i) {
               return isInside(i) && pixels[i] == pixels[mask.front()];
           });
}

} // namespace

void ImageFindings::look(const QString& strName, const CILImage& image, const Frame& frame)
{
    if (m_strFirst.isEmpty()) {
        m_strFirst = misfit(strName, image, frame);
    }
    const long long pixels = badPixels(image);
    if (pixels > 0) {
        m_notFinite.append(QStringLiteral("%1 (%2 pixels)").arg(strName, QString::number(pixels)));
    } else if (allEqual(image, frame)) {
        m_constant.append(strName);
    }
}

void ImageFindings::lookAtCube(const QString& strName, const CILImage& image, const Frame& frame)
{
    const float* pixels = image.floats();
    const std::size_t nPixels = image.pixelCount();
    const std::vector<int>& mask = *frame.mask;
    const std::size_t nRows = mask.empty() ? nPixels : mask.size();
    long long cut = 0;
    for (std::size_t row = 0; row < nRows; ++row) {
        const std::size_t place = mask.empty() ? row : static_cast<std::size_t>(mask[row]);
        // A mask that goes beyond the image is refused by the cube.
        const double value = place < nPixels ? static_cast<double>(pixels[place]) : 0.0;
        if (value < 0.0) {
            ++cut;
            m_negatives.cutLight -= value;
        }
    }
    m_negatives.elements += static_cast<long long>(nRows);
    m_negatives.cut += cut;
    if (cut > 0) {
        m_negatives.images.append({strName, cut});
    }
    if (!mask.empty()) {
        m_light.resize(nPixels, 0.0);
        std::transform(m_light.begin(), m_light.end(), pixels, m_light.begin(),
                       [](double dSum, float fValue) { return dSum + static_cast<double>(fValue); });
    }
}

void ImageFindings::cannotBeRead(const QString& strName)
{
    if (m_strFirst.isEmpty()) {
        m_strFirst = QStringLiteral("the image %1 cannot be read").arg(strName);
        m_bUnreadable = true;
    }
}

QString ImageFindings::refusal() const
{
    if (m_strFirst.isEmpty() && !m_notFinite.isEmpty()) {
        return QStringLiteral("these images hold pixels that are NaN or infinite: %1")
            .arg(m_notFinite.join(QStringLiteral(", ")));
    }
    return m_strFirst;
}
