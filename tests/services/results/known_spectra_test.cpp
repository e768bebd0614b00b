// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/KnownSpectra.h"

#include <gtest/gtest.h>

#include <cmath>

TEST(KnownSpectraTest, InOneGroupItIsTheCosine)
{
    EXPECT_NEAR(cosineByGroups({1.0, 1.0}, {1.0, 0.0}, {0, 0}), std::sqrt(0.5), 1e-12);
    EXPECT_NEAR(cosineByGroups({3.0, 4.0}, {6.0, 8.0}, {0, 0}), 1.0, 1e-12);
}

// The same shape behind two excitations, of which the lamp favours one.
TEST(KnownSpectraTest, EachGroupHasAScaleOfItsOwn)
{
    EXPECT_NEAR(cosineByGroups({1.0, 2.0, 10.0, 20.0}, {1.0, 2.0, 1.0, 2.0}, {0, 0, 1, 1}), 1.0, 1e-12);
    // A group in which the source has no light stays unexplained: 1 of 1 + 4.
    EXPECT_NEAR(cosineByGroups({1.0, 2.0}, {1.0, 0.0}, {0, 1}), std::sqrt(0.2), 1e-12);
}

TEST(KnownSpectraTest, WhatIsDarkIsLikeNothing)
{
    EXPECT_TRUE(std::isnan(cosineByGroups({0.0, 0.0}, {1.0, 1.0}, {0, 0})));
    EXPECT_EQ(cosineByGroups({1.0, 1.0}, {0.0, 0.0}, {0, 0}), 0.0);
}

TEST(LikenessOfRestTest, AMissingSourceIsFoundByWhatTheOthersLeaveOfIt)
{
    XTNT::Matrix<double> spectra(1, 6, 1.0);
    const std::vector<double> missing = {1.0, 2.0, 3.0, 3.0, 2.0, 1.0};
    // What a flat spectrum leaves of it: less its mean of 2.
    const std::vector<double> rest = {-1.0, 0.0, 1.0, 1.0, 0.0, -1.0};
    const std::vector<int> one(6, 0);
    EXPECT_NEAR(likenessOfRest(rest, missing, one, spectra), 1.0, 1e-12);
    // By no negative factor, and beside one that the spectra explain.
    EXPECT_NEAR(likenessOfRest({1.0, 0.0, -1.0, -1.0, 0.0, 1.0}, missing, one, spectra), 0.0, 1e-12);
    EXPECT_NEAR(likenessOfRest(rest, std::vector<double>(6, 4.0), one, spectra), 0.0, 1e-6);
    EXPECT_NEAR(likenessOfRest(std::vector<double>(6, 0.0), missing, one, spectra), 0.0, 1e-12);
}

TEST(LikenessOfRestTest, EachGroupIsScaledByItselfAndTooFewImagesTellNothing)
{
    const XTNT::Matrix<double> none(0, 8);
    const std::vector<double> missing = {1.0, 2.0, 1.0, 0.5, 1.0, 3.0, 1.0, 0.5};
    const std::vector<double> rest = {5.0, 10.0, 5.0, 2.5, 1.0, 3.0, 1.0, 0.5};
    EXPECT_NEAR(likenessOfRest(rest, missing, {0, 0, 0, 0, 1, 1, 1, 1}, none), 1.0, 1e-12);
    EXPECT_LT(likenessOfRest(rest, missing, {0, 0, 0, 0, 0, 0, 0, 0}, none), 0.97);
    EXPECT_EQ(likenessOfRest({1.0, 2.0, 1.0}, {1.0, 2.0, 1.0}, {0, 0, 0}, XTNT::Matrix<double>(1, 3, 1.0)), 0.0);
}
