// SPDX-License-Identifier: GPL-3.0-or-later
// Maps, layers, overlays and composites of one spot.
#include "engine/unmixedImages.h"

#include "host/CORVOverlayImage.h"
#include "support/Numbers.h"

#include <QDir>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace {

using testsupport::matrixOf;

constexpr int grays = 0;
constexpr int rainbow = 1;
const double notANumber = std::numeric_limits<double>::quiet_NaN();

CILImage coloured(int nWidth, int nHeight, QRgb color)
{
    QImage picture(nWidth, nHeight, QImage::Format_ARGB32);
    picture.fill(color);
    CILImage image;
    image.setRGBImage(picture);
    return image;
}

std::vector<double> valuesOf(const CILImage& image)
{
    return {image.doubles(), image.doubles() + image.pixelCount()};
}

std::vector<QRgb> pixelsOf(const CILImage& image)
{
    const QImage picture = image.toQImage();
    std::vector<QRgb> pixels;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            pixels.push_back(picture.pixel(x, y));
        }
    }
    return pixels;
}

std::vector<QRgb> grey(std::initializer_list<int> levels)
{
    std::vector<QRgb> pixels;
    for (const int level : levels) {
        pixels.push_back(qRgb(level, level, level));
    }
    return pixels;
}

// Two components of three pixels over a grey photograph, in shades of grey so that a fraction f of the range is the
// level 255 f.
class UnmixedSpotTest : public ::testing::Test
{
protected:
    UnmixedSpotTest() : m_photo(coloured(3, 1, qRgb(100, 100, 100)))
    {
        m_source.concentrations = matrixOf({{0, 5, 10}, {10, 5, 0}});
        m_source.width = 3;
        m_source.height = 1;
        m_source.components = {{"A", "red", ScaleRatio()}, {"B", "blue", ScaleRatio()}};
        m_source.display.colorTable = grays;
        m_source.display.reversed = false;
        m_source.photo = &m_photo;
        m_source.photoPicture = &m_photo;
    }
    CILImage shownMap(int nComponent)
    {
        CILImage map = *concentrationMap(m_source, nComponent, 0);
        showMap(map, m_source.display, m_source.components.at(nComponent).ratio);
        return map;
    }

    CILImage m_photo;
    UnmixedSource m_source;
};

TEST(ValueLimitsTest, SmallestAndLargestNumber)
{
    const ValueLimits limits = valueLimits(matrixOf({{3, -2}, {7, 0}}));
    EXPECT_EQ(limits.minimum, -2.0);
    EXPECT_EQ(limits.maximum, 7.0);
    const ValueLimits some = valueLimits(matrixOf({{notANumber, 2}, {notANumber, 4}}));
    EXPECT_EQ(some.minimum, 2.0);
    EXPECT_EQ(some.maximum, 4.0);
    for (const XTNT::Matrix<double>& none : {XTNT::Matrix<double>(), matrixOf({{notANumber}})}) {
        EXPECT_EQ(valueLimits(none).minimum, 0.0);
        EXPECT_EQ(valueLimits(none).maximum, 0.0);
    }
}

TEST(ValueLimitsTest, APartIsTheMinimumPlusRatiosOfTheRange)
{
    const ValueLimits part = partOf({10.0, 30.0}, 0.05, 0.95);
    EXPECT_DOUBLE_EQ(part.minimum, 11.0);
    EXPECT_DOUBLE_EQ(part.maximum, 29.0);
}

TEST(LayerColorTest, TissueInItsDefaultColourIsDarkGreen)
{
    EXPECT_EQ(layerColor({"TissueAF", "lime", {}}), QColor(0, 76, 0, 255));
    EXPECT_EQ(layerColor({"my TissueAF 2", "lime", {}}), QColor(0, 76, 0, 255));
    EXPECT_EQ(layerColor({"TissueAF", "red", {}}), QColor(255, 0, 0));
    EXPECT_EQ(layerColor({"FoodAF", "lime", {}}), QColor(0, 255, 0));
    EXPECT_EQ(layerColor({"tissueaf", "lime", {}}), QColor(0, 255, 0));
    EXPECT_EQ(layerColor({"A", "#102030", {}}), QColor(16, 32, 48));
}

TEST(LayerColorTest, AnUnknownNameIsBlack)
{
    EXPECT_EQ(layerColor({"A", "no such colour", {}}).rgb(), qRgb(0, 0, 0));
}

TEST(CompositeChannelsTest, OnePerComponentWithItsRatiosLabelAndColour)
{
    const QList<CompositeChannel> channels =
        compositeChannels({{"TissueAF", "lime", {0.2, 0.7, 1.0}}, {"B", "blue", ScaleRatio()}});
    ASSERT_EQ(channels.size(), 2);
    EXPECT_EQ(channels.at(0).minFraction, 0.2);
    EXPECT_EQ(channels.at(0).maxFraction, 0.7);
    EXPECT_EQ(channels.at(0).brightness, 1.0);
    EXPECT_EQ(channels.at(0).color, QColor(0, 76, 0));
    EXPECT_FALSE(channels.at(0).logScale);
    EXPECT_EQ(channels.at(0).label, QString("TissueAF"));
    EXPECT_EQ(channels.at(1).minFraction, 0.1);
    EXPECT_EQ(channels.at(1).maxFraction, 0.9);
    EXPECT_EQ(channels.at(1).color, QColor(0, 0, 255));
}

TEST(TileLabelTest, SeveralSpotsAreNumberedByThreeDigits)
{
    EXPECT_EQ(tileLabel("GFP", 0, 1), QString("GFP"));
    EXPECT_EQ(tileLabel("GFP", 0, 2), QString("GFP_001"));
    EXPECT_EQ(tileLabel("GFP", 1, 2), QString("GFP_002"));
    EXPECT_EQ(tileLabel("Composite", 11, 20), QString("Composite_012"));
    EXPECT_EQ(tileLabel("GFP", 999, 1000), QString("GFP_000"));
}

TEST_F(UnmixedSpotTest, AMapWithoutMaskIsTheRow)
{
    const std::unique_ptr<CILImage> pMap = concentrationMap(m_source, 1, 0);
    EXPECT_EQ(pMap->dataType(), ORVTYPE_DOUBLE);
    EXPECT_EQ(pMap->m_lWidth, 3);
    EXPECT_EQ(pMap->m_lHeight, 1);
    EXPECT_EQ(valuesOf(*pMap), (std::vector<double>{10, 5, 0}));
}

TEST_F(UnmixedSpotTest, PixelsOutsideTheMaskKeepTheBackground)
{
    m_source.width = 2;
    m_source.height = 2;
    m_source.masked = true;
    m_source.pixels = {1, 3};
    m_source.background = -7.0;
    m_source.spots = 2;
    m_source.concentrations = matrixOf({{1, 2, 3, 4}, {5, 6, 7, 8}});
    EXPECT_EQ(valuesOf(*concentrationMap(m_source, 0, 0)), (std::vector<double>{-7, 1, -7, 2}));
    EXPECT_EQ(valuesOf(*concentrationMap(m_source, 0, 1)), (std::vector<double>{-7, 3, -7, 4}));
    EXPECT_EQ(valuesOf(*concentrationMap(m_source, 1, 1)), (std::vector<double>{-7, 7, -7, 8}));
}

TEST_F(UnmixedSpotTest, AMaskWithoutPixelsLeavesTheBackground)
{
    m_source.masked = true;
    m_source.background = -7.0;
    EXPECT_TRUE(m_source.isConsistent());
    EXPECT_EQ(valuesOf(*concentrationMap(m_source, 1, 0)), (std::vector<double>{-7, -7, -7}));
}

TEST_F(UnmixedSpotTest, WhatDoesNotGoTogetherIsInconsistent)
{
    EXPECT_TRUE(m_source.isConsistent());
    const auto differs = [this](auto change) {
        UnmixedSource source = m_source;
        change(source);
        return !source.isConsistent();
    };
    EXPECT_TRUE(differs([](UnmixedSource& s) { s.components.removeLast(); }));
    EXPECT_TRUE(differs([](UnmixedSource& s) { s.width = 4; }));
    EXPECT_TRUE(differs([](UnmixedSource& s) { s.width = 0; }));
    EXPECT_TRUE(differs([](UnmixedSource& s) { s.spots = 2; }));
    const auto masked = [](std::vector<int> pixels) {
        return [pixels](UnmixedSource& s) {
            s.masked = true;
            s.pixels = pixels;
        };
    };
    EXPECT_TRUE(differs(masked({0, 3})));
    EXPECT_TRUE(differs(masked({-1})));
    EXPECT_TRUE(differs([](UnmixedSource& s) { s.concentrations = XTNT::Matrix<double>(); }));
    EXPECT_FALSE(differs(masked({2, 0})));
}

TEST_F(UnmixedSpotTest, AnIndividualRangeIsAPartOfTheMapsOwn)
{
    m_source.components[0].ratio = {0.2, 0.6, 1.0};
    CILImage map = shownMap(0);
    EXPECT_EQ(map.getMin(), 0.0);
    EXPECT_EQ(map.getMax(), 10.0);
    EXPECT_DOUBLE_EQ(map.getPalette()->imageMin(), 2.0);
    EXPECT_DOUBLE_EQ(map.getPalette()->imageMax(), 6.0);
    EXPECT_EQ(map.getGLFormat(), 0x1908U);
    EXPECT_EQ(pixelsOf(map), grey({0, 191, 255})); // (5 - 2) / 4 of 255 is 191.25
}

TEST_F(UnmixedSpotTest, ACommonRangeIsTheSameForAll)
{
    m_source.display.individualScale = false;
    m_source.display.commonRange = {0.0, 20.0};
    const CILImage map = shownMap(0);
    EXPECT_EQ(map.getPalette()->imageMin(), 0.0);
    EXPECT_EQ(map.getPalette()->imageMax(), 20.0);
    EXPECT_EQ(pixelsOf(map), grey({0, 64, 128})); // quarters: 63.75, 127.5
}

TEST_F(UnmixedSpotTest, TheColoursAreThoseOfTheTableAndItsFlags)
{
    m_source.display.colorTable = rainbow;
    m_source.display.reversed = true;
    m_source.display.logScale = true;
    const CILImage map = shownMap(0);
    EXPECT_EQ(map.getPalette()->colorTable(), rainbow);
    EXPECT_TRUE(map.getPalette()->isReversed());
    EXPECT_TRUE(map.getPalette()->isLogScale());
    CILPalette palette;
    palette.setCLUTinfo(rainbow, true, true);
    EXPECT_EQ(pixelsOf(map), (std::vector<QRgb>{palette.colorAt(0.0), palette.colorAt(0.5), palette.colorAt(1.0)}));
}

TEST_F(UnmixedSpotTest, ALayerHoldsWhatExceedsTheLowerLimit)
{
    CILImage map = shownMap(0);
    map.getPalette()->setReversed(1);
    map.getPalette()->setLogScale(1);
    makeLayer(map, QColor(255, 0, 0), ScaleRatio());
    EXPECT_EQ(valuesOf(map), (std::vector<double>{0, 4, 8})); // limited to 1 to 9, less 1
    EXPECT_FALSE(map.getPalette()->isReversed());
    EXPECT_FALSE(map.getPalette()->isLogScale());
    EXPECT_EQ(map.getGLFormat(), 0x1908U);
    EXPECT_EQ(pixelsOf(map), (std::vector<QRgb>{qRgb(0, 0, 0), qRgb(128, 0, 0), qRgb(255, 0, 0)}));
}

TEST_F(UnmixedSpotTest, ALayersLimitsAreTheComponentsOwnEvenOnACommonScale)
{
    m_source.display.individualScale = false;
    m_source.display.commonRange = {0.0, 1000.0};
    CILImage map = shownMap(0);
    makeLayer(map, QColor(0, 76, 0), {0.5, 0.75, 1.0});
    EXPECT_EQ(valuesOf(map), (std::vector<double>{0, 0, 2.5}));
    EXPECT_EQ(pixelsOf(map).back(), qRgb(0, 76, 0));
}

TEST_F(UnmixedSpotTest, ImagesInTheOrderOfTheirMakingAndTilesWithNames)
{
    const UnmixedSpot spot = unmixedSpot(m_source, 0);
    ASSERT_EQ(spot.images.size(),
              7U); // the composite, two maps with their overlays, the last composite, the photograph
    ASSERT_EQ(spot.tiles.size(), 3);
    EXPECT_EQ(spot.tiles.at(0).label, QString("A"));
    EXPECT_EQ(spot.tiles.at(1).label, QString("B"));
    EXPECT_EQ(spot.tiles.at(2).label, QString("Composite"));
    EXPECT_EQ(spot.tiles.at(0).image, spot.images[2].get());
    EXPECT_EQ(spot.tiles.at(1).image, spot.images[4].get());
    EXPECT_EQ(spot.tiles.at(2).image, spot.images[5].get());
    EXPECT_EQ(spot.images[6]->dataType(), ORVTYPE_DOUBLE);
    EXPECT_EQ(spot.images[6]->getGLFormat(), 0x1908U);
}

TEST_F(UnmixedSpotTest, AnOverlayAtFullOpacityIsTheMapWhereItIsShown)
{
    const UnmixedSpot spot = unmixedSpot(m_source, 0);
    // The photograph, 100, below the lower limit.
    EXPECT_EQ(pixelsOf(*spot.tiles.at(0).image), grey({100, 128, 255}));
    EXPECT_EQ(pixelsOf(*spot.tiles.at(1).image), grey({255, 128, 100}));
}

TEST_F(UnmixedSpotTest, AnOverlayAtHalfOpacityMixesMapAndPhotograph)
{
    m_source.display.overlayOpacity = 50;
    EXPECT_EQ(pixelsOf(*unmixedSpot(m_source, 0).tiles.at(0).image), grey({100, 114, 178}));
}

TEST_F(UnmixedSpotTest, TheCompositeIsTheMeanOfTheLayers)
{
    const UnmixedSpot spot = unmixedSpot(m_source, 0);
    // Red 0, 128, 255 alone; then blue 255, 128, 0 at a half.
    EXPECT_EQ(pixelsOf(*spot.images[0]), (std::vector<QRgb>{qRgb(0, 0, 128), qRgb(64, 0, 64), qRgb(128, 0, 0)}));
}

TEST_F(UnmixedSpotTest, ThreeLayersHaveAThirdEach)
{
    m_source.concentrations = matrixOf({{0, 10, 0}, {10, 0, 0}, {0, 0, 10}});
    m_source.components = {{"A", "red", {0, 1, 1}}, {"B", "lime", {0, 1, 1}}, {"C", "blue", {0, 1, 1}}};
    const std::vector<QRgb> pixels = pixelsOf(*unmixedSpot(m_source, 0).images[0]);
    // 255 and 127.5 rounded up, then two thirds of it.
    EXPECT_EQ(pixels, (std::vector<QRgb>{qRgb(0, 85, 0), qRgb(85, 0, 0), qRgb(0, 0, 85)}));
}

TEST_F(UnmixedSpotTest, TheLastCompositeHasAHintOfThePhotographAndFullBrightness)
{
    // The photograph's share is 101 x 0.15 %: blue 0.1515 x 100 + 0.8485 x 128 = 123.8, red and green 15.2; in the
    // middle 69.5. The brightest, 124, becomes 255: 15 becomes 31 and 69 becomes 142.
    const std::vector<QRgb> expected{qRgb(31, 31, 255), qRgb(142, 31, 142), qRgb(255, 31, 31)};
    EXPECT_EQ(pixelsOf(*unmixedSpot(m_source, 0).tiles.at(2).image), expected);
}

TEST_F(UnmixedSpotTest, ALowerOpacityLowersThePhotographsShareToo)
{
    m_source.display.overlayOpacity = 0;
    // 0.15 %: 0.0015 x 100 + 0.9985 x 128 = 127.96 and 0.15, which brightness turns into 255 and 0.
    EXPECT_EQ(pixelsOf(*unmixedSpot(m_source, 0).tiles.at(2).image).front(), qRgb(0, 0, 255));
}

TEST_F(UnmixedSpotTest, EachSpotHasItsOwnMaps)
{
    m_source.spots = 2;
    m_source.concentrations = matrixOf({{0, 5, 10, 10, 10, 0}, {1, 1, 2, 4, 3, 3}});
    const UnmixedSpot spot = unmixedSpot(m_source, 1);
    EXPECT_EQ(pixelsOf(*spot.tiles.at(0).image), grey({255, 255, 100}));
    EXPECT_EQ(pixelsOf(*spot.tiles.at(1).image), grey({255, 100, 100}));
    EXPECT_EQ(spot.tiles.at(0).label, QString("A_002"));
    EXPECT_EQ(spot.tiles.at(2).label, QString("Composite_002"));
}

TEST_F(UnmixedSpotTest, WithoutAPhotographTheMapsStandAlone)
{
    const CILImage empty;
    for (const CILImage* pPhoto : {static_cast<const CILImage*>(nullptr), &empty}) {
        m_source.photo = pPhoto;
        m_source.photoPicture = pPhoto;
        const UnmixedSpot spot = unmixedSpot(m_source, 0);
        ASSERT_EQ(spot.images.size(), 7U);
        EXPECT_EQ(pixelsOf(*spot.tiles.at(0).image), grey({0, 128, 255}));
        // Blue 128 becomes 255, and so does red; 64 becomes 128 (127.5).
        EXPECT_EQ(pixelsOf(*spot.tiles.at(2).image),
                  (std::vector<QRgb>{qRgb(0, 0, 255), qRgb(128, 0, 128), qRgb(255, 0, 0)}));
    }
}

TEST_F(UnmixedSpotTest, AConstantMapIsItsLowestColourAndABlackLayer)
{
    m_source.concentrations = matrixOf({{4, 4, 4}, {0, 0, 0}});
    const UnmixedSpot spot = unmixedSpot(m_source, 0);
    EXPECT_EQ(pixelsOf(*spot.tiles.at(0).image), grey({0, 0, 0}));
    EXPECT_EQ(pixelsOf(*spot.images[0]), grey({0, 0, 0}));
}

TEST_F(UnmixedSpotTest, WhatIsNotANumberShowsThePhotograph)
{
    m_source.concentrations = matrixOf({{notANumber, 10, 0}, {0, 5, 10}});
    EXPECT_EQ(pixelsOf(*unmixedSpot(m_source, 0).tiles.at(0).image), grey({100, 255, 100}));
}

TEST_F(UnmixedSpotTest, RatiosThatCrossDoNoHarm)
{
    m_source.components[0].ratio = {0.9, 0.1, 1.0};
    const UnmixedSpot spot = unmixedSpot(m_source, 0);
    EXPECT_EQ(valuesOf(*spot.images[1]), (std::vector<double>{-8, -8, -8}));
}

// Largest difference of a channel between two pictures; 256 when their sizes differ.
int largestDifference(const QImage& a, const QImage& b)
{
    if (a.size() != b.size()) {
        return 256;
    }
    int nLargest = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            nLargest = std::max({nLargest, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                                 std::abs(qBlue(p) - qBlue(q)), std::abs(qAlpha(p) - qAlpha(q))});
        }
    }
    return nLargest;
}

// Compares with tests/engine/golden/, which this test made and people looked at; a picture that differs is kept in the
// build folder, from where it can be copied when the difference is wanted.
void expectGolden(const QImage& picture, const QString& strName)
{
    // Qt's smooth scaling rounds as the processor's instructions go, by one level; blending and brightness pass that
    // on.
    constexpr int tolerance = 3;
    const QImage golden(QStringLiteral(ORV_SOURCE_DIR "/tests/engine/golden/") + strName);
    const int nDifference = largestDifference(picture, golden.convertToFormat(picture.format()));
    if (nDifference > tolerance) {
        const QString strFolder = QStringLiteral(ORV_BINARY_DIR "/pictures/");
        QDir().mkpath(strFolder);
        picture.save(strFolder + strName);
        ADD_FAILURE() << strName.toStdString() << " differs by " << nDifference << " levels; kept in "
                      << strFolder.toStdString();
    }
}

TEST(UnmixedGoldenTest, MapsOverALargerPhotograph)
{
    constexpr int nWidth = 16;
    constexpr int nHeight = 12;
    constexpr int nScale = 3;
    QImage shade(nWidth * nScale, nHeight * nScale, QImage::Format_ARGB32);
    for (int y = 0; y < shade.height(); ++y) {
        for (int x = 0; x < shade.width(); ++x) {
            const int nLevel = std::max(0, 220 - 9 * std::max(std::abs(x - 24), 2 * std::abs(y - 18)));
            shade.setPixel(x, y, qRgb(nLevel, nLevel, nLevel));
        }
    }
    CILImage photo;
    photo.setRGBImage(shade);

    UnmixedSource source;
    source.width = nWidth;
    source.height = nHeight;
    source.concentrations = XTNT::Matrix<double>(2, nWidth * nHeight);
    for (int i = 0; i < nWidth * nHeight; ++i) {
        const double x = i % nWidth;
        const double y = (i - i % nWidth) / static_cast<double>(nWidth);
        source.concentrations[0][i] = std::exp(-(std::pow(x - 5, 2) + std::pow(y - 5, 2)) / 8);
        source.concentrations[1][i] = 2 * std::exp(-(std::pow(x - 10, 2) + std::pow(y - 7, 2)) / 6);
    }
    source.components = {{"TissueAF", "lime", ScaleRatio()}, {"B", "red", ScaleRatio()}};
    source.display.overlayOpacity = 70;
    source.photo = &photo;
    source.photoPicture = &photo;
    const UnmixedSpot spot = unmixedSpot(source, 0);
    expectGolden(spot.tiles.at(0).image->toQImage(), "overlay.png");
    expectGolden(spot.tiles.at(2).image->toQImage(), "composite.png");
}

RC_GTEST_PROP(UnmixedImagesLawTest, MapsHoldTheirColumnsAndLayersStayInTheShownPart, (const std::vector<int>& numbers))
{
    const int nPixels = static_cast<int>(numbers.size());
    RC_PRE(nPixels > 0);
    const int nPlaces = 2 * nPixels;
    UnmixedSource source;
    source.width = nPlaces;
    source.height = 1;
    source.masked = true;
    source.concentrations = XTNT::Matrix<double>(1, nPixels);
    for (int j = 0; j < nPixels; ++j) {
        source.concentrations[0][j] = numbers[static_cast<std::size_t>(j)] * 0.125;
        source.pixels.push_back(2 * j + (j % 2));
    }
    source.components = {{"A", "red", {0.25, 0.75, 1.0}}};
    source.background = valueLimits(source.concentrations).minimum;
    RC_ASSERT(source.isConsistent());

    CILImage map = *concentrationMap(source, 0, 0);
    showMap(map, source.display, source.components.first().ratio);
    for (int j = 0; j < nPixels; ++j) {
        RC_ASSERT(map.doubles()[source.pixels[static_cast<std::size_t>(j)]] == source.concentrations[0][j]);
        RC_ASSERT(map.doubles()[2 * j + 1 - (j % 2)] == source.background);
    }
    makeLayer(map, QColor("red"), source.components.first().ratio);
    const double dRange = map.getMax() - map.getMin();
    // A rounding of the limits either way.
    const double dMost = 0.5 * dRange + 4 * std::numeric_limits<double>::epsilon() * (dRange + std::abs(map.getMin()));
    for (std::size_t i = 0; i < map.pixelCount(); ++i) {
        RC_ASSERT(map.doubles()[i] >= 0.0);
        RC_ASSERT(map.doubles()[i] <= dMost);
    }
}

} // namespace
