// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/MaskLight.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

namespace {

constexpr int side = 64;

std::vector<double> imageOf(const std::function<double(int x, int y)>& value)
{
    std::vector<double> light;
    for (int i = 0; i < side * side; ++i) {
        light.push_back(value(i % side, i / side));
    }
    return light;
}

std::vector<int> maskOf(const std::function<bool(int x, int y)>& inside)
{
    std::vector<int> mask;
    for (int i = 0; i < side * side; ++i) {
        if (inside(i % side, i / side)) {
            mask.push_back(i);
        }
    }
    return mask;
}

bool isLeft(int x, int)
{
    return x < side / 2;
}

double leftLight(int x, int y)
{
    return isLeft(x, y) ? 30.0 : 0.0;
}

} // namespace

TEST(MaskLightTest, AMaskOverTheSubjectHasAllOfItsLight)
{
    const MaskLight found = MaskLight::of(imageOf(leftLight), side, maskOf(isLeft));
    EXPECT_DOUBLE_EQ(found.share, 1.0);
    EXPECT_DOUBLE_EQ(found.area, 0.5);
}

TEST(MaskLightTest, AMaskBesideItHasNone)
{
    const MaskLight found = MaskLight::of(imageOf(leftLight), side, maskOf([](int x, int y) { return !isLeft(x, y); }));
    EXPECT_DOUBLE_EQ(found.share, 0.0);
    EXPECT_DOUBLE_EQ(found.area, 0.5);
}

TEST(MaskLightTest, AMaskOverHalfOfTheSubjectHasHalfOfItsLight)
{
    const MaskLight found = MaskLight::of(imageOf(leftLight), side, maskOf([](int x, int) { return x >= side / 4; }));
    EXPECT_DOUBLE_EQ(found.share, 0.5);
    EXPECT_DOUBLE_EQ(found.area, 0.75);
}

// The camera's offset is nobody's light, and noise beside the subject adds up to none.
TEST(MaskLightTest, AnOffsetAndNoiseBesideTheSubjectAreNoLight)
{
    unsigned state = 1;
    const auto noise = [&state] {
        state = state * 1664525U + 1013904223U;
        return static_cast<double>(state >> 16) / 65536.0 - 0.5;
    };
    const std::vector<double> light = imageOf([&](int x, int y) { return 500.0 + leftLight(x, y) + 8.0 * noise(); });
    EXPECT_GT(MaskLight::of(light, side, maskOf(isLeft)).share, 0.95);
}

TEST(MaskLightTest, WithoutLightOrPixelsNothingIsKnown)
{
    EXPECT_TRUE(std::isnan(MaskLight::of(imageOf([](int, int) { return 7.0; }), side, maskOf(isLeft)).share));
    EXPECT_TRUE(std::isnan(MaskLight::of({}, side, {}).share));
    EXPECT_TRUE(std::isnan(MaskLight::of({1.0, 2.0, 3.0}, 2, {0}).share));
    EXPECT_TRUE(std::isnan(MaskLight::of({1.0}, 0, {0}).share));
    EXPECT_DOUBLE_EQ(MaskLight::of({0.0, 1.0}, 2, {0, 5, -1}).area, 0.5);
}
