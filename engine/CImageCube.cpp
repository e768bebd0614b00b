// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/CImageCube.h"

#include "XTNT/xtnt_exception.h"
#include "XTNT/xtnt_pages.h"
#include "XTNT/xtnt_parallel.h"
#include "host/CILImage.h"
#include "host/CSLComposite.h"

#include <QRgb>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <new>
#include <utility>

namespace {

constexpr int colourChannels = 3;
constexpr int brightest = 255;

// Rows of the matrix that a thread stores at a time: with some tens of columns they stay in the first caches while one
// column after the other is written.
constexpr long long storeGrain = 256;

// Grey level of a fraction of the range; what is not a number (a constant cube) is black.
int greyLevel(double fraction)
{
    const double level = fraction * brightest;
    return level > 0.0 ? static_cast<int>(std::min<double>(level, brightest)) : 0;
}

// The largest value is the brightest, whatever the rounding of the logarithms.
int colourLevel(double value)
{
    if (value >= 1.0) {
        return brightest;
    }
    return greyLevel(std::log10(value * 10.0 + 1.0) / std::log10(11.0));
}

void divideBy(XTNT::Vector<double>& values, double divisor)
{
    for (long long i = 0; i < values.n_; ++i) {
        values.data[i] /= divisor;
    }
}

// The mean of the blocks of a matrix with nSpots blocks of nPixels rows.
XTNT::Matrix<double> meanOverSpots(const XTNT::Matrix<double>& blocks, int nSpots, long long nPixels)
{
    if (nSpots == 1) {
        return blocks;
    }
    XTNT::Matrix<double> mean(nPixels, blocks.N);
    for (long long i = 0; i < mean.storage.n_; ++i) {
        double total = 0.0;
        for (int s = 0; s < nSpots; ++s) {
            total += blocks.storage.data[s * mean.storage.n_ + i];
        }
        mean.storage.data[i] = total / nSpots;
    }
    return mean;
}

// Takes the background off a colour picture: values below the threshold of the channels' mean become 0, others lose it.
void cutBackground(XTNT::Matrix<double>& rgb, int nWidth, int nHeight)
{
    std::vector<double> brightness(static_cast<std::size_t>(rgb.M));
    for (long long i = 0; i < rgb.M; ++i) {
        const double* pixel = rgb[i];
        brightness[static_cast<std::size_t>(i)] = (pixel[0] + pixel[1] + pixel[2]) / colourChannels;
    }
    CILImage mean;
    if (mean.initWithData(ORVTYPE_DOUBLE, nWidth, nHeight, brightness.data()) != EIL_SUCCESS) {
        throw std::bad_alloc();
    }
    const double threshold = static_cast<double>(CSLComposite::AutomaticThresholdBimodal(&mean));
    XTNT::Vector<double>& values = rgb.storage;
    for (long long i = 0; i < values.n_; ++i) {
        values.data[i] = values.data[i] >= threshold ? values.data[i] - threshold : 0.0;
    }
    divideBy(values, values.Max());
}

} // namespace

bool CImageCube::init(int nWidth, int nHeight, int nSpots, int nImages, std::vector<int> mask)
{
    m_bValid = false;
    m_nWidth = nWidth;
    m_nHeight = nHeight;
    m_nSpots = nSpots;
    m_nImages = nImages;
    m_bHasMask = !mask.empty();
    m_maskIndices = std::move(mask);
    std::sort(m_maskIndices.begin(), m_maskIndices.end());
    const long long nPixels = static_cast<long long>(nWidth) * nHeight;
    if (m_bHasMask && (m_maskIndices.back() >= nPixels || m_maskIndices.front() < 0 ||
                       static_cast<long long>(m_maskIndices.size()) > nPixels)) {
        clear();
        return false;
    }
    m_data.reshape(nSpots * pixelsPerSpot(), nImages);
    XTNT::preferLargePages(m_data);
    m_bValid = true;
    return true;
}

void CImageCube::clear()
{
    m_nWidth = 0;
    m_nHeight = 0;
    m_nSpots = 0;
    m_nImages = 0;
    m_bHasMask = false;
    std::vector<int>().swap(m_maskIndices);
    m_data.reshape(0, 0);
    m_bValid = false;
}

long long CImageCube::pixelsPerSpot() const
{
    return m_bHasMask ? static_cast<long long>(m_maskIndices.size()) : static_cast<long long>(m_nWidth) * m_nHeight;
}

long long CImageCube::pixelOfRow(long long j) const
{
    return m_bHasMask ? m_maskIndices[static_cast<std::size_t>(j)] : j;
}

bool CImageCube::setImage(int nSpot, int nImage, const float* pPixels, std::size_t nLength)
{
    return setImages(nSpot, nImage, {pPixels}, nLength);
}

bool CImageCube::setImage(int nSpot, int nImage, const std::vector<float>& pixels)
{
    return setImage(nSpot, nImage, pixels.data(), pixels.size());
}

bool CImageCube::setImages(int nSpot, int nFirst, const std::vector<const float*>& images, std::size_t nLength)
{
    const int nCount = static_cast<int>(images.size());
    if (nSpot < 0 || nSpot >= m_nSpots || nFirst < 0 || nFirst + nCount > m_nImages ||
        nLength != static_cast<std::size_t>(m_nWidth) * static_cast<std::size_t>(m_nHeight)) {
        return false;
    }
    const long long nPixels = pixelsPerSpot();
    const long long nStride = m_nImages;
    double* const pFirst = m_data.storage.data + nSpot * nPixels * nStride + nFirst;
    const int* const pMask = m_bHasMask ? m_maskIndices.data() : nullptr;
    XTNT::parallelChunks(nPixels, storeGrain, [&](long long begin, long long end) {
        for (int i = 0; i < nCount; ++i) {
            const float* const pPixels = images[static_cast<std::size_t>(i)];
            double* to = pFirst + begin * nStride + i;
            for (long long j = begin; j < end; ++j, to += nStride) {
                const float value = pPixels[pMask != nullptr ? pMask[j] : j];
                *to = value < 0.0F ? 0.0 : static_cast<double>(value);
            }
        }
    });
    return true;
}

bool CImageCube::buildRGBImage(const XTNT::Matrix<double>& weights)
{
    if (weights.num_rows() != m_nImages) {
        return false;
    }
    const XTNT::Matrix<double> allSpots = m_data * weights;
    const long long nPixels = pixelsPerSpot();
    if (allSpots.empty() || allSpots.num_cols() != colourChannels || allSpots.num_rows() != m_nSpots * nPixels) {
        throw XTNT::M_Exception("size mismatch");
    }
    XTNT::Matrix<double> rgb = meanOverSpots(allSpots, m_nSpots, nPixels);
    divideBy(rgb.storage, rgb.storage.Max());
    if (!m_bHasMask) {
        cutBackground(rgb, m_nWidth, m_nHeight);
    }

    QImage picture(m_nWidth, m_nHeight, QImage::Format_RGB32);
    picture.fill(0);
    for (long long j = 0; j < nPixels; ++j) {
        const long long nPixel = pixelOfRow(j);
        QRgb* const pLine = reinterpret_cast<QRgb*>(picture.scanLine(static_cast<int>(nPixel / m_nWidth)));
        const double* const value = rgb[j];
        pLine[nPixel % m_nWidth] = qRgb(colourLevel(value[0]), colourLevel(value[1]), colourLevel(value[2]));
    }
    m_rgbImage = picture;
    return true;
}

QImage CImageCube::image(int nImage)
{
    if (nImage < 0 || nImage >= m_nImages || m_data.empty()) {
        return QImage();
    }
    m_dShowMax = m_data.storage.Max() * m_dMaxScale;
    m_dShowMin = m_data.storage.Min();
    QImage picture(m_nWidth, m_nHeight, QImage::Format_RGB32);
    picture.fill(0);
    const long long nPixels = pixelsPerSpot();
    for (long long j = 0; j < nPixels; ++j) {
        double total = 0.0;
        for (int s = 0; s < m_nSpots; ++s) {
            total += m_data[s * nPixels + j][nImage];
        }
        const int nGrey = greyLevel((total / m_nSpots - m_dShowMin) / (m_dShowMax - m_dShowMin));
        const long long nPixel = pixelOfRow(j);
        QRgb* const pLine = reinterpret_cast<QRgb*>(picture.scanLine(static_cast<int>(nPixel / m_nWidth)));
        pLine[nPixel % m_nWidth] = qRgb(nGrey, nGrey, nGrey);
    }
    return picture;
}

XTNT::Vector<double> CImageCube::spectrum(std::vector<int> pixels, bool* pOk) const
{
    std::vector<long long> rows;
    bool bOk = true;
    if (m_bHasMask) {
        std::sort(pixels.begin(), pixels.end());
        pixels.erase(std::unique(pixels.begin(), pixels.end()), pixels.end());
        for (const int nPixel : pixels) {
            const auto found = std::lower_bound(m_maskIndices.begin(), m_maskIndices.end(), nPixel);
            if (found != m_maskIndices.end() && *found == nPixel) {
                rows.push_back(std::distance(m_maskIndices.begin(), found));
            }
        }
    } else {
        const long long nPixels = pixelsPerSpot();
        bOk = std::all_of(pixels.begin(), pixels.end(), [nPixels](int p) { return p >= 0 && p < nPixels; });
        if (bOk) {
            rows.assign(pixels.begin(), pixels.end());
        }
    }

    XTNT::Vector<double> mean(m_data.N);
    for (const long long nRow : rows) {
        const double* const row = m_data[nRow];
        for (long long i = 0; i < mean.n_; ++i) {
            mean.data[i] += row[i];
        }
    }
    if (rows.size() > 1) {
        divideBy(mean, static_cast<double>(rows.size()));
    }
    if (pOk != nullptr) {
        *pOk = bOk;
    }
    return mean;
}

void CImageCube::applyDecayFactors(const XTNT::Matrix<double>& raw, const QVector<double>& factors, bool bApply)
{
    if (raw.M != m_data.M || raw.N != m_data.N || (bApply && factors.size() < m_data.N)) {
        return;
    }
    for (long long i = 0; i < m_data.M; ++i) {
        const double* const from = raw[i];
        double* const to = m_data[i];
        for (long long j = 0; j < m_data.N; ++j) {
            to[j] = bApply ? from[j] * factors.at(static_cast<int>(j)) : from[j];
        }
    }
}
