// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/NoiseEstimate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

// Components of those squares over noise of 1 in each of the images.
std::vector<double> spectrumOf(std::vector<double> components, std::size_t images)
{
    components.resize(images, 1.0);
    return components;
}

} // namespace

TEST(NoiseEstimateTest, WhatStandsAboveAnEvenFloorIsCounted)
{
    const NoiseEstimate four = NoiseEstimate::ofEigenvalues(spectrumOf({1e6, 1e5, 1e4, 1e3}, 27));
    EXPECT_EQ(four.components, 4);
    EXPECT_NEAR(four.lackOfFit, 100.0 * std::sqrt(23.0 / (1111000.0 + 23.0)), 1e-12);
    EXPECT_EQ(NoiseEstimate::ofEigenvalues(spectrumOf({1e6}, 8)).components, 1);
    EXPECT_EQ(NoiseEstimate::ofEigenvalues(spectrumOf({1e6, 1e5, 50.0}, 12)).components, 3);
}

// As measured: noise that differs from image to image has a sloping floor.
TEST(NoiseEstimateTest, ASlopingFloorIsNotTakenForComponents)
{
    EXPECT_EQ(NoiseEstimate::ofEigenvalues({9300, 683, 19.8, 0.45, 0.33, 0.23, 0.16, 0.12, 0.09, 0.07, 0.05, 0.04})
                  .components,
              3);
}

TEST(NoiseEstimateTest, DataWithoutNoiseHaveTheirRank)
{
    EXPECT_EQ(NoiseEstimate::ofEigenvalues({100.0, 10.0, 0.0, 0.0, 0.0}).components, 2);
    EXPECT_EQ(NoiseEstimate::ofEigenvalues({100.0, 10.0, 0.0, 0.0, 0.0}).lackOfFit, 0.0);
    EXPECT_EQ(NoiseEstimate::ofEigenvalues({100.0, 10.0, 1.0, 2e-14, 1e-14, 1e-14}).components, 3);
}

TEST(NoiseEstimateTest, NothingIsToldOfWhatTellsNothing)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const std::vector<double>& eigenvalues :
         {std::vector<double>{}, {5.0}, {5.0, 1.0}, {0.0, 0.0, 0.0}, {5.0, nan, 1.0}}) {
        const NoiseEstimate estimate = NoiseEstimate::ofEigenvalues(eigenvalues);
        EXPECT_EQ(estimate.components, 0);
    }
}
