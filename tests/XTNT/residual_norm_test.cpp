// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/residual_norm.h"

#include "XTNT/xtnt_parallel.h"

#include "support/Numbers.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <limits>

using testsupport::randomMatrix;
using XTNT::Matrix;
using XTNT::residualNorm;
using XTNT::ResidualNorms;
using XTNT::residuals;

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();
// Roundings of a sum of squares of some thousand terms, halved by the root.
constexpr double tolerance = 100 * epsilon;

Matrix<double> scaled(const Matrix<double>& a, double factor)
{
    Matrix<double> result = a.deepCopy();
    for (long long i = 0; i < result.storage.n_; ++i) {
        result.storage[i] *= factor;
    }
    return result;
}

} // namespace

RC_GTEST_PROP(ResidualNormLaws, NormIsThatOfTheMatrixForEveryShape, (unsigned seed))
{
    const long long rows = *rc::gen::inRange(1, 700);
    const long long components = *rc::gen::inRange(1, 9);
    const long long bands = *rc::gen::inRange(1, 51);
    const Matrix<double> T = randomMatrix(rows, bands, seed);
    const Matrix<double> X = randomMatrix(rows, bands, seed + 1);
    const Matrix<double> C = randomMatrix(rows, components, seed + 2);
    const Matrix<double> S = randomMatrix(components, bands, seed + 3);
    const double expected = (T - C * S).norm(2);
    RC_ASSERT(std::abs(residualNorm(T, C, S) - expected) <= tolerance * expected);

    Matrix<double> fit = randomMatrix(3, 2, seed);
    Matrix<double> raw;
    const ResidualNorms norms = residuals(T, X, C, S, fit, raw);
    RC_ASSERT((fit - (T - C * S)).norm(0) <= tolerance * static_cast<double>(components));
    RC_ASSERT((raw - (X - C * S)).norm(0) <= tolerance * static_cast<double>(components));
    RC_ASSERT(std::abs(norms.fit - fit.norm(2)) <= tolerance * norms.fit);
    RC_ASSERT(std::abs(norms.raw - raw.norm(2)) <= tolerance * norms.raw);
    const ResidualNorms alone = XTNT::residualNorms(T, X, C, S);
    RC_ASSERT(alone.fit == norms.fit);
    RC_ASSERT(alone.raw == norms.raw);
}

TEST(ResidualNormTest, LeavesTheRangeOfNumbersOnlyWithTheResult)
{
    const Matrix<double> T = randomMatrix(300, 7, 1);
    const Matrix<double> X = randomMatrix(300, 7, 2);
    const Matrix<double> C = randomMatrix(300, 3, 3);
    const Matrix<double> S = randomMatrix(3, 7, 4);
    const double expected = residualNorm(T, C, S);
    const double expectedRaw = residualNorm(X, C, S);
    for (double factor : {1e-300, 1e-200, 1e-160, 1e-150, 1e150, 1e160, 1e200, 1e300}) {
        EXPECT_NEAR(1, residualNorm(scaled(T, factor), scaled(C, factor), S) / (expected * factor), tolerance)
            << factor;
        Matrix<double> fit;
        Matrix<double> raw;
        const ResidualNorms norms = residuals(scaled(T, factor), scaled(X, factor), scaled(C, factor), S, fit, raw);
        EXPECT_NEAR(1, norms.fit / (expected * factor), tolerance) << factor;
        EXPECT_NEAR(1, norms.raw / (expectedRaw * factor), tolerance) << factor;
        const ResidualNorms alone = XTNT::residualNorms(scaled(T, factor), scaled(X, factor), scaled(C, factor), S);
        EXPECT_EQ(alone.fit, norms.fit) << factor;
        EXPECT_EQ(alone.raw, norms.raw) << factor;
    }
}

TEST(ResidualNormTest, PerfectFitGivesZero)
{
    const Matrix<double> C = randomMatrix(100, 1, 5);
    const Matrix<double> S = randomMatrix(1, 9, 6);
    EXPECT_EQ(0, residualNorm(C * S, C, S));
    Matrix<double> fit;
    Matrix<double> raw;
    EXPECT_EQ(0, residuals(C * S, C * S, C, S, fit, raw).fit);
    EXPECT_EQ(0, XTNT::residualNorms(C * S, C * S, C, S).fit);
}

TEST(ResidualNormTest, EmptyTargetGivesZero)
{
    EXPECT_EQ(0, residualNorm(Matrix<double>(0, 4), Matrix<double>(0, 2), Matrix<double>(2, 4)));
    Matrix<double> fit(2, 2);
    Matrix<double> raw;
    EXPECT_EQ(
        0, residuals(Matrix<double>(0, 4), Matrix<double>(0, 4), Matrix<double>(0, 2), Matrix<double>(2, 4), fit, raw)
               .raw);
    EXPECT_EQ(0, fit.num_rows());
    EXPECT_EQ(0, XTNT::residualNorms(fit, fit, Matrix<double>(0, 2), Matrix<double>(2, 4)).raw);
}

TEST(ResidualNormTest, ElementsThatAreNotFiniteTravelThrough)
{
    const Matrix<double> C = randomMatrix(100, 2, 7);
    const Matrix<double> S = randomMatrix(2, 6, 8);
    Matrix<double> T = randomMatrix(100, 6, 9);
    T[50][5] = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(std::isinf(residualNorm(T, C, S)));
    T[99][1] = std::nan("");
    EXPECT_TRUE(std::isnan(residualNorm(T, C, S)));
    Matrix<double> fit;
    Matrix<double> raw;
    const ResidualNorms norms = residuals(T, randomMatrix(100, 6, 10), C, S, fit, raw);
    EXPECT_TRUE(std::isnan(norms.fit));
    EXPECT_TRUE(std::isnan(norms.raw)) << "the sum of the steps, not their meaning";
    EXPECT_TRUE(std::isnan(fit[99][1]));
    EXPECT_TRUE(std::isfinite(fit[99][0]));
}

TEST(ResidualNormTest, ResidualsAreNewMatrices)
{
    const Matrix<double> T = randomMatrix(20, 3, 11);
    const Matrix<double> C = randomMatrix(20, 2, 12);
    const Matrix<double> S = randomMatrix(2, 3, 13);
    Matrix<double> fit = T;
    Matrix<double> raw = T;
    residuals(T, T, C, S, fit, raw);
    EXPECT_NE(T.storage.data, fit.storage.data);
    EXPECT_NE(T.storage.data, raw.storage.data);
    EXPECT_EQ(testsupport::elements(randomMatrix(20, 3, 11)), testsupport::elements(T));
}

TEST(ResidualNormTest, NumberOfThreadsDoesNotChangeABit)
{
    const Matrix<double> T = randomMatrix(10007, 11, 14);
    const Matrix<double> X = randomMatrix(10007, 11, 15);
    const Matrix<double> C = randomMatrix(10007, 5, 16);
    const Matrix<double> S = randomMatrix(5, 11, 17);
    XTNT::setThreadCount(1);
    Matrix<double> fit;
    Matrix<double> raw;
    const double one = residualNorm(T, C, S);
    const ResidualNorms norms = residuals(T, X, C, S, fit, raw);
    for (int threads : {2, 4}) {
        XTNT::setThreadCount(threads);
        EXPECT_EQ(one, residualNorm(T, C, S)) << threads;
        Matrix<double> otherFit;
        Matrix<double> otherRaw;
        const ResidualNorms others = residuals(T, X, C, S, otherFit, otherRaw);
        EXPECT_EQ(norms.fit, others.fit) << threads;
        EXPECT_EQ(norms.raw, others.raw) << threads;
        EXPECT_EQ(testsupport::elements(raw), testsupport::elements(otherRaw)) << threads;
    }
    XTNT::setThreadCount(0);
}
