// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/Photograph.h"

#include "platform/orvimage/TiffIo.h"
#include "services/importer/ImportMemory.h"
#include "services/importer/PictureFile.h"

#include <QImage>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

// Share of the pixels that stretching gives up at either end, so that a few hot or dead ones do not set the range.
constexpr double clippedShare = 0.005;
// Difference of the shapes (width over height) above which a photograph looks squeezed.
constexpr double shapeTolerance = 0.02;

template <class Pixel>
void addPixels(const Pixel* pixels, std::vector<double>& sums)
{
    for (std::size_t i = 0; i < sums.size(); ++i) {
        sums[i] += static_cast<double>(pixels[i]);
    }
}

void addBand(const CILImage& image, std::size_t nFirst, std::vector<double>& sums)
{
    switch (image.dataType()) {
    case ORVTYPE_BYTE:
        return addPixels(image.bytes() + nFirst, sums);
    case ORVTYPE_USHORT:
        return addPixels(static_cast<const unsigned short*>(image.m_pData) + nFirst, sums);
    case ORVTYPE_INT:
        return addPixels(static_cast<const int*>(image.m_pData) + nFirst, sums);
    case ORVTYPE_FLOAT:
        return addPixels(image.floats() + nFirst, sums);
    case ORVTYPE_DOUBLE:
        return addPixels(image.doubles() + nFirst, sums);
    case ORVTYPE_NONE:
        break;
    }
}

template <class Pixel>
long long firstUnusable(const Pixel* pixels, std::size_t n)
{
    constexpr Pixel largest = static_cast<Pixel>(std::numeric_limits<float>::max());
    for (std::size_t i = 0; i < n; ++i) {
        if (!(std::abs(pixels[i]) <= largest)) { // NaN too, which no comparison lets through
            return static_cast<long long>(i);
        }
    }
    return -1;
}

// Finite numbers as whole numbers of the same order, and back.
constexpr std::uint64_t signBit = std::uint64_t{1} << 63;

std::uint64_t keyOf(double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return (bits & signBit) != 0 ? ~bits : bits | signBit;
}

double valueOf(std::uint64_t key)
{
    const std::uint64_t bits = (key & signBit) != 0 ? key & ~signBit : ~key;
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
}

// Finds the number of a rank among many that are looked at in four passes, without a copy: each pass counts the next
// 16 bits of those that begin as the one sought.
class RankSearch
{
public:
    explicit RankSearch(std::size_t nRank) : m_nRank(nRank) {}

    void look(const std::vector<double>& values)
    {
        for (const double value : values) {
            const std::uint64_t key = keyOf(value);
            if (m_nKnownBits == 0 || key >> (64 - m_nKnownBits) == m_start) {
                ++m_counts[(key >> (48 - m_nKnownBits)) & 0xffffU];
            }
        }
    }
    void endPass()
    {
        std::size_t next = 0;
        while (m_nRank >= m_counts[next]) {
            m_nRank -= m_counts[next++];
        }
        m_start = m_start << 16U | next;
        m_nKnownBits += 16;
        m_counts.assign(m_counts.size(), 0);
    }
    double found() const { return valueOf(m_start); }

private:
    std::size_t m_nRank;
    std::uint64_t m_start = 0; // the first bits of the key
    int m_nKnownBits = 0;
    std::vector<std::size_t> m_counts = std::vector<std::size_t>(65536, 0);
};

std::size_t rankOf(double share, std::size_t nValues)
{
    return static_cast<std::size_t>(std::floor(share * static_cast<double>(nValues - 1) + 0.5));
}

bool isTiffName(const QString& path)
{
    return path.endsWith(QLatin1String(".tif"), Qt::CaseInsensitive) ||
           path.endsWith(QLatin1String(".tiff"), Qt::CaseInsensitive);
}

bool readPicture(const QString& path, CILImage& out, QString* pError)
{
    QImage picture;
    if (!readPictureFile(path, picture, pError)) {
        return false;
    }
    const QImage grey = picture.convertToFormat(QImage::Format_Grayscale8);
    if (grey.isNull() || out.InitWithType(ORVTYPE_BYTE, grey.width(), grey.height()) != EIL_SUCCESS) {
        *pError = QStringLiteral("%1: there is no memory for the photograph").arg(path);
        return false;
    }
    const auto row = static_cast<std::size_t>(grey.width());
    for (int y = 0; y < grey.height(); ++y) {
        std::memcpy(out.bytes() + static_cast<std::size_t>(y) * row, grey.constScanLine(y), row);
    }
    return true;
}

} // namespace

// Calls `visit` with each band of sums and its first pixel. With `bWrite` what it changes is kept.
bool MeanImage::eachBand(bool bWrite, const std::function<void(std::size_t nFirst, std::vector<double>& sums)>& visit)
{
    if (!m_file) {
        visit(0, m_band);
        return true;
    }
    const auto pixels = static_cast<std::size_t>(m_lWidth) * static_cast<std::size_t>(m_lHeight);
    const auto band = static_cast<std::size_t>(std::max(1L, m_lBandPixels / m_lWidth) * m_lWidth);
    for (std::size_t first = 0; first < pixels; first += band) {
        m_band.assign(std::min(band, pixels - first), 0.0);
        const auto bytes = static_cast<qint64>(m_band.size()) * qint64{sizeof(double)};
        const auto place = static_cast<qint64>(first) * qint64{sizeof(double)};
        char* const data = reinterpret_cast<char*>(m_band.data());
        const bool bFirstImage = bWrite && m_nImages == 1; // nothing lies there yet
        if (!m_file->seek(place) || (!bFirstImage && m_file->read(data, bytes) != bytes)) {
            return false;
        }
        visit(first, m_band);
        if (bWrite && (!m_file->seek(place) || m_file->write(data, bytes) != bytes || !m_file->flush())) {
            return false;
        }
    }
    return true;
}

bool MeanImage::add(const CILImage& image, QString* pError)
{
    if (m_nImages++ == 0) {
        m_lWidth = image.m_lWidth;
        m_lHeight = image.m_lHeight;
        if (m_lHeight <= std::max(1L, m_lBandPixels / m_lWidth)) {
            m_band.assign(image.pixelCount(), 0.0);
        } else {
            m_file = std::make_unique<QTemporaryFile>(m_strFolder + QStringLiteral("/.mean-XXXXXX"));
        }
    }
    const bool bOpen = !m_file || m_file->isOpen() || m_file->open();
    if (!bOpen ||
        !eachBand(true, [&image](std::size_t nFirst, std::vector<double>& sums) { addBand(image, nFirst, sums); })) {
        *pError = QStringLiteral("%1: the mean image: %2").arg(m_strFolder, m_file->errorString());
        return false;
    }
    return true;
}

// The sums that become 0 and 255.
bool MeanImage::ends(double* pLow, double* pHigh)
{
    const auto pixels = static_cast<std::size_t>(m_lWidth) * static_cast<std::size_t>(m_lHeight);
    RankSearch low(rankOf(clippedShare, pixels));
    RankSearch high(rankOf(1.0 - clippedShare, pixels));
    constexpr int passes = 4;
    for (int pass = 0; pass < passes; ++pass) {
        if (!eachBand(false, [&](std::size_t, std::vector<double>& sums) {
                low.look(sums);
                high.look(sums);
            })) {
            return false;
        }
        low.endPass();
        high.endPass();
    }
    *pLow = low.found();
    *pHigh = high.found();
    if (*pHigh > *pLow) {
        return true;
    }
    // Almost all alike: what differs is all there is to see.
    return eachBand(false, [&](std::size_t, std::vector<double>& sums) {
        const auto range = std::minmax_element(sums.begin(), sums.end());
        *pLow = std::min(*pLow, *range.first);
        *pHigh = std::max(*pHigh, *range.second);
    });
}

bool MeanImage::stretched(CILImage& out)
{
    double low = 0.0;
    double high = 0.0;
    if (m_nImages == 0 || out.InitWithType(ORVTYPE_BYTE, m_lWidth, m_lHeight) != EIL_SUCCESS || !ends(&low, &high)) {
        return false;
    }
    constexpr double brightest = 255.0;
    constexpr double middle = 128.0;
    return eachBand(false, [&](std::size_t nFirst, std::vector<double>& sums) {
        for (std::size_t i = 0; i < sums.size(); ++i) {
            const double stretchedValue = high > low ? (sums[i] - low) / (high - low) * brightest : middle;
            out.bytes()[nFirst + i] =
                static_cast<unsigned char>(std::lround(std::clamp(stretchedValue, 0.0, brightest)));
        }
    });
}

qint64 photographMemory(const QString& strPath)
{
    if (isTiffName(strPath)) {
        TiffInfo info;
        const bool bRead = readTiffHeader(strPath, 0, &info, nullptr) && info.type != ORVTYPE_NONE;
        return bRead ? tiffMemory(info) : 0;
    }
    return pictureFileMemory(strPath);
}

bool loadPhotograph(const QString& strPath, long w, long h, CILImage& out, QStringList* pWarnings, QString* pError)
{
    out.clear();
    const bool bRead = isTiffName(strPath) ? readTiff(strPath, 0, out, pError) : readPicture(strPath, out, pError);
    if (!bRead) {
        out.clear();
        return false;
    }
    if (firstUnusablePixel(out) >= 0) {
        *pError = QStringLiteral("%1: the photograph has pixels that are not finite").arg(strPath);
        out.clear();
        return false;
    }
    const double shape = static_cast<double>(out.m_lWidth) / static_cast<double>(out.m_lHeight);
    const double asked = static_cast<double>(w) / static_cast<double>(h);
    if (std::abs(shape / asked - 1.0) > shapeTolerance) {
        pWarnings->append(QStringLiteral("%1 has %2 x %3 pixels and is squeezed into the shape of the images, %4 x %5")
                              .arg(strPath, QString::number(out.m_lWidth), QString::number(out.m_lHeight),
                                   QString::number(w), QString::number(h)));
    }
    if ((out.m_lWidth != w || out.m_lHeight != h) &&
        out.upSample(static_cast<int>(w), static_cast<int>(h), IL_RESAMPLE_SMOOTH) != EIL_SUCCESS) {
        *pError = QStringLiteral("%1: the photograph cannot be fitted to the images").arg(strPath);
        out.clear();
        return false;
    }
    out.m_fBinning = 1.0F;
    return true;
}

bool padToSquare(CILImage& image)
{
    const long side = std::max(image.m_lWidth, image.m_lHeight);
    if (image.m_lWidth == side && image.m_lHeight == side) {
        return true;
    }
    CILImage square;
    if (square.InitWithType(image.dataType(), side, side) != EIL_SUCCESS) {
        return false;
    }
    const std::size_t pixel = CILImageBase::bytesPerPixel(image.dataType());
    const std::size_t from = static_cast<std::size_t>(image.m_lWidth) * pixel;
    const std::size_t to = static_cast<std::size_t>(side) * pixel;
    for (std::size_t y = 0; y < static_cast<std::size_t>(image.m_lHeight); ++y) {
        std::memcpy(static_cast<char*>(square.m_pData) + y * to, static_cast<const char*>(image.m_pData) + y * from,
                    from);
    }
    square.m_fBinning = image.m_fBinning;
    image = std::move(square);
    return true;
}

long long firstUnusablePixel(const CILImage& image)
{
    if (image.dataType() == ORVTYPE_FLOAT) {
        return firstUnusable(image.floats(), image.pixelCount());
    }
    if (image.dataType() == ORVTYPE_DOUBLE) {
        return firstUnusable(image.doubles(), image.pixelCount());
    }
    return -1;
}
