// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/ColourPlanes.h"

#include "platform/orvimage/TiffPageReader.h"
#include "services/importer/PictureFile.h"

#include <QColor>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int planeCount = 3;
// Shares of the light's energy: what JPEG leaves in a colour that should be dark, and beside a line of one hue.
constexpr double darkShare = 0.01;
constexpr double strayShare = 0.02;
// Part of the brightest that grey samples may differ by; JPEG rounds each by itself.
constexpr double greyDifference = 2.5 / 255.0;

// Sums over all pixels of the products of two planes.
using Products = std::array<std::array<double, planeCount>, planeCount>;

Products productsOf(const std::array<CILImage, 3>& planes)
{
    Products sums{};
    for (std::size_t i = 0; i < planes[0].pixelCount(); ++i) {
        const std::array<double, planeCount> p{planes[0].value(i), planes[1].value(i), planes[2].value(i)};
        for (std::size_t a = 0; a < planeCount; ++a) {
            for (std::size_t b = 0; b <= a; ++b) {
                sums[a][b] += p[a] * p[b];
            }
        }
    }
    return sums;
}

// Energy in the direction that holds most of it: the largest eigenvalue, by power iteration.
double largestPart(const Products& lower)
{
    const auto at = [&lower](std::size_t a, std::size_t b) { return a >= b ? lower[a][b] : lower[b][a]; };
    std::array<double, planeCount> v{1.0, 1.0, 1.0};
    double value = 0.0;
    constexpr int steps = 100;
    for (int step = 0; step < steps; ++step) {
        std::array<double, planeCount> next{};
        for (std::size_t a = 0; a < planeCount; ++a) {
            for (std::size_t b = 0; b < planeCount; ++b) {
                next[a] += at(a, b) * v[b];
            }
        }
        value = std::sqrt(next[0] * next[0] + next[1] * next[1] + next[2] * next[2]);
        if (!(value > 0.0)) {
            return 0.0;
        }
        for (std::size_t a = 0; a < planeCount; ++a) {
            v[a] = next[a] / value;
        }
    }
    return value;
}

bool areAlike(const std::array<CILImage, 3>& planes)
{
    double brightest = 0.0;
    double difference = 0.0;
    for (std::size_t i = 0; i < planes[0].pixelCount(); ++i) {
        const double r = planes[0].value(i);
        const double g = planes[1].value(i);
        const double b = planes[2].value(i);
        brightest = std::max({brightest, r, g, b});
        difference = std::max(difference, std::max({r, g, b}) - std::min({r, g, b}));
    }
    return difference <= greyDifference * brightest;
}

} // namespace

ColourPlanes::Kind ColourPlanes::kind() const
{
    if (areAlike(planes)) {
        return Kind::Grey;
    }
    const Products sums = productsOf(planes);
    const double most = std::max({sums[0][0], sums[1][1], sums[2][2]});
    const double least = std::min({sums[0][0], sums[1][1], sums[2][2]});
    const double all = sums[0][0] + sums[1][1] + sums[2][2];
    return least <= darkShare * most && all - largestPart(sums) <= strayShare * all ? Kind::OneHue : Kind::Colours;
}

int ColourPlanes::strongest() const
{
    const Products sums = productsOf(planes);
    int best = 1; // where two are alike, as in cyan, it does not matter which
    for (const int plane : {0, 2}) {
        const auto p = static_cast<std::size_t>(plane);
        const auto b = static_cast<std::size_t>(best);
        best = sums[p][p] > sums[b][b] ? plane : best;
    }
    return best;
}

CILImage ColourPlanes::luma()
{
    for (std::size_t i = 0; i < planes[0].pixelCount(); ++i) {
        // Thousandths are exact, so that alike samples give their own value.
        planes[0].setValue(
            i, std::round((299.0 * planes[0].value(i) + 587.0 * planes[1].value(i) + 114.0 * planes[2].value(i)) /
                          1000.0));
    }
    return std::move(planes[0]);
}

QString ColourPlanes::name(int nPlane)
{
    return nPlane == 0 ? QStringLiteral("red") : nPlane == 1 ? QStringLiteral("green") : QStringLiteral("blue");
}

bool ColourPlanes::readPicture(const QString& strPath, ColourPlanes& out, QString* pError)
{
    QImage picture;
    PictureHeader header;
    if (!readPictureHeader(strPath, &header, pError) || !readPictureFile(strPath, picture, pError)) {
        return false;
    }
    picture = picture.convertToFormat(header.isDeep ? QImage::Format_RGBX64 : QImage::Format_RGB32);
    for (CILImage& plane : out.planes) {
        if (picture.isNull() || plane.InitWithType(header.isDeep ? ORVTYPE_USHORT : ORVTYPE_BYTE, picture.width(),
                                                   picture.height()) != EIL_SUCCESS) {
            *pError = QStringLiteral("%1: there is no memory for the picture").arg(strPath);
            return false;
        }
    }
    std::size_t at = 0;
    for (int y = 0; y < picture.height(); ++y) {
        const auto* deep = reinterpret_cast<const QRgba64*>(picture.constScanLine(y));
        const auto* flat = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        for (int x = 0; x < picture.width(); ++x, ++at) {
            out.planes[0].setValue(at, header.isDeep ? deep[x].red() : qRed(flat[x]));
            out.planes[1].setValue(at, header.isDeep ? deep[x].green() : qGreen(flat[x]));
            out.planes[2].setValue(at, header.isDeep ? deep[x].blue() : qBlue(flat[x]));
        }
    }
    return true;
}

bool ColourPlanes::readTiffPage(TiffPageReader& reader, const QString& strPath, int nPage, ColourPlanes& out,
                                QString* pError)
{
    for (int plane = 0; plane < planeCount; ++plane) {
        TiffReadOptions options;
        options.band = plane;
        if (!reader.read(strPath, nPage, options, out.planes[static_cast<std::size_t>(plane)], pError)) {
            return false;
        }
    }
    return true;
}
