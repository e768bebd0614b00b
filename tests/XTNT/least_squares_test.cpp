// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/least_squares.h"

#include "XTNT/xtnt_parallel.h"
#include "support/Numbers.h"
#include "support/NumericLaws.h"

#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

using testing::ElementsAre;
using testsupport::areClose;
using testsupport::elements;
using testsupport::isLeastSquaresSolution;
using testsupport::matrixOf;
using testsupport::randomMatrix;
using XTNT::Matrix;
using XTNT::solveForLeft;
using XTNT::solveForRight;

TEST(LeastSquaresTest, SquareMatrixTakesTheSolvePathForAnyRightHandSide)
{
    const Matrix<double> A = matrixOf({{2, 1}, {1, 3}});
    for (const long long columns : {1, 2, 7}) {
        const Matrix<double> X = randomMatrix(2, columns, 1);
        EXPECT_TRUE(areClose(solveForLeft(A, A * X), X));
    }
    // Only the solve path calls a singular matrix a failure.
    EXPECT_TRUE(solveForLeft(matrixOf({{1, 1}, {1, 1}}), matrixOf({{1}, {1}})).empty());
    EXPECT_FALSE(solveForLeft(matrixOf({{1, 1}, {1, 1}, {1, 1}}), matrixOf({{1}, {1}, {1}})).empty());
}

TEST(LeastSquaresTest, TallMatrixGivesTheLeastSquaresSolution)
{
    const Matrix<double> A = matrixOf({{1, 0}, {0, 1}, {1, 1}});
    const Matrix<double> X = solveForLeft(A, matrixOf({{1}, {2}, {0}}));
    EXPECT_TRUE(areClose(X, matrixOf({{0}, {1}})));
}

TEST(LeastSquaresTest, RightSideSolverIsTheTransposeOfTheLeftOne)
{
    for (const long long bands : {3, 5, 24}) {
        const Matrix<double> S = randomMatrix(5, bands, 2);
        const Matrix<double> D = randomMatrix(3000, bands, 3);
        const Matrix<double> expected = transpose(solveForLeft(transpose(S), transpose(D)));
        EXPECT_TRUE(areClose(solveForRight(D, S), expected, 1e-10)) << bands << " bands";
    }
}

TEST(LeastSquaresTest, RightSideSolverLeavesItsArgumentsAlone)
{
    const Matrix<double> S = randomMatrix(3, 8, 2);
    const Matrix<double> D = randomMatrix(20, 8, 3);
    const auto before = elements(D);
    const auto spectra = elements(S);
    const Matrix<double> C = solveForRight(D, S);
    EXPECT_EQ(elements(D), before);
    EXPECT_EQ(elements(S), spectra);
    EXPECT_EQ(*D.storage.refCount, 1);
}

TEST(LeastSquaresTest, FailureIsAnEmptyResult)
{
    const Matrix<double> D = randomMatrix(10, 4, 1);
    EXPECT_TRUE(solveForRight(D, Matrix<double>()).empty());
    EXPECT_TRUE(solveForRight(Matrix<double>(), D).empty());
    EXPECT_TRUE(solveForRight(Matrix<double>(0, 4), randomMatrix(2, 4, 2)).empty());
    EXPECT_TRUE(solveForRight(D, randomMatrix(2, 5, 2)).empty());
    EXPECT_TRUE(solveForRight(D, Matrix<double>(4, 4)).empty());
    EXPECT_TRUE(solveForLeft(D, randomMatrix(9, 2, 1)).empty());
}

TEST(LeastSquaresTest, SpectrumThatIsNotFiniteIsAFailure)
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double odd : {std::nan(""), infinity, -infinity}) {
        Matrix<double> S = randomMatrix(2, 4, 2);
        S[1][1] = odd;
        EXPECT_TRUE(solveForRight(randomMatrix(30, 4, 1), S).empty());
        EXPECT_TRUE(solveForLeft(transpose(S), randomMatrix(4, 3, 1)).empty());
    }
}

TEST(LeastSquaresTest, PixelThatIsNotFiniteSpoilsNoOther)
{
    Matrix<double> D = randomMatrix(3000, 4, 1);
    const Matrix<double> S = randomMatrix(2, 4, 2);
    const Matrix<double> expected = solveForRight(D, S);
    D[1234][3] = std::nan("");
    const Matrix<double> C = solveForRight(D, S);
    for (long long p = 0; p < D.M; ++p) {
        if (p == 1234) {
            EXPECT_TRUE(std::isnan(C[p][0]) && std::isnan(C[p][1]));
        } else {
            ASSERT_EQ(elements(C.row(p)), elements(expected.row(p)));
        }
    }
}

TEST(LeastSquaresTest, SameBitsOnAnyNumberOfThreads)
{
    const Matrix<double> S = randomMatrix(5, 24, 2);
    const Matrix<double> D = randomMatrix(20000, 24, 3);
    XTNT::setThreadCount(1);
    const auto one = elements(solveForRight(D, S));
    const auto oneLeft = elements(solveForLeft(D, D));
    XTNT::setThreadCount(3);
    EXPECT_EQ(elements(solveForRight(D, S)), one);
    EXPECT_EQ(elements(solveForLeft(D, D)), oneLeft);
    XTNT::setThreadCount(0);
}

RC_GTEST_PROP(LeastSquaresLaw, ResidualOfEveryPixelIsOrthogonalToTheSpectra, (std::uint32_t seed))
{
    const int components = *rc::gen::inRange(1, 9);
    const int bands = *rc::gen::inRange(components + 1, 40);
    const int pixels = *rc::gen::inRange(1, 50);
    const Matrix<double> S = randomMatrix(components, bands, seed, 0, 1);
    const Matrix<double> D = randomMatrix(pixels, bands, seed + 1);
    const auto verdict = isLeastSquaresSolution(transpose(S), transpose(D), transpose(solveForRight(D, S)), 1e-10);
    RC_LOG() << verdict.message();
    RC_ASSERT(static_cast<bool>(verdict));
}
