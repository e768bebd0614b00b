// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/pictures/PictureStyle.h"

#include "services/support/SmallAnalysis.h"

#include "host/CILPalette.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

using Triple = std::array<double, 3>;
using Square = std::array<Triple, 3>;

constexpr double degree = 3.14159265358979323846 / 180.0;

double linear(int level)
{
    const double c = level / 255.0;
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

Triple times(const Square& m, const Triple& v)
{
    Triple product{};
    for (std::size_t i = 0; i < 3; ++i) {
        product[i] = m[i][0] * v[0] + m[i][1] * v[1] + m[i][2] * v[2];
    }
    return product;
}

Triple linearOf(const QColor& color)
{
    return {linear(color.red()), linear(color.green()), linear(color.blue())};
}

double luminance(const QColor& color)
{
    const Triple c = linearOf(color);
    return 0.2126 * c[0] + 0.7152 * c[1] + 0.0722 * c[2];
}

// What is seen with all cones, and without one kind of them: G. Machado, M. Oliveira and L. Fernandes, A
// physiologically-based model for simulation of color vision deficiency (2009), severity 1.
const std::array<Square, 4> sights = {
    {{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
     {{{0.152286, 1.052583, -0.204868}, {0.114503, 0.786281, 0.099216}, {-0.003882, -0.048116, 1.051998}}},
     {{{0.367322, 0.860646, -0.227968}, {0.280085, 0.672501, 0.047413}, {-0.011820, 0.042940, 0.968881}}},
     {{{1.255528, -0.076749, -0.178779}, {-0.078411, 0.930809, 0.147602}, {0.004733, 0.691367, 0.303900}}}}};

// CIE 1976 L*a*b* under D65 of linear sRGB.
Triple labOf(Triple c)
{
    for (double& channel : c) {
        channel = std::min(std::max(channel, 0.0), 1.0);
    }
    const Triple xyz = times({{{0.4124564 / 0.95047, 0.3575761 / 0.95047, 0.1804375 / 0.95047},
                               {0.2126729, 0.7151522, 0.0721750},
                               {0.0193339 / 1.08883, 0.1191920 / 1.08883, 0.9503041 / 1.08883}}},
                             c);
    Triple f{};
    for (std::size_t i = 0; i < 3; ++i) {
        f[i] = xyz[i] > 216.0 / 24389.0 ? std::cbrt(xyz[i]) : (24389.0 / 27.0 * xyz[i] + 16.0) / 116.0;
    }
    return {116.0 * f[1] - 16.0, 500.0 * (f[0] - f[1]), 200.0 * (f[1] - f[2])};
}

double hueOf(double a, double b)
{
    const double hue = std::atan2(b, a) / degree;
    return hue < 0.0 ? hue + 360.0 : hue;
}

// CIEDE2000, as in CIE 142 (2001).
double difference(const Triple& one, const Triple& two)
{
    const double chroma = (std::hypot(one[1], one[2]) + std::hypot(two[1], two[2])) / 2.0;
    const double g = 0.5 * (1.0 - std::sqrt(std::pow(chroma, 7) / (std::pow(chroma, 7) + std::pow(25.0, 7))));
    const double a1 = one[1] * (1.0 + g);
    const double a2 = two[1] * (1.0 + g);
    const double c1 = std::hypot(a1, one[2]);
    const double c2 = std::hypot(a2, two[2]);
    const double h1 = hueOf(a1, one[2]);
    const double h2 = hueOf(a2, two[2]);
    double turn = h2 - h1;
    turn += turn > 180.0 ? -360.0 : turn < -180.0 ? 360.0 : 0.0;
    const double dH = 2.0 * std::sqrt(c1 * c2) * std::sin(turn * degree / 2.0);
    const double l = (one[0] + two[0]) / 2.0;
    const double c = (c1 + c2) / 2.0;
    double h = (h1 + h2) / 2.0;
    if (std::abs(h1 - h2) > 180.0) {
        h += h1 + h2 < 360.0 ? 180.0 : -180.0;
    }
    const double t = 1.0 - 0.17 * std::cos((h - 30.0) * degree) + 0.24 * std::cos(2.0 * h * degree) +
                     0.32 * std::cos((3.0 * h + 6.0) * degree) - 0.20 * std::cos((4.0 * h - 63.0) * degree);
    const double rotation = -std::sin(60.0 * std::exp(-std::pow((h - 275.0) / 25.0, 2)) * degree) * 2.0 *
                            std::sqrt(std::pow(c, 7) / (std::pow(c, 7) + std::pow(25.0, 7)));
    const double lightness =
        (two[0] - one[0]) / (1.0 + 0.015 * std::pow(l - 50.0, 2) / std::sqrt(20.0 + std::pow(l - 50.0, 2)));
    const double colour = (c2 - c1) / (1.0 + 0.045 * c);
    const double hue = dH / (1.0 + 0.015 * c * t);
    return std::sqrt(lightness * lightness + colour * colour + hue * hue + rotation * colour * hue);
}

double leastDifference(int nColors)
{
    double least = HUGE_VAL;
    for (const Square& sight : sights) {
        for (int i = 0; i < nColors; ++i) {
            for (int k = 0; k < i; ++k) {
                least = std::min(least, difference(labOf(times(sight, linearOf(componentColor(i)))),
                                                   labOf(times(sight, linearOf(componentColor(k))))));
            }
        }
    }
    return least;
}

class PictureStyleTest : public SmallAnalysis
{
};

} // namespace

TEST(ComponentColorTest, DifferenceIsThatOfPublishedPairs)
{
    // Of the test data of G. Sharma, W. Wu and E. Dalal (2005): pairs 1, 16 and 25.
    EXPECT_NEAR(2.0425, difference({50.0, 2.6772, -79.7751}, {50.0, 0.0, -82.7485}), 1e-4);
    EXPECT_NEAR(4.3065, difference({50.0, 2.5, 0.0}, {50.0, 0.0, -2.5}), 1e-4);
    EXPECT_NEAR(1.2644, difference({60.2574, -34.0099, 36.2677}, {60.4626, -34.1751, 39.4387}), 1e-4);
}

TEST(ComponentColorTest, TheColourBlindTellThemApart)
{
    EXPECT_GE(leastDifference(7), 17.0);
    EXPECT_GE(leastDifference(12), 8.0);
}

TEST(ComponentColorTest, TheyAreSeenOnWhiteAndOnBlack)
{
    for (int i = 0; i < 12; ++i) {
        const double light = luminance(componentColor(i));
        EXPECT_GE(1.05 / (light + 0.05), 3.0) << i;
        EXPECT_GE((light + 0.05) / 0.05, 3.0) << i;
    }
}

TEST(ComponentColorTest, BehindTheTwelfthTheyBeginAgain)
{
    EXPECT_EQ(componentColor(12), componentColor(0));
    EXPECT_EQ(componentColor(31), componentColor(7));
}

TEST(TakeColorsTest, NamesInAnyCaseFromTheDarkEndUp)
{
    PictureRequest request;
    ASSERT_TRUE(takeColors("Viridis", &request));
    EXPECT_EQ(request.colorTable, CILPalette::colorTableIndex("Viridis"));
    EXPECT_FALSE(request.reversed);
    ASSERT_TRUE(takeColors("viridis:REVERSED", &request));
    EXPECT_EQ(request.colorTable, CILPalette::colorTableIndex("Viridis"));
    EXPECT_TRUE(request.reversed);
    ASSERT_TRUE(takeColors("cold to hot", &request));
    EXPECT_EQ(request.colorTable, CILPalette::colorTableIndex("Cold to hot"));
}

TEST(TakeColorsTest, RainbowStandsAsWindowsShowIt)
{
    PictureRequest request;
    ASSERT_TRUE(takeColors("rainbow", &request));
    EXPECT_TRUE(request.reversed);
    ASSERT_TRUE(takeColors("rainbow:reversed", &request));
    EXPECT_FALSE(request.reversed);
}

TEST(TakeColorsTest, AnotherNameIsRefusedAndChangesNothing)
{
    for (const char* name : {"", "jet", ":reversed", "viridis:", "viridis reversed"}) {
        PictureRequest request;
        EXPECT_FALSE(takeColors(name, &request)) << name;
        EXPECT_EQ(request.colorTable, -1);
    }
}

TEST(TakeColorsTest, EveryNameOnOfferIsTaken)
{
    PictureRequest request;
    EXPECT_TRUE(colorsOnOffer().contains("viridis"));
    for (const QString& name : colorsOnOffer()) {
        EXPECT_TRUE(takeColors(name, &request)) << qPrintable(name);
    }
}

TEST_F(PictureStyleTest, TheEnginesOwnIsThatOfItsSpectraAndItsSequence)
{
    analyse();
    engine().m_spectrumPlots[0]->settings.color = "lime";
    engine().m_spectrumPlots[1]->settings.color = "#123456";
    engine().m_nColorMap = 4;
    engine().m_bReverse = false;
    const PictureStyle style = pictureStyleOf(engine());
    EXPECT_EQ(style.components, (QList<QColor>{QColor("lime"), QColor("#123456")}));
    EXPECT_EQ(style.colorTable, 4);
    EXPECT_FALSE(style.reversed);
}

TEST_F(PictureStyleTest, FilesHaveColoursOfTheirOwnAndTheTableAskedFor)
{
    analyse();
    engine().m_nColorMap = 4;
    PictureRequest request;
    EXPECT_EQ(pictureStyleOf(engine(), request).colorTable, 4) << "the sequence's without another";
    ASSERT_TRUE(takeColors("cividis", &request));
    const PictureStyle style = pictureStyleOf(engine(), request);
    EXPECT_EQ(style.colorTable, CILPalette::colorTableIndex("Cividis"));
    EXPECT_FALSE(style.reversed);
    EXPECT_EQ(style.components, (QList<QColor>{componentColor(0), componentColor(1)}));
}
