// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/SpectraLikeness.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

XTNT::Matrix<double> matrixOf(const std::vector<std::vector<double>>& rows)
{
    XTNT::Matrix<double> matrix(static_cast<long long>(rows.size()), static_cast<long long>(rows[0].size()));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t j = 0; j < rows[i].size(); ++j) {
            matrix[static_cast<long long>(i)][static_cast<long long>(j)] = rows[i][j];
        }
    }
    return matrix;
}

constexpr double rounding = 1e-12;

} // namespace

TEST(SpectraLikenessTest, SpectraThatShareNothingAmplifyNothing)
{
    const SpectraLikeness likeness = SpectraLikeness::of(matrixOf({{2.0, 0.0, 0.0}, {0.0, 0.0, 4.0}}));
    EXPECT_NEAR(likeness.condition, 1.0, rounding);
    EXPECT_NEAR(likeness.amplifications[0], 1.0, rounding);
    EXPECT_NEAR(likeness.deviations[0], 0.5, rounding);
    EXPECT_NEAR(likeness.deviations[1], 0.25, rounding);
    EXPECT_EQ(likeness.cosine, 0.0);
}

// Of two spectra at an angle with cosine c the inverse of their products has 1 / (1 - c^2) on its diagonal.
TEST(SpectraLikenessTest, TwoSpectraAmplifyByTheSineOfTheirAngle)
{
    for (const double angle : {1.0, 0.3, 0.01}) {
        const SpectraLikeness likeness =
            SpectraLikeness::of(matrixOf({{3.0, 0.0}, {2.0 * std::cos(angle), 2.0 * std::sin(angle)}}));
        EXPECT_NEAR(likeness.amplifications[0] * std::sin(angle), 1.0, 1e-9);
        EXPECT_NEAR(likeness.deviations[1] * 2.0 * std::sin(angle), 1.0, 1e-9);
        EXPECT_NEAR(likeness.cosine, std::cos(angle), rounding);
        // Singular values of the two unit vectors: sqrt(1 +- c).
        const double c = std::cos(angle);
        EXPECT_NEAR(likeness.condition / std::sqrt((1.0 + c) / (1.0 - c)), 1.0, 1e-6);
    }
}

TEST(SpectraLikenessTest, ThePairMostAlikeIsFoundAndTheThirdIsNoWorseForIt)
{
    const SpectraLikeness likeness =
        SpectraLikeness::of(matrixOf({{0.0, 0.0, 1.0}, {1.0, 0.01, 0.0}, {1.0, 0.0, 0.0}}));
    EXPECT_EQ(likeness.first, 1);
    EXPECT_EQ(likeness.second, 2);
    EXPECT_NEAR(likeness.amplifications[0], 1.0, rounding);
    EXPECT_GT(likeness.amplifications[1], 90.0);
}

TEST(SpectraLikenessTest, DependentSpectraHaveNoLimit)
{
    const SpectraLikeness twice = SpectraLikeness::of(matrixOf({{1.0, 2.0, 0.0}, {2.0, 4.0, 0.0}, {0.0, 0.0, 1.0}}));
    EXPECT_TRUE(std::isinf(twice.condition));
    EXPECT_TRUE(std::isinf(twice.amplifications[0]));
    EXPECT_TRUE(std::isinf(twice.amplifications[1]));
    EXPECT_NEAR(twice.amplifications[2], 1.0, rounding);
    const SpectraLikeness zero = SpectraLikeness::of(matrixOf({{1.0, 2.0}, {0.0, 0.0}}));
    EXPECT_TRUE(std::isinf(zero.amplifications[1]));
    EXPECT_NEAR(zero.amplifications[0], 1.0, rounding);
    // More spectra than values.
    EXPECT_TRUE(std::isinf(SpectraLikeness::of(matrixOf({{1.0, 0.0}, {0.0, 1.0}, {1.0, 1.0}})).condition));
}

TEST(SpectraLikenessTest, ASpectrumAloneIsLikeNone)
{
    const SpectraLikeness likeness = SpectraLikeness::of(matrixOf({{1.0, 1.0}}));
    EXPECT_EQ(likeness.first, -1);
    EXPECT_TRUE(std::isnan(likeness.cosine));
    EXPECT_NEAR(likeness.condition, 1.0, rounding);
}
