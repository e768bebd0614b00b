// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/compositePicture.h"

#include "windows/CompositeScene.h"

#include <gmock/gmock.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <limits>

using testing::Each;
using testing::ElementsAre;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// ---- The maps ----

TEST(CompositeOfMapsTest, WindowKeepsBothEndsInside)
{
    // Fractions 0, 0.25, 0.5, 0.75, 1 in a window from 0.25 to 0.75: a value at the lower end gives 0, one at the upper
    // end the quotient 1.
    CompositeScene scene(5, 1, {{0.0, 2.5, 5.0, 7.5, 10.0}});
    scene.start({channelOf("red", 0.25, 0.75)});
    EXPECT_THAT(colorsOf(scene.mapPicture()), ElementsAre(0U, 0U, rgb(127, 0, 0), rgb(255, 0, 0), rgb(255, 0, 0)));
}

TEST(CompositeOfMapsTest, ValueAtTheUpperEndGoesThroughTheQuotient)
{
    // With both ends at 0.5 nothing lies between them: at the end itself the lower one decides.
    CompositeScene scene(3, 1, {{4.0, 5.0, 10.0}});
    scene.start({channelOf("red", 0.5, 0.5)});
    EXPECT_THAT(colorsOf(scene.mapPicture()), ElementsAre(0U, 0U, rgb(255, 0, 0)));
}

TEST(CompositeOfMapsTest, ValueAtBothEndsAddsNothing)
{
    CompositeScene scene(2, 1, {{5.0, 10.0}, {1.0, 0.0}});
    scene.start({channelOf("red", 0.5, 0.5), channelOf("blue")});
    EXPECT_THAT(colorsOf(scene.mapPicture()), ElementsAre(rgb(0, 0, 255), rgb(255, 0, 0)));
}

TEST(CompositeOfMapsTest, ValuesAreDividedByTheLargestBeforeTheyAreStretched)
{
    // In this order 7 of 17 is 105 of 255; multiplied by 255 / 100 it would fall short of it.
    CompositeScene scene(2, 1, {{7.0, 17.0}});
    scene.start({channelOf("#640000")});
    EXPECT_THAT(colorsOf(scene.mapPicture()), ElementsAre(rgb(105, 0, 0), rgb(255, 0, 0)));
}

TEST(CompositeOfMapsTest, LayersAddUpAndTheBrightestValueIs255)
{
    CompositeScene scene(3, 1, {{4.0, 4.0, 0.0}, {8.0, 0.0, 4.0}, {0.0, 0.0, 1.0}});
    scene.start({channelOf("red"), channelOf("red"), channelOf("blue")});
    // 510, 255 and 127.5 of red over 510
    EXPECT_THAT(colorsOf(scene.mapPicture()), ElementsAre(rgb(255, 0, 0), rgb(127, 0, 0), rgb(63, 0, 127)));
}

TEST(CompositeOfMapsTest, BrightnessWeighsLayersAgainstEachOther)
{
    CompositeScene scene(2, 1, {{1.0, 0.0}, {0.0, 1.0}});
    scene.start({channelOf("red", 0.0, 1.0, 0.5), channelOf("white", 0.0, 1.0, 0.125)});
    EXPECT_THAT(colorsOf(scene.mapPicture()), ElementsAre(rgb(255, 0, 0), rgb(63, 63, 63)));
}

TEST(CompositeOfMapsTest, LogScaleKeepsTheEndsAndLiftsWhatIsBetween)
{
    CompositeScene scene(3, 1, {{0.0, 9.9, 100.0}});
    scene.start({channelOf("lime")});
    scene.layers[0].channel.logScale = true;
    // log10(0.1) + 3 = 2 of log10(1.001) + 3 = 3.000434
    EXPECT_THAT(colorsOf(scene.mapPicture()), ElementsAre(0U, rgb(0, 169, 0), rgb(0, 255, 0)));
}

TEST(CompositeOfMapsTest, LogScaleIsDividedByWhatItGivesForOne)
{
    // log10(0.100014) + 3 is 2.0000608: 169.98 of 255 over log10(1.001) + 3, but 170.005 over 3. Blue sets the scale.
    CompositeScene scene(2, 1, {{9.9014, 100.0}, {1.0, 1.0}});
    scene.start({channelOf("lime"), channelOf("blue")});
    scene.layers[0].channel.logScale = true;
    EXPECT_THAT(colorsOf(scene.mapPicture()), ElementsAre(rgb(0, 169, 255), rgb(0, 255, 255)));
}

TEST(CompositeOfMapsTest, UncheckedLayersTakeNoPartAndHalfCheckedOnesDo)
{
    CompositeScene scene(2, 1, {{1.0, 0.0}, {0.0, 1.0}});
    scene.start({channelOf("red"), channelOf("blue")});
    scene.layers[0].checked = Qt::Unchecked;
    EXPECT_THAT(colorsOf(scene.mapPicture()), ElementsAre(0U, rgb(0, 0, 255)));
    scene.layers[0].checked = Qt::PartiallyChecked;
    EXPECT_THAT(colorsOf(scene.mapPicture()), ElementsAre(rgb(255, 0, 0), rgb(0, 0, 255)));
}

TEST(CompositeOfMapsTest, NothingThatShinesIsBlack)
{
    CompositeScene dark(2, 1, {{1.0, 0.5}});
    dark.start({channelOf("red")});
    dark.layers[0].checked = Qt::Unchecked;
    EXPECT_THAT(colorsOf(dark.mapPicture()), Each(0U));
    dark.layers[0].checked = Qt::Checked;
    dark.layers[0].channel.brightness = 0.0;
    EXPECT_THAT(colorsOf(dark.mapPicture()), Each(0U));
    CompositeScene empty(2, 1, {{0.0, 0.0}});
    empty.start({channelOf("red")});
    EXPECT_THAT(colorsOf(empty.mapPicture()), Each(0U));
    CompositeScene black(2, 1, {{0.0, 1.0}});
    black.start({channelOf("black")});
    EXPECT_THAT(colorsOf(black.mapPicture()), Each(0U));
}

TEST(CompositeOfMapsTest, EmptyMapAddsNothingToTheOthers)
{
    CompositeScene scene(2, 1, {{0.0, 0.0}, {1.0, 0.5}});
    scene.start({channelOf("red"), channelOf("blue")});
    for (const bool bLog : {false, true}) {
        scene.layers[0].channel.logScale = bLog;
        EXPECT_THAT(colorsOf(scene.mapPicture()), ElementsAre(rgb(0, 0, 255), rgb(0, 0, 127)));
    }
}

TEST(CompositeOfMapsTest, NaNIsBlackWhereItStandsAndNowhereElse)
{
    CompositeScene scene(3, 1, {{1.0, kNaN, 0.5}, {0.0, 1.0, 0.0}});
    scene.start({channelOf("red"), channelOf("blue")});
    EXPECT_EQ(scene.layers[0].maximum, 1.0);
    EXPECT_THAT(colorsOf(scene.mapPicture()), ElementsAre(rgb(255, 0, 0), 0U, rgb(127, 0, 0)));
    scene.layers[0].checked = Qt::Unchecked;
    EXPECT_THAT(colorsOf(scene.mapPicture()), ElementsAre(0U, rgb(0, 0, 255), 0U));
}

TEST(CompositeOfMapsTest, MapOfNaNsAloneIsBlack)
{
    CompositeScene scene(2, 1, {{kNaN, kNaN}});
    scene.start({channelOf("red")});
    EXPECT_EQ(scene.layers[0].maximum, 0.0);
    EXPECT_THAT(colorsOf(scene.mapPicture()), Each(0U));
}

TEST(CompositeOfMapsTest, NegativeValuesAreDark)
{
    CompositeScene scene(3, 1, {{-5.0, 0.0, 4.0}});
    scene.start({channelOf("yellow")});
    EXPECT_THAT(colorsOf(scene.mapPicture()), ElementsAre(0U, 0U, rgb(255, 255, 0)));
}

TEST(CompositeOfMapsTest, PixelsOfAMaskGoToTheirPlacesAndTheRestIsBlack)
{
    CompositeScene scene(3, 2, {{1.0, 0.5}}, {5, 1});
    scene.start({channelOf("red")});
    const QImage picture = scene.mapPicture();
    EXPECT_EQ(picture.format(), QImage::Format_RGB32);
    EXPECT_THAT(colorsOf(picture), ElementsAre(0U, rgb(127, 0, 0), 0U, 0U, 0U, rgb(255, 0, 0)));
}

TEST(CompositeOfMapsTest, PlacesOutsideThePictureAreLeftOut)
{
    CompositeScene scene(2, 1, {{1.0, 1.0, 1.0}}, {-1, 1, 2});
    scene.start({channelOf("red")});
    EXPECT_THAT(colorsOf(scene.mapPicture()), ElementsAre(0U, rgb(255, 0, 0)));
}

TEST(CompositeOfMapsTest, SpotsHaveTheirOwnColumns)
{
    CompositeScene scene(2, 1, {{8.0, 4.0, 1.0, 2.0}}, {}, 2);
    scene.start({channelOf("red")});
    EXPECT_THAT(colorsOf(scene.mapPicture(0)), ElementsAre(rgb(255, 0, 0), rgb(127, 0, 0)));
    EXPECT_THAT(colorsOf(scene.mapPicture(1)), ElementsAre(rgb(127, 0, 0), rgb(255, 0, 0)));
}

TEST(CompositeOfMapsTest, LargeAndUnevenMapsAreMixedToTheLastPixel)
{
    std::vector<double> values(83 * 61);
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = static_cast<double>(i + 1);
    }
    CompositeScene scene(83, 61, {values});
    scene.start({channelOf("red")});
    const QImage picture = scene.mapPicture();
    EXPECT_EQ(colorAt(picture, 82, 60), rgb(255, 0, 0));
    EXPECT_EQ(colorAt(picture, 0, 60), rgb(static_cast<int>((60 * 83 + 1) * 255 / (83 * 61)), 0, 0));
}

TEST(CompositeOfMapsTest, TheBrightestPixelMayStandAnywhere)
{
    for (const std::size_t place : {std::size_t{0}, std::size_t{2500}, std::size_t{4999}}) {
        std::vector<double> values(5000, 1.0);
        values[place] = 4.0;
        CompositeScene scene(100, 50, {values});
        scene.start({channelOf("red")});
        scene.layers[0].maximum = 8.0;
        const std::vector<unsigned> colors = colorsOf(scene.mapPicture());
        for (std::size_t p = 0; p < colors.size(); ++p) {
            ASSERT_EQ(colors[p], p == place ? rgb(255, 0, 0) : rgb(63, 0, 0)) << place << ' ' << p;
        }
    }
}

TEST(CompositeOfMapsTest, NoPixelsGiveNoPicture)
{
    CompositeScene scene(0, 0, {{}});
    scene.start({channelOf("red")});
    EXPECT_TRUE(scene.mapPicture().isNull());
    EXPECT_TRUE(scene.picture().isNull());
}

// A reference that goes step by step over whole matrices. A value may differ by one, as the reference's products may be
// fused with their sums before they are truncated.
std::vector<int> plainLevels(const CompositeScene& scene)
{
    const long long n = scene.data.num_rows();
    XTNT::Matrix<double> m(scene.data.num_cols(), n);
    XTNT::Matrix<double> colors(n, 3);
    for (int i = 0; i < n; ++i) {
        const CompositeLayer& layer = scene.layers[i];
        const CompositeChannel& channel = layer.channel;
        for (long long p = 0; p < scene.data.num_cols(); ++p) {
            const double v = (scene.data[i][p] - layer.minimum) / (layer.maximum - layer.minimum);
            m[p][i] = v > channel.maxFraction ? 1.0
                      : channel.minFraction >= v
                          ? 0.0
                          : (v - channel.minFraction) / (channel.maxFraction - channel.minFraction);
            if (channel.logScale) {
                m[p][i] = (std::log10(m[p][i] + 0.001) + 3.0) / (std::log10(1.001) + 3.0);
            }
        }
        const double weight = layer.checked == Qt::Unchecked ? 0.0 : channel.brightness;
        colors[i][0] = channel.color.red() * weight;
        colors[i][1] = channel.color.green() * weight;
        colors[i][2] = channel.color.blue() * weight;
    }
    const XTNT::Matrix<double> mixed = m * colors;
    const double largest = mixed.storage.Max();
    std::vector<int> levels;
    for (long long i = 0; i < mixed.storage.size(); ++i) {
        levels.push_back(largest > 0.0 ? static_cast<int>(mixed.storage[i] / largest * 255.0) : 0);
    }
    return levels;
}

RC_GTEST_PROP(CompositeLaw, WindowThenMixtureThenStretch, ())
{
    const int width = *rc::gen::inRange(1, 9);
    const int height = *rc::gen::inRange(1, 9);
    const int n = *rc::gen::inRange(1, 5);
    std::vector<std::vector<double>> rows;
    QList<CompositeChannel> channels;
    for (int i = 0; i < n; ++i) {
        rows.push_back(*rc::gen::container<std::vector<double>>(
            static_cast<std::size_t>(width * height),
            rc::gen::map(rc::gen::inRange(1, 1000), [](int v) { return v / 8.0; })));
        const double low = *rc::gen::inRange(0, 60) / 100.0;
        CompositeChannel channel =
            channelOf("red", low, low + *rc::gen::inRange(1, 40) / 100.0, *rc::gen::inRange(0, 101) / 100.0);
        channel.color = QColor(*rc::gen::inRange(0, 256), *rc::gen::inRange(0, 256), *rc::gen::inRange(0, 256));
        channel.logScale = *rc::gen::arbitrary<bool>();
        channels.append(channel);
    }
    CompositeScene scene(width, height, rows);
    scene.start(channels);
    for (int i = 0; i < n; ++i) {
        scene.layers[i].checked = *rc::gen::element(Qt::Checked, Qt::Unchecked);
    }
    const std::vector<int> expected = plainLevels(scene);
    std::size_t k = 0;
    for (const unsigned color : colorsOf(scene.mapPicture())) {
        for (const int actual : {qRed(color), qGreen(color), qBlue(color)}) {
            RC_ASSERT(std::abs(actual - expected[k]) <= 1);
            ++k;
        }
    }
}

// ---- Enlarging and blending ----

TEST(CompositePictureTest, NarrowMapIsEnlargedWithItsAspectRatioKept)
{
    CompositeScene scene(4, 8, {std::vector<double>(32, 1.0)});
    scene.start({channelOf("red")});
    const QImage picture = scene.picture();
    EXPECT_EQ(picture.size(), QSize(240, 480));
    EXPECT_EQ(picture.format(), QImage::Format_RGB32);
    EXPECT_THAT(colorsOf(picture), Each(rgb(255, 0, 0)));
}

TEST(CompositePictureTest, EnlargedPixelsRunSmoothlyIntoEachOther)
{
    CompositeScene scene(2, 1, {{0.0, 1.0}});
    scene.start({channelOf("red")});
    const QImage picture = scene.picture();
    ASSERT_EQ(picture.size(), QSize(480, 240));
    EXPECT_EQ(colorAt(picture, 0, 0), 0U);
    EXPECT_EQ(colorAt(picture, 479, 0), rgb(255, 0, 0));
    EXPECT_NEAR(qRed(picture.pixel(240, 0)), 128, 4);
    EXPECT_NEAR(qRed(picture.pixel(180, 0)), 64, 4);
}

TEST(CompositePictureTest, LargeMapKeepsItsPixels)
{
    CompositeScene scene(500, 600, {std::vector<double>(300000, 1.0)});
    scene.data[0][3] = 0.5;
    scene.start({channelOf("red")});
    const QImage picture = scene.picture();
    EXPECT_EQ(picture.size(), QSize(500, 600));
    EXPECT_EQ(colorAt(picture, 3, 0), rgb(127, 0, 0));
    EXPECT_EQ(colorAt(picture, 2, 0), rgb(255, 0, 0));
}

TEST(CompositePictureTest, FrameTakesTheBackgroundInAlsoWhenItIsOff)
{
    CompositeScene scene(4, 4, {std::vector<double>(16, 1.0)});
    scene.start({channelOf("red")}, constantImage(700, 520, 3.0));
    scene.layers.last().checked = Qt::Unchecked;
    EXPECT_EQ(scene.picture().size(), QSize(520, 520));
    scene.layers.last().checked = Qt::Checked;
    EXPECT_EQ(scene.picture().size(), QSize(700, 520));
}

TEST(CompositePictureTest, AllComponentsOffShowsTheGreyBackgroundOverBlack)
{
    CompositeScene scene(1, 1, {{1.0}});
    scene.start({channelOf("red")}, stepBackground());
    scene.layers[0].checked = Qt::Unchecked;
    scene.layers.last().channel.brightness = 0.5;
    const QImage picture = scene.picture();
    EXPECT_EQ(colorAt(picture, 0, 0), 0U);
    EXPECT_EQ(colorAt(picture, 1, 0), rgb(51, 51, 51));
    EXPECT_EQ(colorAt(picture, 2, 0), rgb(127, 127, 127));
}

TEST(CompositePictureTest, BlendWeighsMapsAndGreyAndTruncates)
{
    CompositeScene scene(1, 1, {{1.0}});
    scene.start({channelOf("#ff8000")}, stepBackground()); // 255, 128, 0
    scene.layers.last().channel.brightness = 0.25;
    const QImage picture = scene.picture();
    EXPECT_EQ(colorAt(picture, 0, 0), rgb(191, 96, 0));   // 191.25
    EXPECT_EQ(colorAt(picture, 1, 0), rgb(216, 121, 25)); // + 25.5
    EXPECT_EQ(colorAt(picture, 2, 0), rgb(255, 159, 63)); // + 63.75
}

TEST(CompositePictureTest, BackgroundsColorIsNotUsed)
{
    CompositeScene scene(1, 1, {{1.0}});
    scene.start({channelOf("red")}, stepBackground());
    const QImage picture = scene.picture();
    scene.layers.last().channel.color = QColor("blue");
    EXPECT_EQ(scene.picture(), picture);
}

TEST(CompositePictureTest, BackgroundOffIsNotBlendedWhateverItsBrightness)
{
    CompositeScene scene(1, 1, {{1.0}});
    scene.start({channelOf("red")}, stepBackground());
    scene.layers.last().channel.brightness = 1.0;
    for (const Qt::CheckState state : {Qt::Unchecked, Qt::PartiallyChecked}) {
        scene.layers.last().checked = state;
        EXPECT_THAT(colorsOf(scene.picture()), Each(rgb(255, 0, 0)));
    }
}

TEST(CompositePictureTest, BeyondTheEnlargedMapsTheBackgroundLiesOverBlack)
{
    CompositeScene scene(4, 8, {std::vector<double>(32, 1.0)});
    scene.start({channelOf("red")}, constantImage(2, 2, 1.0));
    CompositeLayer& layer = scene.layers.last();
    layer.maximum = 2.0;
    layer.minimum = 0.0;
    layer.channel.brightness = 0.5;
    const QImage picture = scene.picture();
    ASSERT_EQ(picture.size(), QSize(480, 480));
    EXPECT_EQ(colorAt(picture, 239, 479), rgb(191, 63, 63)); // 127.5 + 63.75
    EXPECT_EQ(colorAt(picture, 240, 0), rgb(63, 63, 63));
    EXPECT_EQ(colorAt(picture, 479, 479), rgb(63, 63, 63));
}

TEST(CompositePictureTest, BackgroundsWindowAndLogScale)
{
    CompositeScene scene(1, 1, {{1.0}});
    CILImage photo = constantImage(480, 480, 100.0);
    for (std::size_t i = 0; i < 100; ++i) {
        photo.setValue(i, static_cast<double>(i));
    }
    photo.RefreshImageStats();
    scene.start({channelOf("red")}, photo);
    scene.layers[0].checked = Qt::Unchecked;
    CompositeChannel& channel = scene.layers.last().channel;
    channel.brightness = 1.0;
    channel.minFraction = 0.25;
    channel.maxFraction = 0.75;
    const QImage linear = scene.picture();
    EXPECT_EQ(colorAt(linear, 25, 0), 0U);
    EXPECT_EQ(colorAt(linear, 50, 0), rgb(127, 127, 127));
    EXPECT_EQ(colorAt(linear, 75, 0), rgb(255, 255, 255));
    EXPECT_EQ(colorAt(linear, 76, 0), rgb(255, 255, 255));
    channel.logScale = true;
    const QImage logarithmic = scene.picture();
    EXPECT_EQ(colorAt(logarithmic, 25, 0), 0U);
    // (log10(0.501) + 3) / 3.000434 of 255
    EXPECT_EQ(colorAt(logarithmic, 50, 0), rgb(229, 229, 229));
    EXPECT_EQ(colorAt(logarithmic, 76, 0), rgb(255, 255, 255));
}

TEST(CompositePictureTest, SmallBackgroundIsInterpolatedToTheFrame)
{
    CompositeScene scene(1, 1, {{1.0}});
    CILImage photo = constantImage(2, 1, 100.0);
    photo.setValue(0, 0.0);
    photo.RefreshImageStats();
    scene.start({channelOf("red")}, photo);
    scene.layers[0].checked = Qt::Unchecked;
    scene.layers.last().channel.brightness = 1.0;
    const QImage picture = scene.picture();
    ASSERT_EQ(picture.size(), QSize(480, 480));
    EXPECT_EQ(colorAt(picture, 0, 0), 0U);
    EXPECT_EQ(colorAt(picture, 479, 479), rgb(255, 255, 255));
    EXPECT_NEAR(qRed(picture.pixel(240, 100)), 128, 1); // between the two centres
    EXPECT_EQ(colorAt(picture, 240, 0), colorAt(picture, 240, 479));
}

TEST(CompositePictureTest, WideBackgroundOfLittleHeightCoversTheFrameToo)
{
    CompositeScene scene(1, 1, {{1.0}});
    CILImage photo = constantImage(640, 100, 100.0);
    photo.setValue(0, 0.0);
    photo.RefreshImageStats();
    scene.start({channelOf("red")}, photo);
    scene.layers[0].checked = Qt::Unchecked;
    scene.layers.last().channel.brightness = 1.0;
    const QImage picture = scene.picture();
    ASSERT_EQ(picture.size(), QSize(640, 480));
    EXPECT_EQ(colorAt(picture, 639, 479), rgb(255, 255, 255));
}

TEST(CompositePictureTest, BackgroundOfAnyTypeOfPixels)
{
    for (const ORVDataTypes type : {ORVTYPE_BYTE, ORVTYPE_USHORT, ORVTYPE_INT, ORVTYPE_FLOAT}) {
        CompositeScene scene(1, 1, {{1.0}});
        CILImage photo = stepBackground();
        ASSERT_EQ(photo.ChangeType(type), EIL_SUCCESS);
        photo.RefreshImageStats();
        scene.start({channelOf("red")}, photo);
        scene.layers[0].checked = Qt::Unchecked;
        scene.layers.last().channel.brightness = 0.5;
        EXPECT_EQ(colorAt(scene.picture(), 1, 0), rgb(51, 51, 51)) << type;
        EXPECT_EQ(photo.dataType(), type);
    }
}

TEST(CompositePictureTest, NaNInTheBackgroundIsBlackAndAConstantOneIsDark)
{
    CompositeScene scene(1, 1, {{1.0}});
    CILImage photo = stepBackground();
    photo.setValue(5, kNaN);
    scene.start({channelOf("red")}, photo);
    EXPECT_EQ(colorAt(scene.picture(), 5, 0), 0U);
    EXPECT_NE(colorAt(scene.picture(), 6, 0), 0U);

    scene.start({channelOf("red")}, constantImage(480, 480, 7.0));
    scene.layers.last().channel.brightness = 0.5;
    EXPECT_THAT(colorsOf(scene.picture()), Each(rgb(127, 0, 0)));
}

TEST(CompositePictureTest, WithoutABackgroundThereIsNothingToBlend)
{
    CompositeScene scene(1, 1, {{1.0}});
    scene.start({channelOf("red")});
    scene.layers.last().checked = Qt::Checked;
    EXPECT_THAT(colorsOf(scene.picture()), Each(rgb(255, 0, 0)));
}

} // namespace
