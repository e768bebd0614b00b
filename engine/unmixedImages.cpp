// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/unmixedImages.h"

#include <algorithm>
#include <new>
#include <utility>

namespace {

constexpr unsigned formatRgba = 0x1908;
constexpr int layerSteps = 256;
constexpr double brightest = 255.0;
constexpr int smooth = 1;
constexpr double photoShare = 0.15; // of the photograph over a composite

// Keeps an image; the pointer stays valid.
template <class Image>
Image& keep(UnmixedSpot& spot, std::unique_ptr<Image> pImage)
{
    Image& image = *pImage;
    spot.images.push_back(std::move(pImage));
    return image;
}

void blend(CORVOverlayImage& overlay, double dOpacity)
{
    // Without any layer there is nothing to show, and nothing to tell.
    if (overlay.blend(static_cast<float>(dOpacity), smooth) == EIL_NO_MEMORY) {
        throw std::bad_alloc();
    }
}

std::unique_ptr<CORVOverlayImage> overlayOf(const UnmixedSource& source, const CILImage& map)
{
    auto pOverlay = std::make_unique<CORVOverlayImage>();
    pOverlay->setBackground(source.photoPicture, IMAGETYPE_PHOTOGRAPH);
    pOverlay->setForeground(&map, IMAGETYPE_LUMINESCENT);
    blend(*pOverlay, source.display.overlayOpacity / 100.0);
    return pOverlay;
}

// Layer n (from 1) joins the mean of those before it.
void addLayer(CORVOverlayImage& composite, const CILImage& layer, int n)
{
    composite.setLuminescent(&layer, IMAGETYPE_LUMINESCENT);
    blend(composite, 1.0 / n);
    composite.setPhotograph(&composite, IMAGETYPE_PHOTOGRAPH);
}

std::unique_ptr<CILImage> photographLayer(const CILImage* pPhoto)
{
    auto pLayer = pPhoto != nullptr ? std::make_unique<CILImage>(*pPhoto) : std::make_unique<CILImage>();
    if (pLayer->ChangeType(ORVTYPE_DOUBLE) == EIL_NO_MEMORY) {
        throw std::bad_alloc();
    }
    pLayer->RefreshImageStats();
    pLayer->setGLFormat(formatRgba);
    return pLayer;
}

} // namespace

ValueLimits valueLimits(const XTNT::Matrix<double>& values)
{
    ValueLimits limits;
    bool bAny = false;
    for (long long i = 0; i < values.storage.n_; ++i) {
        const double v = values.storage.data[i];
        if (!bAny && v == v) {
            limits = {v, v};
            bAny = true;
        }
        // Comparisons with what is not a number are false.
        limits.minimum = v < limits.minimum ? v : limits.minimum;
        limits.maximum = v > limits.maximum ? v : limits.maximum;
    }
    return limits;
}

ValueLimits partOf(const ValueLimits& limits, double dLower, double dUpper)
{
    const double dRange = limits.maximum - limits.minimum;
    return {limits.minimum + dLower * dRange, limits.minimum + dUpper * dRange};
}

QColor layerColor(const UnmixedComponent& component)
{
    if (component.label.contains("TissueAF") && component.color == "lime") {
        return QColor(0, 76, 0, 255);
    }
    QColor color;
    color.setNamedColor(component.color);
    return color;
}

QList<CompositeChannel> compositeChannels(const QList<UnmixedComponent>& components)
{
    QList<CompositeChannel> channels;
    for (const UnmixedComponent& component : components) {
        CompositeChannel channel;
        channel.minFraction = component.ratio.MinRatio;
        channel.maxFraction = component.ratio.MaxRatio;
        channel.color = layerColor(component);
        channel.label = component.label;
        channels.append(channel);
    }
    return channels;
}

QString tileLabel(const QString& strName, int nSpot, int nSpots)
{
    constexpr int firstNumber = 1001;
    constexpr int digits = 3;
    return nSpots > 1 ? strName + "_" + QString::number(firstNumber + nSpot).right(digits) : strName;
}

long long UnmixedSource::pixelsPerSpot() const
{
    return masked ? static_cast<long long>(pixels.size()) : static_cast<long long>(width) * height;
}

bool UnmixedSource::isConsistent() const
{
    const long long nPlaces = static_cast<long long>(width) * height;
    return width > 0 && height > 0 && spots > 0 && components.size() == concentrations.num_rows() &&
           concentrations.num_cols() / spots >= pixelsPerSpot() &&
           std::all_of(pixels.begin(), pixels.end(), [nPlaces](int p) { return p >= 0 && p < nPlaces; });
}

CILImage pictureOf(const CILImage& image)
{
    CILImage picture;
    picture.setRGBImage(image.toQImage());
    return picture;
}

CORVOverlayImage hintOf(const CILImage* pPhoto)
{
    CORVOverlayImage hint;
    hint.setLuminescent(photographLayer(pPhoto).get(), IMAGETYPE_LUMINESCENT);
    return hint;
}

std::unique_ptr<CILImage> concentrationMap(const UnmixedSource& source, int nComponent, int nSpot)
{
    auto pMap = std::make_unique<CILImage>();
    if (pMap->InitWithType(ORVTYPE_DOUBLE, source.width, source.height) != EIL_SUCCESS) {
        throw std::bad_alloc();
    }
    const long long nPixels = source.pixelsPerSpot();
    const double* const from = source.concentrations.rowTable.data[nComponent] + nSpot * nPixels;
    double* const to = pMap->doubles();
    if (!source.masked) {
        std::copy(from, from + nPixels, to);
        return pMap;
    }
    pMap->setConstData(source.background);
    for (std::size_t j = 0; j < source.pixels.size(); ++j) {
        to[source.pixels[j]] = from[j];
    }
    return pMap;
}

void showMap(CILImage& map, const UnmixedDisplay& display, const ScaleRatio& ratio)
{
    map.RefreshImageStats();
    map.setColorTable(display.colorTable);
    CILPalette& palette = *map.getPalette();
    palette.setReversed(display.reversed ? 1 : 0);
    palette.setLogScale(display.logScale ? 1 : 0);
    map.setGLFormat(formatRgba);
    const ValueLimits range = display.individualScale
                                  ? partOf({map.getMin(), map.getMax()}, ratio.MinRatio, ratio.MaxRatio)
                                  : display.commonRange;
    palette.SetImageMinMax(range.minimum, range.maximum);
}

void makeLayer(CILImage& map, const QColor& color, const ScaleRatio& ratio)
{
    map.setCustomColorTable(layerSteps, color.red() / brightest, color.green() / brightest, color.blue() / brightest);
    map.getPalette()->setReversed(0);
    map.getPalette()->setLogScale(0);
    map.setGLFormat(formatRgba);
    const ValueLimits shown = partOf({map.getMin(), map.getMax()}, ratio.MinRatio, ratio.MaxRatio);
    double* const values = map.doubles();
    for (std::size_t i = 0; i < map.pixelCount(); ++i) {
        values[i] = std::min(std::max(values[i], shown.minimum), shown.maximum) - shown.minimum;
    }
}

UnmixedSpot unmixedSpot(const UnmixedSource& source, int nSpot)
{
    UnmixedSpot spot;
    CORVOverlayImage& composite = keep(spot, std::make_unique<CORVOverlayImage>());
    composite.setPhotograph(source.photoPicture, IMAGETYPE_PHOTOGRAPH);
    for (int c = 0; c < source.components.size(); ++c) {
        const UnmixedComponent& component = source.components.at(c);
        CILImage& map = keep(spot, concentrationMap(source, c, nSpot));
        showMap(map, source.display, component.ratio);
        const CILPalette& shown = *map.getPalette();
        spot.tiles.append({&keep(spot, overlayOf(source, map)), tileLabel(component.label, nSpot, source.spots),
                           ValueLimits{shown.imageMin(), shown.imageMax()}});
        makeLayer(map, layerColor(component), component.ratio);
        addLayer(composite, map, c + 1);
    }

    CORVOverlayImage& final =
        keep(spot, std::make_unique<CORVOverlayImage>(source.hint != nullptr ? *source.hint : CORVOverlayImage()));
    final.setPhotograph(&composite, IMAGETYPE_PHOTOGRAPH);
    const CILImage& layer = keep(spot, photographLayer(source.photo));
    if (source.hint == nullptr) {
        final.setLuminescent(&layer, IMAGETYPE_LUMINESCENT);
    }
    blend(final, (source.display.overlayOpacity + 1) * photoShare / 100.0);
    final.AdjustRGBBrightness(static_cast<unsigned char>(brightest));
    spot.tiles.append({&final, tileLabel("Composite", nSpot, source.spots)});
    return spot;
}
