// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/corrcoef.h"

#include "support/Numbers.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

using testsupport::randomMatrix;
using testsupport::vectorOf;
using XTNT::Vector;

namespace {

double correlation(Vector<double> a, Vector<double> b)
{
    return XTNT::corrcoef(a, b);
}

} // namespace

TEST(CorrcoefTest, ValueWorkedOutByHand)
{
    // Deviations (-1, 0, 1) and (-4/3, -1/3, 5/3): 3 / sqrt(2 * 42/9).
    EXPECT_NEAR(correlation(vectorOf({1, 2, 3}), vectorOf({1, 2, 4})), 3 / std::sqrt(2 * 42.0 / 9), 1e-15);
}

TEST(CorrcoefTest, LinearRelationIsOneOrMinusOneAndNeverBeyond)
{
    EXPECT_NEAR(correlation(vectorOf({1, 2, 3}), vectorOf({10, 20, 30})), 1, 1e-15);
    EXPECT_NEAR(correlation(vectorOf({1, 2, 3}), vectorOf({3, 2, 1})), -1, 1e-15);
    EXPECT_GE(correlation(vectorOf({0.1, 0.2, 0.7}), vectorOf({-0.1, -0.2, -0.7})), -1);
    EXPECT_LE(correlation(vectorOf({0.1, 0.2, 0.7}), vectorOf({0.1, 0.2, 0.7})), 1);
}

TEST(CorrcoefTest, WithoutVariationLengthOrFiniteElementsIsZero)
{
    const Vector<double> v = vectorOf({1, 2, 3});
    EXPECT_EQ(correlation(v, vectorOf({0.1, 0.1, 0.1})), 0);
    EXPECT_EQ(correlation(vectorOf({0, 0, 0}), v), 0);
    EXPECT_EQ(correlation(v, vectorOf({1, 2})), 0);
    EXPECT_EQ(correlation(Vector<double>(), Vector<double>()), 0);
    EXPECT_EQ(correlation(vectorOf({4}), vectorOf({5})), 0);
    for (const double odd : {std::nan(""), std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(correlation(v, vectorOf({1, odd, 3})), 0);
        EXPECT_EQ(correlation(vectorOf({odd, 1, 3}), v), 0);
    }
}

TEST(CorrcoefTest, ScaleAndOffsetDoNotMatter)
{
    const Vector<double> a = vectorOf({1, 5, 2, 7});
    const Vector<double> b = vectorOf({3, 1, 4, 1});
    const double expected = correlation(a, b);
    EXPECT_NEAR(correlation(a * 1e300, b * 1e-300), expected, 1e-14);
    EXPECT_NEAR(correlation(a, vectorOf({1003, 1001, 1004, 1001})), expected, 1e-12);
    EXPECT_NEAR(correlation(a * -1.0, b), -expected, 1e-14);
    EXPECT_NEAR(correlation(vectorOf({-1.7e308, 1.7e308}), vectorOf({0, 1})), 1, 1e-15);
}

RC_GTEST_PROP(CorrcoefLaw, SymmetricAndWithinBounds, (std::uint32_t seed))
{
    const int n = *rc::gen::inRange(2, 50);
    const Vector<double> a = randomMatrix(1, n, seed).row(0);
    const Vector<double> b = randomMatrix(1, n, seed + 1).row(0);
    RC_ASSERT(correlation(a, b) == correlation(b, a));
    RC_ASSERT(std::abs(correlation(a, b)) <= 1);
}
