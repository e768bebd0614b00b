// SPDX-License-Identifier: GPL-3.0-or-later
// How an image is shown.
#include "host/CILImage.h"
#include "platform/orvimage/PixelTypes.h"

#include <algorithm>
#include <limits>

namespace {

constexpr unsigned kFormatRgba = 0x1908;
constexpr unsigned kFormatGrey = 0x1909;
// QImage holds its sides as ints and its bytes a line as an int.
constexpr long kMaxPictureSide = 32767;

// Luma of ITU-R BT.601, rounded to nearest.
int luma(QRgb color)
{
    return (299 * qRed(color) + 587 * qGreen(color) + 114 * qBlue(color) + 500) / 1000;
}

int brightestChannel(const QImage& picture)
{
    int brightest = 0;
    for (int y = 0; y < picture.height(); ++y) {
        const QRgb* line = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            if (qAlpha(line[x]) > 0) {
                brightest = std::max({brightest, qRed(line[x]), qGreen(line[x]), qBlue(line[x])});
            }
        }
    }
    return brightest;
}

// Scales the colours so that the brightest channel of the picture reaches `level`.
void adjustBrightness(QImage& picture, int level)
{
    const int brightest = brightestChannel(picture);
    if (brightest == 0 || brightest == level) {
        return;
    }
    int scaled[256];
    for (int c = 0; c < 256; ++c) {
        scaled[c] = std::min(255, (2 * c * level + brightest) / (2 * brightest));
    }
    for (int y = 0; y < picture.height(); ++y) {
        QRgb* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb c = line[x];
            line[x] = qRgba(scaled[qRed(c)], scaled[qGreen(c)], scaled[qBlue(c)], qAlpha(c));
        }
    }
}

QRgb shownColor(QRgb color, unsigned format)
{
    if (format == kFormatRgba) {
        return color;
    }
    if (format == kFormatGrey) {
        const int grey = luma(color);
        return qRgb(grey, grey, grey);
    }
    return color | 0xff000000U;
}

} // namespace

void CILImage::setColorTable(int index)
{
    m_palette.setColorTable(index);
}

void CILImage::setCustomColorTable(int steps, double red, double green, double blue)
{
    if (steps < 2) {
        return;
    }
    const auto unit = [](double c) { return std::isnan(c) ? 0.0 : std::clamp(c, 0.0, 1.0); };
    QVector<QColor> colors;
    colors.reserve(steps);
    for (int i = 0; i < steps; ++i) {
        const double f = i / (steps - 1.0);
        colors.append(QColor::fromRgbF(f * unit(red), f * unit(green), f * unit(blue)));
    }
    m_palette.setColors(colors);
    m_palette.clearImageMinMax();
}

QImage CILImage::toQImage() const
{
    if (isEmpty() || m_lWidth > kMaxPictureSide || m_lHeight > kMaxPictureSide) {
        return {};
    }
    QImage picture = m_rgb;
    if (picture.isNull()) {
        picture = QImage(static_cast<int>(m_lWidth), static_cast<int>(m_lHeight), QImage::Format_ARGB32);
        if (picture.isNull()) {
            return {};
        }
        double minimum = m_palette.imageMin();
        double maximum = m_palette.imageMax();
        if (!m_palette.hasImageMinMax()) {
            const orvimage::FiniteRange range = orvimage::finiteRange(*this);
            minimum = range.minimum;
            maximum = range.maximum;
        }
        orvimage::visitPixels(*this, [&](const auto* pixels, std::size_t) {
            for (int y = 0; y < picture.height(); ++y) {
                QRgb* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
                for (int x = 0; x < picture.width(); ++x) {
                    line[x] = shownColor(m_palette.map(static_cast<double>(*pixels++), minimum, maximum), m_nGLFormat);
                }
            }
        });
    }
    if (m_nBrightness > 0) {
        adjustBrightness(picture, m_nBrightness);
    }
    return picture;
}

void CILImage::setRGBImage(const QImage& picture)
{
    const QImage colours = picture.convertToFormat(QImage::Format_ARGB32); // a copy of its own: it may be ours
    if (InitWithType(ORVTYPE_BYTE, colours.width(), colours.height()) != EIL_SUCCESS) {
        return;
    }
    unsigned char* grey = bytes();
    for (int y = 0; y < colours.height(); ++y) {
        const QRgb* line = reinterpret_cast<const QRgb*>(colours.constScanLine(y));
        for (int x = 0; x < colours.width(); ++x) {
            *grey++ = static_cast<unsigned char>(luma(line[x]));
        }
    }
    m_rgb = colours;
    RefreshImageStats();
}
