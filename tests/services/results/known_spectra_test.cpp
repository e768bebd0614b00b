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
