// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/ImageCorrection.h"

#include "platform/orvimage/TiffIo.h"
#include "services/importer/Photograph.h"

namespace {

bool fail(QString* pError, const QString& path, const QString& reason)
{
    *pError = QStringLiteral("%1: %2").arg(path, reason);
    return false;
}

bool load(const QString& path, long w, long h, std::vector<double>& pixels, QString* pError)
{
    const int pages = tiffPageCount(path, pError);
    if (pages < 1) {
        return false;
    }
    if (pages > 1) {
        return fail(pError, path, QStringLiteral("the flat field has %1 pages; one image is needed").arg(pages));
    }
    TiffInfo info;
    CILImage image;
    TiffReadOptions options;
    if (!readTiffHeader(path, 0, &info, pError)) {
        return false;
    }
    if (info.width != w || info.height != h) {
        return fail(pError, path,
                    QStringLiteral("the flat field has %1 x %2 pixels where the images have %3 x %4")
                        .arg(info.width)
                        .arg(info.height)
                        .arg(w)
                        .arg(h));
    }
    // As with the images: stored values where a colour map is only for the screen.
    options.band = info.isColour && info.samplesPerPixel == 1 && info.bitsPerSample >= 8 ? 0 : -1;
    if (!readTiff(path, 0, options, image, pError)) {
        return false;
    }
    if (image.m_lWidth != w || image.m_lHeight != h) {
        return fail(pError, path, QStringLiteral("the file has changed while it was read"));
    }
    if (const long long bad = firstUnusablePixel(image); bad >= 0) {
        return fail(
            pError, path,
            QStringLiteral("the pixel in column %1, row %2 is not finite or too large").arg(bad % w).arg(bad / w));
    }
    pixels.resize(image.pixelCount());
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = image.value(i);
    }
    return true;
}

template <class Pixel>
void correct(Pixel* pixels, std::size_t n, const std::vector<double>& dark, const std::vector<double>& gain)
{
    for (std::size_t i = 0; i < n; ++i) {
        const double value = static_cast<double>(pixels[i]) - (dark.empty() ? 0.0 : dark[i]);
        pixels[i] = static_cast<Pixel>(gain.empty() ? value : value / gain[i]);
    }
}

} // namespace

bool ImageCorrection::loadFlat(const QString& strPath, long w, long h, QString* pError)
{
    std::vector<double> flat;
    if (!load(strPath, w, h, flat, pError)) {
        return false;
    }
    double sum = 0.0;
    for (std::size_t i = 0; i < flat.size(); ++i) {
        if (!(flat[i] > 0.0)) {
            const auto at = static_cast<long long>(i);
            return fail(pError, strPath,
                        QStringLiteral("the flat field is not above 0 in column %1, row %2").arg(at % w).arg(at / w));
        }
        sum += flat[i];
    }
    const double mean = sum / static_cast<double>(flat.size());
    for (double& pixel : flat) {
        pixel /= mean;
    }
    m_gain = std::move(flat);
    return true;
}

bool ImageCorrection::apply(CILImage& image) const
{
    if (m_dark.empty() && m_gain.empty()) {
        return true;
    }
    if (!makeReal(image)) {
        return false;
    }
    if (image.dataType() == ORVTYPE_DOUBLE) {
        correct(image.doubles(), image.pixelCount(), m_dark, m_gain);
    } else {
        correct(image.floats(), image.pixelCount(), m_dark, m_gain);
    }
    return true;
}

bool ImageCorrection::makeReal(CILImage& image)
{
    const bool wide = image.dataType() == ORVTYPE_INT || image.dataType() == ORVTYPE_DOUBLE;
    return image.ChangeType(wide ? ORVTYPE_DOUBLE : ORVTYPE_FLOAT) == EIL_SUCCESS;
}
