// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/ColorBar.h"
#include "platform/orvimage/ImageSupport.h"
#include "platform/orvimage/TickMarks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <limits>

using orvimage::tickLabels;
using orvimage::tickValues;

TEST(TickTest, ValuesAreRoundAndWithin)
{
    EXPECT_THAT(tickValues(0, 1, 6), near(1e-12, {0, 0.2, 0.4, 0.6, 0.8, 1.0}));
    EXPECT_THAT(tickValues(3, 47, 6), near(1e-12, {10, 20, 30, 40}));
    EXPECT_THAT(tickValues(-1e-5, 2e-5, 4), near(1e-17, {-1e-5, 0, 1e-5, 2e-5}));
    EXPECT_THAT(tickValues(0, 3.2e7, 7), near(1e-3, {0, 5e6, 1e7, 1.5e7, 2e7, 2.5e7, 3e7}));
}

TEST(TickTest, RangesWithoutWidth)
{
    EXPECT_EQ((std::vector<double>{5}), tickValues(5, 5, 6));
    EXPECT_EQ((std::vector<double>{5}), tickValues(5, 3, 6));
    EXPECT_EQ((std::vector<double>{0}), tickValues(0, std::numeric_limits<double>::infinity(), 6));
    EXPECT_TRUE(tickValues(std::numeric_limits<double>::quiet_NaN(), 1, 6).empty());
}

RC_GTEST_PROP(TickLaws, NeverTooManyNeverOutside, ())
{
    const double minimum = *rc::gen::inRange(-100000, 100000) * std::pow(10.0, *rc::gen::inRange(-12, 12));
    const double span = *rc::gen::inRange(1, 100000) * std::pow(10.0, *rc::gen::inRange(-6, 12));
    const int most = *rc::gen::inRange(2, 12);
    const std::vector<double> values = tickValues(minimum, minimum + span, most);
    RC_ASSERT(!values.empty());
    RC_ASSERT(static_cast<int>(values.size()) <= most);
    for (const double v : values) {
        RC_ASSERT(v >= minimum - 1e-8 * span);
        RC_ASSERT(v <= minimum + span + 1e-8 * span);
    }
}

TEST(TickTest, LabelsHaveTheDecimalsOfTheStep)
{
    EXPECT_EQ((QStringList{"0.0", "0.5", "1.0"}), tickLabels({0, 0.5, 1}).texts);
    EXPECT_EQ((QStringList{"100", "200"}), tickLabels({100, 200}).texts);
    EXPECT_EQ(0, tickLabels({100, 200}).exponent);
    EXPECT_EQ((QStringList{"-0.02", "0.00", "0.02"}), tickLabels({-0.02, -0.0, 0.02}).texts);
}

TEST(TickTest, LargeAndSmallNumbersShareAPowerOfTen)
{
    const orvimage::TickLabels large = tickLabels({0, 5e6, 1e7, 1.5e7});
    EXPECT_EQ(7, large.exponent);
    EXPECT_EQ((QStringList{"0.0", "0.5", "1.0", "1.5"}), large.texts);
    const orvimage::TickLabels small = tickLabels({2e-9, 4e-9});
    EXPECT_EQ(-9, small.exponent);
    EXPECT_EQ((QStringList{"2", "4"}), small.texts);
    EXPECT_EQ(0, tickLabels({0}).exponent);
    EXPECT_EQ((QStringList{"0"}), tickLabels({0}).texts);
}

TEST(TickTest, ExponentsAreReadable)
{
    EXPECT_EQ(QString(), orvimage::exponentText(0));
    EXPECT_EQ(QString::fromUtf8("×10⁷"), orvimage::exponentText(7));
    EXPECT_EQ(QString::fromUtf8("×10⁻¹²"), orvimage::exponentText(-12));
}

TEST(ColorBarTest, PositionsFollowTheScale)
{
    CILPalette palette;
    EXPECT_DOUBLE_EQ(0.25, orvimage::colorBarPosition(palette, 3, 2, 6));
    EXPECT_DOUBLE_EQ(0.0, orvimage::colorBarPosition(palette, -9, 2, 6));
    EXPECT_DOUBLE_EQ(1.0, orvimage::colorBarPosition(palette, 9, 2, 6));
    EXPECT_DOUBLE_EQ(0.0, orvimage::colorBarPosition(palette, 2, 2, 2));
    palette.setLogScale(1);
    EXPECT_DOUBLE_EQ(std::log10(5.5), orvimage::colorBarPosition(palette, 4, 2, 6));
}

TEST(ColorBarTest, TheColourAtATickIsTheColourOfItsValue)
{
    for (const bool logarithmic : {false, true}) {
        CILPalette palette;
        palette.setCLUTinfo(CILPalette::colorTableIndex("Lumen"), true, logarithmic);
        orvimage::ColorBarOptions options;
        options.orientation = Qt::Horizontal;
        options.unitLines = QStringList{"Counts"};
        const int length = 512;
        const QImage bar = orvimage::drawColorBar(palette, 0, 10, length, options);
        ASSERT_GT(bar.width(), length);
        // The bar begins where its frame does: the first dark pixel of a row through its middle.
        int left = 0;
        while (bar.pixel(left, 5) == qRgb(255, 255, 255)) {
            ++left;
        }
        for (const double value : {1.0, 5.0, 9.0}) {
            const int x =
                left + static_cast<int>(std::lround(orvimage::colorBarPosition(palette, value, 0, 10) * (length - 1)));
            const QRgb expected = palette.map(value, 0, 10);
            EXPECT_NEAR(qGreen(expected), qGreen(bar.pixel(x, 5)), 3) << value;
            EXPECT_NEAR(qBlue(expected), qBlue(bar.pixel(x, 5)), 3) << value;
        }
    }
}

TEST(ColorBarTest, APictureKeepsItsPixelsAndGetsTheBarBesideOrUnderIt)
{
    QImage picture(300, 200, QImage::Format_ARGB32);
    picture.fill(qRgb(1, 2, 3));
    orvimage::ColorBarOptions options;
    const QImage beside = orvimage::withColorBar(picture, CILPalette(), 0, 1, options);
    EXPECT_GT(beside.width(), 300);
    EXPECT_EQ(200, beside.height());
    EXPECT_EQ(qRgb(1, 2, 3), beside.pixel(299, 199));
    options.orientation = Qt::Horizontal;
    const QImage under = orvimage::withColorBar(picture, CILPalette(), 0, 1, options);
    EXPECT_EQ(300, under.width());
    EXPECT_GT(under.height(), 200);
    EXPECT_TRUE(orvimage::withColorBar(QImage(), CILPalette(), 0, 1, options).isNull());
}

TEST(ColorBarTest, TextIsDrawn)
{
    const auto darkPixels = [](const QStringList& unit) {
        orvimage::ColorBarOptions options;
        options.unitLines = unit;
        const QImage bar = orvimage::drawColorBar(CILPalette(), 0, 5e6, 300, options);
        int dark = 0;
        for (int y = 0; y < bar.height(); ++y) {
            for (int x = 30; x < bar.width(); ++x) {
                dark += qGray(bar.pixel(x, y)) < 100 ? 1 : 0;
            }
        }
        return dark;
    };
    EXPECT_GT(darkPixels({}), 50) << "numbers; is a font installed?";
    EXPECT_GT(darkPixels({"Radiance", "p/s/cm^2/sr"}), darkPixels({}) + 50);
}

TEST(ColorBarTest, DegenerateRangesAreDrawnToo)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const Qt::Orientation orientation : {Qt::Vertical, Qt::Horizontal}) {
        orvimage::ColorBarOptions options;
        options.orientation = orientation;
        EXPECT_FALSE(orvimage::drawColorBar(CILPalette(), 3, 3, 100, options).isNull());
        EXPECT_FALSE(orvimage::drawColorBar(CILPalette(), nan, nan, 100, options).isNull());
        EXPECT_FALSE(orvimage::drawColorBar(CILPalette(), 0, 1, -5, options).isNull());
    }
}

TEST(ColorBarTest, TipsInTheColoursOfTheEndsTellOfValuesBeyond)
{
    CILPalette palette;
    palette.setColors({QColor(0, 0, 255), QColor(255, 0, 0)});
    for (const Qt::Orientation orientation : {Qt::Vertical, Qt::Horizontal}) {
        orvimage::ColorBarOptions options;
        options.orientation = orientation;
        const auto count = [&](bool above, bool below, QRgb color) {
            options.above = above;
            options.below = below;
            const QImage bar = orvimage::drawColorBar(palette, 0.0, 1.0, 200, options);
            int pixels = 0;
            for (int y = 0; y < bar.height(); ++y) {
                for (int x = 0; x < bar.width(); ++x) {
                    pixels += bar.pixel(x, y) == color ? 1 : 0;
                }
            }
            return pixels;
        };
        const QRgb low = qRgb(0, 0, 255);
        const QRgb high = qRgb(255, 0, 0);
        EXPECT_GT(count(true, false, high), count(false, false, high) + 20);
        EXPECT_EQ(count(true, false, low), count(false, false, low));
        EXPECT_GT(count(false, true, low), count(false, false, low) + 20);
        EXPECT_EQ(count(false, true, high), count(false, false, high));
    }
}
