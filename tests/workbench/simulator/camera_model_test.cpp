// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/CameraModel.h"

#include "XTNT/xtnt_parallel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace {

constexpr int kSide = 256;
constexpr double kPixels = static_cast<double>(kSide) * kSide;
constexpr double kSigmas = 5.0;

std::vector<double> flat(double counts)
{
    return std::vector<double>(static_cast<std::size_t>(kPixels), counts);
}

bool samePixels(const CILImage& a, const CILImage& b)
{
    return a.pixelCount() == b.pixelCount() && std::memcmp(a.m_pData, b.m_pData, 2 * a.pixelCount()) == 0;
}

struct PhotonTransfer : public ::testing::TestWithParam<double>
{
};

} // namespace

// The photon transfer of a linear camera: variance in counts = signal / gain + (read noise / gain)^2 + 1/12 of
// rounding.
TEST_P(PhotonTransfer, VarianceFollowsTheSignal)
{
    constexpr double kGain = 2.0;
    constexpr double kReadNoise = 10.0;
    constexpr double kOffset = 300.0;
    const double signal = GetParam();
    const CameraModel camera{kGain, kReadNoise, kOffset, 5};
    const CILImage image = camera.expose(flat(signal), kSide, 0, nullptr);
    ASSERT_EQ(image.dataType(), ORVTYPE_USHORT);
    double mean = 0.0;
    for (std::size_t i = 0; i < image.pixelCount(); ++i) {
        mean += image.value(i) / kPixels;
    }
    double variance = 0.0;
    for (std::size_t i = 0; i < image.pixelCount(); ++i) {
        variance += (image.value(i) - mean) * (image.value(i) - mean) / (kPixels - 1.0);
    }
    const double expected = signal / kGain + kReadNoise * kReadNoise / (kGain * kGain) + 1.0 / 12.0;
    EXPECT_NEAR(mean, signal + kOffset, kSigmas * std::sqrt(expected / kPixels));
    EXPECT_NEAR(variance, expected, kSigmas * expected * std::sqrt(2.0 / kPixels));
}

INSTANTIATE_TEST_SUITE_P(Signals, PhotonTransfer, ::testing::Values(0.0, 3.0, 200.0, 20000.0));

TEST(CameraModelTest, BrightPixelsStopAtSixteenBitsAndSayso)
{
    const CameraModel camera{1.0, 10.0, 300.0, 1};
    bool saturated = true;
    camera.expose(flat(30000.0), kSide, 0, &saturated);
    EXPECT_FALSE(saturated);
    const CILImage image = camera.expose(flat(90000.0), kSide, 0, &saturated);
    EXPECT_TRUE(saturated);
    EXPECT_EQ(image.Max(), 65535.0);
    EXPECT_EQ(image.Min(), 65535.0);
}

TEST(CameraModelTest, ReadNoiseBelowTheBiasStopsAtZero)
{
    const CameraModel camera{1.0, 100.0, 0.0, 1};
    EXPECT_EQ(camera.expose(flat(0.0), kSide, 0, nullptr).Min(), 0.0);
}

TEST(CameraModelTest, ThreadsDoNotChangeTheNoise)
{
    const CameraModel camera{1.0, 10.0, 300.0, 9};
    XTNT::setThreadCount(1);
    const CILImage one = camera.expose(flat(500.0), kSide, 3, nullptr);
    XTNT::setThreadCount(3);
    const CILImage three = camera.expose(flat(500.0), kSide, 3, nullptr);
    XTNT::setThreadCount(0);
    EXPECT_TRUE(samePixels(one, three));
}

TEST(CameraModelTest, ImagesAndSeedsDrawDifferentNoise)
{
    const CameraModel camera{1.0, 10.0, 300.0, 9};
    const CameraModel other{1.0, 10.0, 300.0, 10};
    const CILImage image = camera.expose(flat(500.0), kSide, 0, nullptr);
    EXPECT_FALSE(samePixels(image, camera.expose(flat(500.0), kSide, 1, nullptr)));
    EXPECT_FALSE(samePixels(image, other.expose(flat(500.0), kSide, 0, nullptr)));
}

TEST(CameraModelTest, ExactImageHoldsTheExpectation)
{
    std::vector<double> counts = flat(0.0);
    counts[5] = 1234.5678;
    const CILImage image = exactImage(counts, kSide);
    ASSERT_EQ(image.dataType(), ORVTYPE_FLOAT);
    EXPECT_EQ(image.floats()[5], 1234.5678F);
    EXPECT_EQ(image.floats()[0], 0.0F);
}
