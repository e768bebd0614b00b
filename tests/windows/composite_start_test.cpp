// SPDX-License-Identifier: GPL-3.0-or-later
// What a composite starts with, and what a choice of spot or background changes.
#include "windows/compositePicture.h"

#include "windows/CompositeScene.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

TEST(CompositeStartTest, RangesGoFromZeroToTheLargestElementOfTheRow)
{
    CompositeScene scene(2, 1, {{1.0, 7.0, 9.0, 2.0}, {-3.0, -2.0, -1.0, -4.0}}, {}, 2);
    const auto layers = compositeStartLayers(scene.maps(), {channelOf("red"), channelOf("blue")}, CILImage());
    ASSERT_EQ(layers.size(), 3);
    EXPECT_EQ(layers[0].minimum, 0.0);
    EXPECT_EQ(layers[0].maximum, 9.0);
    EXPECT_EQ(layers[1].minimum, 0.0);
    EXPECT_EQ(layers[1].maximum, -1.0);
    EXPECT_EQ(layers[0].checked, Qt::Checked);
    EXPECT_EQ(layers[2].checked, Qt::Checked);
}

TEST(CompositeStartTest, OnlyTissueInItsOwnColorIsDimmed)
{
    CompositeScene scene(1, 1, {{1.0}, {1.0}, {1.0}, {1.0}});
    CompositeChannel tissue = channelOf("lime", 0.1, 0.9, 0.7);
    tissue.label = "TissueAF_1";
    CompositeChannel redTissue = tissue;
    redTissue.color = QColor("red");
    CompositeChannel limeProbe = channelOf("lime", 0.1, 0.9, 0.7);
    CompositeChannel otherCase = tissue;
    otherCase.label = "tissueaf";
    const auto layers = compositeStartLayers(scene.maps(), {tissue, redTissue, limeProbe, otherCase}, CILImage());
    EXPECT_EQ(layers[0].channel.brightness, 0.3);
    EXPECT_EQ(layers[1].channel.brightness, 1.0);
    EXPECT_EQ(layers[2].channel.brightness, 1.0);
    EXPECT_EQ(layers[3].channel.brightness, 1.0);
    EXPECT_EQ(layers[0].channel.minFraction, 0.1);
    EXPECT_EQ(layers[0].channel.maxFraction, 0.9);
    EXPECT_EQ(layers[0].channel.label, "TissueAF_1");
}

TEST(CompositeStartTest, PhotographIsTheLastLayerAsItsPaletteShowsIt)
{
    CompositeScene scene(1, 1, {{1.0}});
    CILImage photo = stepBackground();
    photo.setValue(0, 20.0); // 20 to 100
    photo.RefreshImageStats();
    photo.getPalette()->SetImageMinMax(40.0, 80.0);
    const CompositeLayer layer = compositeStartLayers(scene.maps(), {channelOf("red")}, photo).last();
    EXPECT_EQ(layer.channel.label, "Photograph");
    EXPECT_EQ(layer.channel.color, QColor("white"));
    EXPECT_EQ(layer.channel.brightness, 0.35);
    EXPECT_EQ(layer.channel.minFraction, 0.25);
    EXPECT_EQ(layer.channel.maxFraction, 0.75);
    EXPECT_FALSE(layer.channel.logScale);
    EXPECT_EQ(layer.minimum, 20.0);
    EXPECT_EQ(layer.maximum, 100.0);
}

TEST(CompositeStartTest, PhotographWithoutLimitsOrWithoutWidthIsShownWhole)
{
    CompositeScene scene(1, 1, {{1.0}});
    CILImage constant = constantImage(4, 4, 9.0);
    constant.getPalette()->SetImageMinMax(0.0, 5.0);
    for (const CILImage& photo : {stepBackground(), constant, CILImage()}) {
        const CompositeLayer layer = compositeStartLayers(scene.maps(), {channelOf("red")}, photo).last();
        EXPECT_EQ(layer.channel.minFraction, 0.0);
        EXPECT_EQ(layer.channel.maxFraction, 1.0);
    }
}

TEST(CompositeStartTest, SizesMustMatch)
{
    CompositeScene scene(3, 2, {{1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 5, 6}});
    EXPECT_TRUE(compositeSizesMatch(scene.maps(), 2));
    EXPECT_FALSE(compositeSizesMatch(scene.maps(), 1));
    scene.spots = 2;
    EXPECT_FALSE(compositeSizesMatch(scene.maps(), 2));
    scene.pixelIndices = {0, 2, 4};
    EXPECT_TRUE(compositeSizesMatch(scene.maps(), 2));
    scene.pixelIndices = {0, 2};
    EXPECT_FALSE(compositeSizesMatch(scene.maps(), 2));
    EXPECT_EQ(compositeSizeMismatchText(), "SpUnmixCompositeWnd: input data size mismatch for composite image.");
}

TEST(CompositeSpotTest, RangesBecomeThoseOfTheSpotAndTheBackgroundStays)
{
    CompositeScene scene(2, 1, {{8.0, 4.0, 1.0, 2.0}, {0.0, 3.0, std::numeric_limits<double>::quiet_NaN(), 5.0}}, {},
                         2);
    scene.start({channelOf("red"), channelOf("blue")}, stepBackground());
    EXPECT_TRUE(takeCompositeSpot(scene.maps(), 1, scene.layers));
    EXPECT_EQ(scene.layers[0].maximum, 2.0);
    EXPECT_EQ(scene.layers[1].maximum, 5.0);
    EXPECT_EQ(scene.layers[2].maximum, 100.0);
    EXPECT_TRUE(takeCompositeSpot(scene.maps(), 0, scene.layers));
    EXPECT_EQ(scene.layers[0].maximum, 8.0);
    EXPECT_EQ(scene.layers[1].maximum, 3.0);
}

TEST(CompositeSpotTest, NothingHappensWithOneSpotOrBeyondTheLast)
{
    CompositeScene one(2, 1, {{8.0, 4.0}});
    one.start({channelOf("red")});
    one.layers[0].maximum = 77.0;
    EXPECT_FALSE(takeCompositeSpot(one.maps(), 0, one.layers));
    EXPECT_EQ(one.layers[0].maximum, 77.0);
    CompositeScene two(1, 1, {{8.0, 4.0}}, {}, 2);
    two.start({channelOf("red")});
    two.layers[0].maximum = 77.0;
    EXPECT_FALSE(takeCompositeSpot(two.maps(), 2, two.layers));
    EXPECT_FALSE(takeCompositeSpot(two.maps(), -1, two.layers));
    EXPECT_EQ(two.layers[0].maximum, 77.0);
}

TEST(CompositeBackgroundTest, XRayBringsItsNameAndRangeAndKeepsTheControls)
{
    CompositeScene scene(1, 1, {{1.0}});
    CILImage photo = stepBackground();
    photo.getPalette()->SetImageMinMax(25.0, 75.0);
    scene.start({channelOf("red")}, photo);
    scene.layers[0].checked = Qt::Unchecked;
    CILImage xray = constantImage(480, 480, 2000.0);
    xray.setValue(0, 1000.0);
    xray.setValue(1, 1500.0);
    xray.RefreshImageStats();
    scene.background = xray;
    takeCompositeBackground(scene.layers, xray, "X-Ray");
    const CompositeLayer& layer = scene.layers.last();
    EXPECT_EQ(layer.channel.label, "X-Ray");
    EXPECT_EQ(layer.minimum, 1000.0);
    EXPECT_EQ(layer.maximum, 2000.0);
    EXPECT_EQ(layer.channel.minFraction, 0.25);
    EXPECT_EQ(layer.channel.maxFraction, 0.75);
    EXPECT_EQ(layer.channel.brightness, 0.35);
    const QImage picture = scene.picture();
    EXPECT_EQ(colorAt(picture, 0, 0), 0U);
    EXPECT_EQ(colorAt(picture, 1, 0), rgb(44, 44, 44)); // 127.5 * 0.35 = 44.6
    EXPECT_EQ(colorAt(picture, 2, 0), rgb(89, 89, 89)); // 255 * 0.35 = 89.25
}

TEST(CompositeLabelsTest, FromTheLastComponentToTheFirstWithoutTheBackground)
{
    CompositeScene scene(1, 1, {{1.0}, {1.0}});
    scene.start({channelOf("red"), channelOf("blue")});
    const auto labels = compositeLabels(scene.layers);
    ASSERT_EQ(labels.size(), 2);
    EXPECT_EQ(labels[0], qMakePair(QString("blue"), QColor("blue")));
    EXPECT_EQ(labels[1], qMakePair(QString("red"), QColor("red")));
    EXPECT_TRUE(compositeLabels({}).isEmpty());
}

} // namespace
