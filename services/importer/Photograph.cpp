// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/Photograph.h"

#include "platform/orvimage/TiffIo.h"
#include "platform/orvutils/InputFile.h"

#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

// Share of the pixels that stretching gives up at either end, so that a few hot or dead ones do not set the range.
constexpr double clippedShare = 0.005;
// Difference of the shapes (width over height) above which a photograph looks squeezed.
constexpr double shapeTolerance = 0.02;

// No format packs photographs better than deflate packs zeros (1032 to 1); twice that is allowed, and a picture of some
// size besides.
constexpr qint64 maxCompression = 2064;
constexpr qint64 allowedPixels = 1 << 20;

template <class Pixel>
void addPixels(const Pixel* pixels, std::vector<double>& sum)
{
    for (std::size_t i = 0; i < sum.size(); ++i) {
        sum[i] += static_cast<double>(pixels[i]);
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

// Of a copy, as the element is found by partial sorting.
double quantile(std::vector<double> values, double share)
{
    const auto at = static_cast<std::ptrdiff_t>(std::floor(share * static_cast<double>(values.size() - 1) + 0.5));
    std::nth_element(values.begin(), values.begin() + at, values.end());
    return values[static_cast<std::size_t>(at)];
}

bool isTiffName(const QString& path)
{
    return path.endsWith(QLatin1String(".tif"), Qt::CaseInsensitive) ||
           path.endsWith(QLatin1String(".tiff"), Qt::CaseInsensitive);
}

// A header of a few bytes can claim any size, and some formats fill in what the file lacks.
bool isCutShort(QFile& file, const QByteArray& format, const QSize& size)
{
    const qint64 place = file.pos();
    bool cut = false;
    if (format == "jpeg") {
        // Behind the last scan stands the end mark; in the scan's data its bytes cannot occur.
        constexpr qint64 tailBytes = 65536;
        file.seek(std::max<qint64>(0, file.size() - tailBytes));
        const QByteArray tail = file.read(tailBytes);
        cut = tail.lastIndexOf("\xff\xd9") <= tail.lastIndexOf("\xff\xda");
    } else if (format == "bmp") {
        constexpr int headerBytes = 34;
        file.seek(0);
        const QByteArray header = file.read(headerBytes);
        const auto word = [&header](int at) { return qFromLittleEndian<quint32>(header.constData() + at); };
        const bool bPlain = header.size() == headerBytes && (word(30) == 0 || word(30) == 3); // else in runs
        const qint64 bits = bPlain ? qFromLittleEndian<quint16>(header.constData() + 28) : 0;
        const qint64 row = (size.width() * bits + 31) / 32 * 4;
        cut = bPlain && word(10) + row * std::abs(size.height()) > file.size();
    }
    file.seek(place);
    return cut;
}

bool readPicture(const QString& path, CILImage& out, QString* pError)
{
    const auto fail = [&](const QString& reason) {
        *pError = QStringLiteral("%1: %2").arg(path, reason);
        return false;
    };
    QFile file(path);
    QString reason;
    if (!orv::openInput(file, &reason)) {
        return fail(reason);
    }
    if (file.size() == 0) {
        return fail(QStringLiteral("the file is empty"));
    }
    QImageReader reader(&file);
    reader.setAutoTransform(true);
    const QByteArray format = reader.format();
    if (format.isEmpty() || format.startsWith("svg")) { // a drawing has no size of its own
        return fail(QStringLiteral("this is no picture of a known format"));
    }
    const QSize size = reader.size();
    const qint64 pixels = static_cast<qint64>(size.width()) * size.height();
    if (size.isValid() && pixels > file.size() * maxCompression + allowedPixels) {
        return fail(QStringLiteral("the header claims %1 x %2 pixels, more than a file of %3 bytes can hold")
                        .arg(size.width())
                        .arg(size.height())
                        .arg(file.size()));
    }
    const bool bCut = size.isValid() && isCutShort(file, format, size);
    const QImage grey = bCut ? QImage() : reader.read().convertToFormat(QImage::Format_Grayscale8);
    if (grey.isNull()) {
        return fail(bCut ? QStringLiteral("the picture is broken or cut short")
                         : QStringLiteral("the picture is broken or cut short (%1)").arg(reader.errorString()));
    }
    if (out.InitWithType(ORVTYPE_BYTE, grey.width(), grey.height()) != EIL_SUCCESS) {
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

void MeanImage::add(const CILImage& image)
{
    if (m_nImages == 0) {
        m_lWidth = image.m_lWidth;
        m_lHeight = image.m_lHeight;
        m_sum.assign(image.pixelCount(), 0.0);
    }
    ++m_nImages;
    switch (image.dataType()) {
    case ORVTYPE_BYTE:
        return addPixels(image.bytes(), m_sum);
    case ORVTYPE_USHORT:
        return addPixels(static_cast<const unsigned short*>(image.m_pData), m_sum);
    case ORVTYPE_INT:
        return addPixels(static_cast<const int*>(image.m_pData), m_sum);
    case ORVTYPE_FLOAT:
        return addPixels(image.floats(), m_sum);
    case ORVTYPE_DOUBLE:
        return addPixels(image.doubles(), m_sum);
    case ORVTYPE_NONE:
        break;
    }
}

bool MeanImage::stretched(CILImage& out) const
{
    if (m_sum.empty() || out.InitWithType(ORVTYPE_BYTE, m_lWidth, m_lHeight) != EIL_SUCCESS) {
        return false;
    }
    double low = quantile(m_sum, clippedShare);
    double high = quantile(m_sum, 1.0 - clippedShare);
    if (!(high > low)) { // almost all alike: what differs is all there is to see
        const auto range = std::minmax_element(m_sum.begin(), m_sum.end());
        low = *range.first;
        high = *range.second;
    }
    constexpr double brightest = 255.0;
    constexpr double middle = 128.0;
    for (std::size_t i = 0; i < m_sum.size(); ++i) {
        const double stretchedValue = high > low ? (m_sum[i] - low) / (high - low) * brightest : middle;
        out.bytes()[i] = static_cast<unsigned char>(std::lround(std::clamp(stretchedValue, 0.0, brightest)));
    }
    return true;
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
                              .arg(strPath)
                              .arg(out.m_lWidth)
                              .arg(out.m_lHeight)
                              .arg(w)
                              .arg(h));
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
