// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/CImageCube.h"

#include "XTNT/row_product.h"
#include "XTNT/xtnt_exception.h"
#include "XTNT/xtnt_lanes.h"
#include "XTNT/xtnt_pages.h"
#include "XTNT/xtnt_parallel.h"
#include "host/CILImage.h"
#include "host/CSLComposite.h"

#include <QRgb>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace {

constexpr int colourChannels = 3;
constexpr int brightest = 255;

// Rows of the matrix that a thread stores at a time: with some tens of columns they stay in the first caches while one
// column after the other is written.
constexpr long long storeGrain = 256;

// Rows of which extremes are taken while a column is read from them.
constexpr long long showGrain = 1024;
// Numbers or pixels that a thread takes at a time.
constexpr long long grain = 16384;

// Grey level of a fraction of the range; what is not a number (a constant cube) is black.
int greyLevel(double fraction)
{
    const double level = fraction * brightest;
    return level > 0.0 ? static_cast<int>(std::min<double>(level, brightest)) : 0;
}

// The logarithmic level of a value of a channel, 0 to 1. The largest value is the brightest, whatever the rounding of
// the logarithms. The fusion is written out, because the level is truncated.
int plainColourLevel(double value)
{
    if (value >= 1.0) {
        return brightest;
    }
    return greyLevel(std::log10(std::fma(value, 10.0, 1.0)) / std::log10(11.0));
}

// plainColourLevel() by table: where all values of a bin, and a margin on either side for the rounding, have one level,
// that is the level; else the logarithm tells.
class ColourLevels
{
public:
    ColourLevels()
    {
        constexpr double margin = 1e-12;
        for (int bin = 0; bin < bins; ++bin) {
            const int lower = plainColourLevel(static_cast<double>(bin) / bins * (1.0 - margin));
            const int upper = plainColourLevel(static_cast<double>(bin + 1) / bins * (1.0 + margin));
            m_levels[static_cast<std::size_t>(bin)] = static_cast<short>(lower == upper ? lower : -1);
        }
    }

    int operator()(double value) const
    {
        if (!(value > 0.0 && value < 1.0)) {
            return value >= 1.0 ? brightest : 0;
        }
        const int level = m_levels[static_cast<std::size_t>(value * bins)];
        return level >= 0 ? level : plainColourLevel(value);
    }

private:
    static constexpr int bins = 16384;
    std::array<short, bins> m_levels;
};

struct Extremes
{
    double lowest = std::numeric_limits<double>::infinity();
    double highest = -std::numeric_limits<double>::infinity();
};

// Of a stretch; NaNs do not count. Several running extremes side by side, so that none waits for the one before.
Extremes extremesOf(const double* values, long long count)
{
    constexpr int running = 4;
    const Extremes none;
    XTNT::Lanes lowest[running];
    XTNT::Lanes highest[running];
    std::fill_n(lowest, running, XTNT::Lanes{none.lowest, none.lowest, none.lowest, none.lowest});
    std::fill_n(highest, running, XTNT::Lanes{none.highest, none.highest, none.highest, none.highest});
    long long i = 0;
    for (; i + running * XTNT::lanes <= count; i += running * XTNT::lanes) {
        for (int r = 0; r < running; ++r) {
            const XTNT::Lanes v = XTNT::lanesAt(values + i + r * XTNT::lanes);
            lowest[r] = v < lowest[r] ? v : lowest[r];
            highest[r] = v > highest[r] ? v : highest[r];
        }
    }
    Extremes all;
    const auto take = [&all](double low, double high) {
        all.lowest = low < all.lowest ? low : all.lowest;
        all.highest = high > all.highest ? high : all.highest;
    };
    for (; i < count; ++i) {
        take(values[i], values[i]);
    }
    for (int r = 0; r < running; ++r) {
        for (int lane = 0; lane < XTNT::lanes; ++lane) {
            take(lowest[r][lane], highest[r][lane]);
        }
    }
    return all;
}

// Those of all chunks of values of which the first is `first`. As XTNT::Vector has it, a NaN that comes first stays.
Extremes together(const std::vector<Extremes>& chunks, double first)
{
    if (std::isnan(first)) {
        return {first, first};
    }
    Extremes all;
    for (const Extremes& chunk : chunks) {
        all.lowest = std::min(all.lowest, chunk.lowest);
        all.highest = std::max(all.highest, chunk.highest);
    }
    return all;
}

std::size_t chunksOf(long long count, long long size)
{
    return static_cast<std::size_t>((count + size - 1) / size);
}

double largestOf(const XTNT::Vector<double>& values)
{
    if (values.n_ < 1) {
        return 0.0;
    }
    std::vector<Extremes> chunks(chunksOf(values.n_, grain));
    XTNT::parallelChunks(values.n_, grain, [&](long long begin, long long end) {
        chunks[static_cast<std::size_t>(begin / grain)] = extremesOf(values.data + begin, end - begin);
    });
    return together(chunks, values.data[0]).highest;
}

void divideBy(XTNT::Vector<double>& values, double divisor)
{
    XTNT::parallelChunks(values.n_, grain, [&](long long begin, long long end) {
        for (long long i = begin; i < end; ++i) {
            values.data[i] /= divisor;
        }
    });
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
    CILImage mean;
    if (mean.InitWithType(ORVTYPE_DOUBLE, nWidth, nHeight) != EIL_SUCCESS) {
        throw std::bad_alloc();
    }
    double* const brightness = mean.doubles();
    XTNT::parallelChunks(rgb.M, grain, [&](long long begin, long long end) {
        for (long long i = begin; i < end; ++i) {
            const double* pixel = rgb[i];
            brightness[i] = (pixel[0] + pixel[1] + pixel[2]) / colourChannels;
        }
    });
    const double threshold = static_cast<double>(CSLComposite::AutomaticThresholdBimodal(&mean));
    XTNT::Vector<double>& values = rgb.storage;
    XTNT::parallelChunks(values.n_, grain, [&](long long begin, long long end) {
        for (long long i = begin; i < end; ++i) {
            const double above = values.data[i] - threshold;
            values.data[i] = values.data[i] >= threshold ? above : 0.0;
        }
    });
    divideBy(values, largestOf(values));
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

bool CImageCube::isLastAtItsPlace(long long j) const
{
    const auto next = static_cast<std::size_t>(j) + 1;
    return !m_bHasMask || next >= m_maskIndices.size() || m_maskIndices[next] != m_maskIndices[next - 1];
}

QImage CImageCube::blackPicture() const
{
    QImage picture(m_nWidth, m_nHeight, QImage::Format_RGB32);
    if (picture.isNull()) {
        throw std::bad_alloc();
    }
    if (m_bHasMask) {
        picture.fill(0);
    }
    return picture;
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
    const bool bFits = m_data.num_cols() == weights.num_rows() && !weights.empty();
    const XTNT::Matrix<double> allSpots = bFits ? XTNT::multiplyRows(m_data, weights) : m_data * weights;
    const long long nPixels = pixelsPerSpot();
    if (allSpots.empty() || allSpots.num_cols() != colourChannels || allSpots.num_rows() != m_nSpots * nPixels) {
        throw XTNT::M_Exception("size mismatch");
    }
    XTNT::Matrix<double> rgb = meanOverSpots(allSpots, m_nSpots, nPixels);
    divideBy(rgb.storage, largestOf(rgb.storage));
    if (!m_bHasMask) {
        cutBackground(rgb, m_nWidth, m_nHeight);
    }

    static const ColourLevels colourLevel;
    QImage picture = blackPicture();
    auto* const to = reinterpret_cast<QRgb*>(picture.bits()); // lines of 32 bit pixels have no padding
    XTNT::parallelChunks(nPixels, grain, [&](long long begin, long long end) {
        for (long long j = begin; j < end; ++j) {
            const double* const value = rgb[j];
            if (isLastAtItsPlace(j)) {
                to[pixelOfRow(j)] = qRgb(colourLevel(value[0]), colourLevel(value[1]), colourLevel(value[2]));
            }
        }
    });
    m_rgbImage = picture;
    return true;
}

QImage CImageCube::image(int nImage)
{
    if (nImage < 0 || nImage >= m_nImages || m_data.empty()) {
        return QImage();
    }
    const long long nPixels = pixelsPerSpot();
    const std::unique_ptr<double[]> means(new double[static_cast<std::size_t>(nPixels)]);
    std::vector<Extremes> chunks(chunksOf(nPixels, showGrain));
    XTNT::parallelChunks(nPixels, showGrain, [&](long long begin, long long end) {
        Extremes& extremes = chunks[static_cast<std::size_t>(begin / showGrain)];
        std::fill(means.get() + begin, means.get() + end, 0.0);
        for (int s = 0; s < m_nSpots; ++s) {
            const double* const block = m_data.storage.data + (s * nPixels + begin) * m_data.N;
            const Extremes ofSpot = extremesOf(block, (end - begin) * m_data.N);
            extremes = {std::min(extremes.lowest, ofSpot.lowest), std::max(extremes.highest, ofSpot.highest)};
            for (long long j = begin; j < end; ++j) {
                means[static_cast<std::size_t>(j)] += block[(j - begin) * m_data.N + nImage];
            }
        }
    });
    const Extremes all = together(chunks, m_data.storage.data[0]);
    m_dShowMax = all.highest * m_dMaxScale;
    m_dShowMin = all.lowest;

    QImage picture = blackPicture();
    auto* const to = reinterpret_cast<QRgb*>(picture.bits()); // lines of 32 bit pixels have no padding
    const double dSpots = m_nSpots;
    const double dLowest = m_dShowMin;
    const double dWidth = m_dShowMax - m_dShowMin;
    XTNT::parallelChunks(nPixels, grain, [&](long long begin, long long end) {
        for (long long j = begin; j < end; ++j) {
            const int nGrey = greyLevel((means[static_cast<std::size_t>(j)] / dSpots - dLowest) / dWidth);
            if (isLastAtItsPlace(j)) {
                to[pixelOfRow(j)] = qRgb(nGrey, nGrey, nGrey);
            }
        }
    });
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
