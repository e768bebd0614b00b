// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/compositePicture.h"

#include "XTNT/xtnt_assert.h"
#include "XTNT/xtnt_parallel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <new>
#include <vector>

// This file is compiled without fused multiplications: values are truncated at
// the end, and a product that is not rounded can end up on the other side of an
// integer.

namespace {

constexpr double kProbeBrightness = 1.0;
constexpr double kTissueBrightness = 0.3;
constexpr double kBackgroundBrightness = 0.35;

constexpr double kLogOffset = 0.001;
constexpr double kLogShift = 3.0;
constexpr double kLogTop = 1.001;

// Pixels of which the layers are mixed while they are in the cache.
constexpr long long kBlock = 2048;
// Lines that a thread blends at a time.
constexpr long long kLines = 16;

using Weights = std::array<double, 3>;

bool isLit(const Weights& weights)
{
    return weights[0] != 0.0 || weights[1] != 0.0 || weights[2] != 0.0;
}

// Of 0 to 1: 0 gives 0 and 1 gives `top`.
double logarithmic(double m, double top)
{
    return (std::log10(m + kLogOffset) + kLogShift) * top / (std::log10(kLogTop) + kLogShift);
}

// The display window of a layer, 0 to `top`. A value at the upper end is not
// above it and goes through the quotient.
class DisplayWindow
{
public:
    DisplayWindow(const CompositeLayer& layer, double top)
        : m_minimum(layer.minimum), m_width(layer.maximum - layer.minimum), m_low(layer.channel.minFraction),
          m_high(layer.channel.maxFraction), m_top(top)
    {
    }

    // Without branches, so that many values are taken at once. The order of the
    // choices is that of their weight.
    double operator()(double value) const
    {
        const double quotient = (value - m_minimum) / m_width;
        const double v = m_width == 0.0 && value == m_minimum ? 0.0 : quotient;
        const double inside = (v - m_low) * m_top / (m_high - m_low);
        const double m = m_low >= v ? 0.0 : inside;
        return v > m_high ? m_top : m;
    }

private:
    const double m_minimum, m_width, m_low, m_high, m_top;
};

// Truncates; what is not a number is black.
int level(double value)
{
    if (!(value > 0.0)) {
        return 0;
    }
    return value >= 255.0 ? 255 : static_cast<int>(value);
}

// The largest number of a stretch of values; 0 when there is none.
double largestOf(const double* values, long long count)
{
    double largest = -std::numeric_limits<double>::infinity();
    for (long long i = 0; i < count; ++i) {
        largest = values[i] > largest ? values[i] : largest;
    }
    return std::isfinite(largest) || largest > 0.0 ? largest : 0.0;
}

bool isTissueInItsColor(const CompositeChannel& channel)
{
    return channel.label.contains(QLatin1String("TissueAF")) &&
           channel.color.rgb() == QColor(QStringLiteral("lime")).rgb();
}

Weights weightsOf(const CompositeLayer& layer)
{
    if (layer.checked == Qt::Unchecked) {
        return {0.0, 0.0, 0.0};
    }
    const QColor& color = layer.channel.color;
    const double brightness = layer.channel.brightness;
    return {color.red() * brightness, color.green() * brightness, color.blue() * brightness};
}

// Logarithms of a stretch of values. Most of a map is below its window or above
// it.
void takeLogarithms(double* m, long long count)
{
    const double lowest = logarithmic(0.0, 1.0);
    const double highest = logarithmic(1.0, 1.0);
    for (long long p = 0; p < count; ++p) {
        m[p] = m[p] == 0.0 ? lowest : m[p] == 1.0 ? highest : logarithmic(m[p], 1.0);
    }
}

// Adds a layer to the mixture of at most kBlock pixels: their reds, then their
// greens, then their blues.
void addLayer(const double* values, long long count, const CompositeLayer& layer, const Weights& weights,
              double* mixture)
{
    const DisplayWindow window(layer, 1.0);
    std::array<double, kBlock> windowed;
    double* const m = windowed.data();
    for (long long p = 0; p < count; ++p) {
        m[p] = window(values[p]);
    }
    if (layer.channel.logScale) {
        takeLogarithms(m, count);
    }
    for (std::size_t c = 0; c < weights.size(); ++c) {
        double* const to = mixture + static_cast<long long>(c) * count;
        const double weight = weights[c];
        for (long long p = 0; p < count; ++p) {
            to[p] += m[p] * weight;
        }
    }
}

struct Mixture
{
    std::unique_ptr<double[]> values; // of each kBlock pixels reds, greens and
                                      // blues; not touched before its block is
    double largest = 0.0;             // of all of them; NaNs do not count
};

Mixture mixtureOf(const CompositeMaps& maps, int nSpot, const QList<CompositeLayer>& layers)
{
    const long long pixels = maps.pixelsPerSpot();
    Mixture mixture;
    mixture.values.reset(new double[3 * static_cast<std::size_t>(pixels)]);
    std::vector<Weights> weights;
    for (const CompositeLayer& layer : layers) {
        weights.push_back(weightsOf(layer));
    }
    std::vector<double> largest(static_cast<std::size_t>((pixels + kBlock - 1) / kBlock));
    XTNT::parallelChunks(pixels, kBlock, [&](long long begin, long long end) {
        const long long count = end - begin;
        double* const block = mixture.values.get() + 3 * begin;
        std::fill_n(block, 3 * count, 0.0);
        for (int i = 0; i + 1 < layers.size(); ++i) {
            // A layer that is off takes no part, so that a NaN in it does not reach
            // the picture.
            if (isLit(weights[static_cast<std::size_t>(i)])) {
                const double* values = maps.data[i] + nSpot * pixels + begin;
                addLayer(values, count, layers[i], weights[static_cast<std::size_t>(i)], block);
            }
        }
        largest[static_cast<std::size_t>(begin / kBlock)] = largestOf(block, 3 * count);
    });
    for (const double ofBlock : largest) {
        mixture.largest = std::max(mixture.largest, ofBlock);
    }
    return mixture;
}

// Colours of a block of a mixture, stretched so that the largest value is 255.
void takeColors(const double* block, long long count, double largest, QRgb* colors)
{
    for (long long p = 0; p < count; ++p) {
        colors[p] = qRgb(level(block[p] / largest * 255.0), level(block[count + p] / largest * 255.0),
                         level(block[2 * count + p] / largest * 255.0));
    }
}

void requireMatch(const CompositeMaps& maps, int nSpot, const QList<CompositeLayer>& layers)
{
    const bool bSizes = compositeSizesMatch(maps, layers.size() - 1);
    XTNT_ASSERT(bSizes);
    XTNT_ASSERT(nSpot >= 0 && nSpot < maps.spots);
}

QImage blackPicture(const QSize& size)
{
    QImage picture(size, QImage::Format_RGB32);
    if (picture.isNull() && !size.isEmpty()) {
        throw std::bad_alloc();
    }
    picture.fill(QColor(QStringLiteral("black")));
    return picture;
}

QImage enlarged(const QImage& picture, const QSize& size)
{
    if (picture.isNull()) {
        return picture;
    }
    QImage scaled = picture.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    if (scaled.isNull()) {
        throw std::bad_alloc();
    }
    return scaled.format() == QImage::Format_RGB32 ? scaled : scaled.convertToFormat(QImage::Format_RGB32);
}

// The background as double pixels, of exactly that size. A side alone that is
// too short calls for it too.
CILImage backgroundOfSize(const CILImage& background, const QSize& size)
{
    CILImage grey = background;
    bool bOk = grey.ChangeType(ORVTYPE_DOUBLE) == EIL_SUCCESS;
    if (bOk && (grey.m_lWidth < size.width() || grey.m_lHeight < size.height())) {
        bOk = grey.upSample(size.width(), size.height(), IL_RESAMPLE_LINEAR) == EIL_SUCCESS;
    }
    if (!bOk) {
        throw std::bad_alloc();
    }
    return grey;
}

// At most kBlock pixels of the picture under as many of the background, in
// grey.
void blendStretch(const double* values, const QRgb* from, long long count, const CompositeLayer& layer, QRgb* to)
{
    const DisplayWindow window(layer, 255.0);
    const double b = layer.channel.brightness;
    std::array<double, kBlock> greys;
    double* const grey = greys.data();
    for (long long x = 0; x < count; ++x) {
        grey[x] = window(values[x]);
    }
    if (layer.channel.logScale) {
        std::transform(grey, grey + count, grey, [](double g) { return logarithmic(g / 255.0, 255.0); });
    }
    for (long long x = 0; x < count; ++x) {
        to[x] = qRgb(level(qRed(from[x]) * (1.0 - b) + b * grey[x]), level(qGreen(from[x]) * (1.0 - b) + b * grey[x]),
                     level(qBlue(from[x]) * (1.0 - b) + b * grey[x]));
    }
}

QImage blended(const QImage& picture, const CompositeLayer& layer, const CILImage& background, const QSize& size)
{
    const CILImage image = backgroundOfSize(background, size);
    const double* const values = image.doubles();
    QImage result = blackPicture(size);
    auto* const to = reinterpret_cast<QRgb*>(result.bits()); // lines of 32 bit pixels have no padding
    const long long width = size.width();
    const std::vector<QRgb> black(static_cast<std::size_t>(kBlock), qRgb(0, 0, 0));
    XTNT::parallelChunks(size.height(), kLines, [&](long long begin, long long end) {
        for (long long y = begin; y < end; ++y) {
            const bool inside = y < picture.height();
            const auto* const line =
                inside ? reinterpret_cast<const QRgb*>(picture.constScanLine(static_cast<int>(y))) : black.data();
            const long long filled = inside ? std::min<long long>(width, picture.width()) : 0;
            for (long long x = 0; x < width;) {
                const long long count = std::min(kBlock, (x < filled ? filled : width) - x);
                blendStretch(values + y * width + x, x < filled ? line + x : black.data(), count, layer,
                             to + y * width + x);
                x += count;
            }
        }
    });
    return result;
}

} // namespace

bool compositeSizesMatch(const CompositeMaps& maps, int nChannels)
{
    return nChannels == maps.data.num_rows() && maps.data.num_cols() == maps.spots * maps.pixelsPerSpot();
}

QString compositeSizeMismatchText()
{
    return QStringLiteral("SpUnmixCompositeWnd: input data size mismatch for composite image.");
}

QList<CompositeLayer> compositeStartLayers(const CompositeMaps& maps, const QList<CompositeChannel>& channels,
                                           const CILImage& photo)
{
    const bool bSizes = compositeSizesMatch(maps, channels.size());
    XTNT_ASSERT(bSizes);
    QList<CompositeLayer> layers;
    for (int i = 0; i < channels.size(); ++i) {
        CompositeLayer layer;
        layer.channel = channels[i];
        layer.channel.brightness = isTissueInItsColor(channels[i]) ? kTissueBrightness : kProbeBrightness;
        layer.maximum = largestOf(maps.data[i], maps.data.num_cols());
        layers.append(layer);
    }

    CompositeLayer background;
    background.channel.color = QColor(QStringLiteral("white"));
    background.channel.brightness = kBackgroundBrightness;
    background.channel.minFraction = 0.0;
    background.channel.maxFraction = 1.0;
    const CILPalette* pPalette = photo.getPalette();
    const double width = photo.Max() - photo.Min();
    if (pPalette->hasImageMinMax() && width != 0.0) {
        background.channel.minFraction = (pPalette->imageMin() - photo.Min()) / width;
        background.channel.maxFraction = (pPalette->imageMax() - photo.Min()) / width;
    }
    layers.append(background);
    takeCompositeBackground(layers, photo, QStringLiteral("Photograph"));
    return layers;
}

void takeCompositeBackground(QList<CompositeLayer>& layers, const CILImage& background, const QString& strName)
{
    XTNT_ASSERT(!layers.isEmpty());
    CompositeLayer& layer = layers.last();
    layer.channel.label = strName;
    layer.minimum = background.Min();
    layer.maximum = background.Max();
}

bool takeCompositeSpot(const CompositeMaps& maps, int nSpot, QList<CompositeLayer>& layers)
{
    if (maps.spots <= 1 || nSpot < 0 || nSpot >= maps.spots) {
        return false;
    }
    requireMatch(maps, nSpot, layers);
    const long long pixels = maps.pixelsPerSpot();
    for (int i = 0; i + 1 < layers.size(); ++i) {
        layers[i].maximum = largestOf(maps.data[i] + nSpot * pixels, pixels);
    }
    return true;
}

QImage compositeOfMaps(const CompositeMaps& maps, int nSpot, const QList<CompositeLayer>& layers)
{
    requireMatch(maps, nSpot, layers);
    QImage picture = blackPicture(QSize(maps.width, maps.height));
    const Mixture mixture = mixtureOf(maps, nSpot, layers);
    if (picture.isNull() || !(mixture.largest > 0.0)) {
        return picture;
    }
    const long long pixels = maps.pixelsPerSpot();
    auto* const to = reinterpret_cast<QRgb*>(picture.bits()); // lines of 32 bit pixels have no padding
    // Places may come twice, and the later pixel stays: they are filled one after
    // the other.
    std::vector<QRgb> inMask(maps.pixelIndices.size());
    QRgb* const colors = maps.pixelIndices.empty() ? to : inMask.data();
    XTNT::parallelChunks(pixels, kBlock, [&](long long begin, long long end) {
        takeColors(mixture.values.get() + 3 * begin, end - begin, mixture.largest, colors + begin);
    });
    const long long places = static_cast<long long>(maps.width) * maps.height;
    for (std::size_t p = 0; p < inMask.size(); ++p) {
        const long long q = maps.pixelIndices[p];
        if (q >= 0 && q < places) {
            to[q] = inMask[p];
        }
    }
    return picture;
}

QSize compositeFrame(const CompositeMaps& maps, const CILImage& background)
{
    return QSize(static_cast<int>(background.m_lWidth), static_cast<int>(background.m_lHeight))
        .expandedTo(QSize(maps.width, maps.height))
        .expandedTo(QSize(kCompositeSide, kCompositeSide));
}

QImage compositePicture(const CompositeMaps& maps, int nSpot, const QList<CompositeLayer>& layers,
                        const CILImage& background)
{
    const QSize size = compositeFrame(maps, background);
    const QImage picture = enlarged(compositeOfMaps(maps, nSpot, layers), size);
    if (layers.last().checked != Qt::Checked || background.isEmpty()) {
        return picture;
    }
    return blended(picture, layers.last(), background, size);
}

QList<QPair<QString, QColor>> compositeLabels(const QList<CompositeLayer>& layers)
{
    QList<QPair<QString, QColor>> labels;
    for (int i = layers.size() - 2; i >= 0; --i) {
        labels.append(qMakePair(layers[i].channel.label, layers[i].channel.color));
    }
    return labels;
}
