// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EngineEnums.h"
#include "engine/colorResponse.h"

#include <gtest/gtest.h>

namespace {

// Five wavelengths, 400 to 800 nm; at index i red is i / 10, green is i / 100, blue is i / 1000.
sColorSensorRGBspecFileParameters fiveColours()
{
    sColorSensorRGBspecFileParameters curve;
    for (int i = 0; i < 5; ++i) {
        curve.wavelength.append(400.0 + 100.0 * i);
        curve.red.append(i / 10.0);
        curve.green.append(i / 100.0);
        curve.blue.append(i / 1000.0);
        ++curve.n;
    }
    return curve;
}

TEST(KeyLimitsTest, EmissionKeysCountByTheirWavelengths)
{
    const KeyLimits limits = keyLimits({"720/30", "500nm", "640nm"}, SPECTRUMAXIS_EMISSION);
    EXPECT_EQ(limits.lowest, 500.0);
    EXPECT_EQ(limits.highest, 720.0);
}

TEST(KeyLimitsTest, AnEmissionKeyThatIsNoWavelengthCountsByItsNumber)
{
    EXPECT_EQ(keyLimits({"500nm", "Open"}, SPECTRUMAXIS_EMISSION).lowest, 0.0);
    EXPECT_EQ(keyLimits({"500nm", "42"}, SPECTRUMAXIS_EMISSION).lowest, 42.0);
}

TEST(KeyLimitsTest, AnExcitationKeyThatIsNoWavelengthIsPassedOver)
{
    const KeyLimits limits = keyLimits({"Block", "535nm", "42", "605"}, SPECTRUMAXIS_EXCITATION);
    EXPECT_EQ(limits.lowest, 535.0);
    EXPECT_EQ(limits.highest, 605.0);
}

TEST(KeyLimitsTest, TimesKeepAllTheirDigits)
{
    const KeyLimits limits = keyLimits({"0", "1200", "30"}, SPECTRUMAXIS_TIME);
    EXPECT_EQ(limits.lowest, 0.0);
    EXPECT_EQ(limits.highest, 1200.0);
}

TEST(KeyLimitsTest, WithoutKeysTheyStayCrossed)
{
    const KeyLimits limits = keyLimits({}, SPECTRUMAXIS_EMISSION);
    EXPECT_GT(limits.lowest, limits.highest);
    EXPECT_EQ(limits.highest, 0.0);
}

TEST(CurveIndexTest, TheLimitsGetTheEndsOfTheCurve)
{
    const sColorSensorRGBspecFileParameters curve = fiveColours();
    for (const KeyLimits& limits : {KeyLimits{640.0, 660.0}, KeyLimits{640.0, 641.0}, KeyLimits{0.0, 3600.0}}) {
        EXPECT_EQ(curveIndex(curve, limits.lowest, limits), 0);
        EXPECT_EQ(curveIndex(curve, limits.highest, limits), 4);
    }
}

TEST(CurveIndexTest, PlacesAreTruncated)
{
    const sColorSensorRGBspecFileParameters curve = fiveColours();
    const KeyLimits limits{500.0, 700.0};
    EXPECT_EQ(curveIndex(curve, 549.0, limits), 0); // 0.98
    EXPECT_EQ(curveIndex(curve, 550.0, limits), 1);
    EXPECT_EQ(curveIndex(curve, 599.0, limits), 1); // 1.98
    EXPECT_EQ(curveIndex(curve, 600.0, limits), 2);
    EXPECT_EQ(curveIndex(curve, 699.0, limits), 3); // 3.98
}

TEST(CurveIndexTest, ValuesBeyondTheLimitsTakeTheNearerEnd)
{
    const sColorSensorRGBspecFileParameters curve = fiveColours();
    EXPECT_EQ(curveIndex(curve, 300.0, {500.0, 700.0}), 0);
    EXPECT_EQ(curveIndex(curve, 900.0, {500.0, 700.0}), 4);
}

TEST(CurveIndexTest, LimitsThatCoincideStayInsideTheCurve)
{
    const sColorSensorRGBspecFileParameters curve = fiveColours();
    EXPECT_EQ(curveIndex(curve, 500.0, {500.0, 500.0}), 0);
    EXPECT_EQ(curveIndex(curve, 400.0, {500.0, 500.0}), 0);
    EXPECT_EQ(curveIndex(curve, 600.0, {500.0, 500.0}), 4);
}

TEST(ResponseWeightsTest, TwoWavelengthsGetTheFirstAndTheLastColour)
{
    const XTNT::Matrix<double> weights =
        responseWeights(fiveColours(), {{"640", "720"}, {"640", "700"}}, SPECTRUMAXIS_EMISSION, {700.0, 720.0});
    ASSERT_EQ(weights.num_rows(), 2);
    ASSERT_EQ(weights.num_cols(), 3);
    EXPECT_EQ(weights[0][0], 0.4);
    EXPECT_EQ(weights[0][1], 0.04);
    EXPECT_EQ(weights[0][2], 0.004);
    for (int c = 0; c < 3; ++c) {
        EXPECT_EQ(weights[1][c], 0.0);
    }
}

TEST(ResponseWeightsTest, AlongExcitationTheFirstKeyCounts)
{
    const XTNT::Matrix<double> weights = responseWeights(
        fiveColours(), {{"500", "720"}, {"600", "720"}, {"700", "720"}}, SPECTRUMAXIS_EXCITATION, {500.0, 700.0});
    EXPECT_EQ(weights[0][0], 0.0);
    EXPECT_EQ(weights[1][0], 0.2);
    EXPECT_EQ(weights[2][0], 0.4);
}

TEST(ResponseWeightsTest, AlongTimeTheSecondKeyCounts)
{
    const XTNT::Matrix<double> weights =
        responseWeights(fiveColours(), {{"700", "0"}, {"500", "30"}}, SPECTRUMAXIS_TIME, {0.0, 30.0});
    EXPECT_EQ(weights[0][0], 0.0);
    EXPECT_EQ(weights[1][0], 0.4);
}

TEST(ResponseWeightsTest, ACurveWithoutSpanGivesNoColour)
{
    sColorSensorRGBspecFileParameters curve;
    curve.n = 1;
    curve.wavelength = {500.0};
    curve.red = curve.green = curve.blue = {1.0};
    const XTNT::Matrix<double> weights =
        responseWeights(curve, {{"640", "700"}, {"640", "720"}}, SPECTRUMAXIS_EMISSION, {700.0, 720.0});
    ASSERT_EQ(weights.num_rows(), 2);
    EXPECT_EQ(weights.norm(0), 0.0);
}

TEST(ResponseWeightsTest, AnEmptySelectionGivesNoRows)
{
    EXPECT_EQ(responseWeights(fiveColours(), {}, SPECTRUMAXIS_EMISSION, KeyLimits()).num_rows(), 0);
}

} // namespace
