// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/BackgroundRule.h"

#include "services/importer/ImporterFixture.h"

#include <cmath>
#include <limits>

namespace {

const double notANumber = std::numeric_limits<double>::quiet_NaN();

class BackgroundRuleTest : public ImporterFixture
{
protected:
    static BackgroundRule rule(const char* text)
    {
        BackgroundRule made;
        QString reason;
        EXPECT_TRUE(made.parse(text, &reason)) << qPrintable(reason);
        return made;
    }
    double level(const char* text, const CILImage& image, const std::vector<bool>& invalid = {})
    {
        double found = notANumber;
        EXPECT_TRUE(rule(text).level(image, invalid, &found, &m_reason)) << qPrintable(m_reason);
        return found;
    }
    QString refusal(const char* text, const CILImage& image, const std::vector<bool>& invalid = {})
    {
        double found = 0.0;
        EXPECT_FALSE(rule(text).level(image, invalid, &found, &m_reason));
        return m_reason;
    }
    QString unreadable(const char* text)
    {
        BackgroundRule made;
        EXPECT_FALSE(made.parse(text, &m_reason)) << text;
        EXPECT_TRUE(made.isEmpty());
        return m_reason;
    }
    // 0 to 11, not in their order.
    static CILImage shuffled(ORVDataTypes type)
    {
        return makeImage(type, 4, 3, [](long x, long y) { return static_cast<double>((7 * (4 * y + x)) % 12); });
    }

    QString m_reason;
};

} // namespace

TEST_F(BackgroundRuleTest, APercentileLiesBetweenTheNearestPixels)
{
    for (const ORVDataTypes type : {ORVTYPE_BYTE, ORVTYPE_USHORT, ORVTYPE_INT, ORVTYPE_FLOAT, ORVTYPE_DOUBLE}) {
        EXPECT_EQ(level("percentile:0", shuffled(type)), 0.0);
        EXPECT_EQ(level("percentile:100", shuffled(type)), 11.0);
        EXPECT_EQ(level("percentile:50", shuffled(type)), 5.5);
        EXPECT_DOUBLE_EQ(level("percentile:1", shuffled(type)), 0.11);
    }
}

TEST_F(BackgroundRuleTest, OfOnePixelEachPercentileIsItself)
{
    const CILImage one = makeImage(ORVTYPE_USHORT, 1, 1, [](long, long) { return 42.0; });
    for (const char* text : {"percentile:0", "percentile:1", "percentile:50", "percentile:100", "rect:0,0,1,1"}) {
        EXPECT_EQ(level(text, one), 42.0) << text;
    }
}

TEST_F(BackgroundRuleTest, OfAConstantImageItIsTheConstant)
{
    const CILImage constant = makeImage(ORVTYPE_FLOAT, 5, 4, [](long, long) { return -3.25; });
    EXPECT_EQ(level("percentile:1", constant), -3.25);
    EXPECT_EQ(level("rect:1,1,2,2", constant), -3.25);
}

TEST_F(BackgroundRuleTest, ARegionGivesItsMean)
{
    const CILImage ramp =
        makeImage(ORVTYPE_USHORT, 4, 3, [](long x, long y) { return static_cast<double>(10 * y + x); });
    EXPECT_EQ(level("rect:1,0,2,2", ramp), (1.0 + 2.0 + 11.0 + 12.0) / 4.0);
    EXPECT_EQ(level("RECT:0,0,4,3", ramp), 11.5);
    EXPECT_EQ(level("ellipse:1,1,1,1", ramp), 11.0);
    EXPECT_EQ(level("polygon:0,0,1,0,1,1,0,1", ramp), 0.0);
}

TEST_F(BackgroundRuleTest, PixelsWithoutAValueAreLeftOut)
{
    const CILImage holes = makeImage(ORVTYPE_FLOAT, 3, 1, [](long x, long) {
        return x == 0 ? notANumber : x == 1 ? HUGE_VAL : 7.0;
    });
    EXPECT_EQ(level("percentile:0", holes), 7.0);
    EXPECT_EQ(level("percentile:100", holes), 7.0);
    EXPECT_EQ(level("rect:0,0,3,1", holes), 7.0);
    EXPECT_EQ(level("percentile:0", shuffled(ORVTYPE_BYTE),
                    {true, false, false, false, false, false, false, false, false, false, false, false}),
              1.0);
    EXPECT_EQ(refusal("rect:0,0,2,1", holes), "no pixel in the region of the background, rect:0,0,2,1, has a value");
    EXPECT_EQ(refusal("percentile:1", holes, {true, true, true}), "no pixel has a value, so there is no background");
}

TEST_F(BackgroundRuleTest, ARegionBeyondTheImageIsRefused)
{
    const CILImage image = shuffled(ORVTYPE_BYTE);
    EXPECT_EQ(refusal("rect:2,1,3,1", image),
              "the region of the background, rect:2,1,3,1, reaches beyond the image of 4 x 3 pixels");
    refusal("rect:-1,0,2,2", image);
    refusal("rect:100,100,5,5", image);
    // Between the centres of pixels there is none.
    EXPECT_TRUE(refusal("rect:0.6,0.6,0.3,0.3", image).startsWith("no pixel in the region"));
}

TEST_F(BackgroundRuleTest, WhatIsNoRuleIsRefusedWithWhatThereIs)
{
    EXPECT_EQ(unreadable("percentile:101"), "\"percentile:101\" is not a percentile from 0 to 100");
    unreadable("percentile:-1");
    unreadable("percentile:nan");
    unreadable("percentile:");
    unreadable("percentile:1,5");
    EXPECT_TRUE(unreadable("").startsWith("it takes percentile:P, or a region such as rect:X,Y,W,H: "));
    unreadable("rect:1,2,3");
    unreadable("rect:0,0,0,5");
    unreadable("rect:0,0,nan,5");
    unreadable("mean");
}

TEST_F(BackgroundRuleTest, TheTextIsReadBack)
{
    EXPECT_EQ(rule(" percentile: 0.5 ").text(), "percentile:0.5");
    EXPECT_EQ(rule("rect:1,2,3,4").text(), "rect:1,2,3,4");
    EXPECT_EQ(BackgroundRule().text(), "");
}
