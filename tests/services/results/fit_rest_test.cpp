// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/FitRest.h"

#include "support/Numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using testsupport::matrixOf;
using XTNT::Matrix;

TEST(FitRestTest, ThePixelTheImageAndTheSpectrumOfAMissingSourceAreFound)
{
    // One spectrum (1 1 0); the last pixel has 3 of (0 0 1) beside it.
    const Matrix<double> data = matrixOf({{2.0, 2.0, 0.0}, {4.0, 4.0, 0.0}, {1.0, 1.0, 3.0}});
    const FitRest rest = FitRest::of(data, matrixOf({{2.0, 4.0, 1.0}}), matrixOf({{1.0, 1.0, 0.0}}));
    ASSERT_EQ(rest.ofRows.size(), 3U);
    EXPECT_DOUBLE_EQ(rest.ofRows[0], 0.0);
    EXPECT_DOUBLE_EQ(rest.ofRows[2], std::sqrt(3.0));
    EXPECT_EQ(rest.ofImages, (std::vector<double>{0.0, 0.0, std::sqrt(3.0)}));
    EXPECT_EQ(rest.spectrum, (std::vector<double>{0.0, 0.0, 9.0}));
}

TEST(FitRestTest, AFitThatHasMoreLightThanThePixelTellsOfNoMissingSource)
{
    const FitRest rest = FitRest::of(matrixOf({{1.0, 0.0}}), matrixOf({{2.0}}), matrixOf({{1.0, 0.5}}));
    EXPECT_DOUBLE_EQ(rest.ofRows[0], 1.0);
    EXPECT_EQ(rest.spectrum, (std::vector<double>{0.0, 0.0}));
}

TEST(FitRestTest, WithoutPixelsThereIsNoRest)
{
    const FitRest rest = FitRest::of(Matrix<double>(0, 3), Matrix<double>(1, 0), matrixOf({{1.0, 1.0, 1.0}}));
    EXPECT_TRUE(rest.ofRows.empty());
    EXPECT_EQ(rest.ofImages, std::vector<double>(rest.ofImages.size(), 0.0));
}
