// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/xtnt_matrix.h"

#include "support/Numbers.h"
#include "support/NumericLaws.h"

#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

using testsupport::areClose;
using testsupport::elements;
using testsupport::isLeastSquaresSolution;
using testsupport::matrixOf;
using testsupport::randomMatrix;
using XTNT::Matrix;

namespace {

const double infinity = std::numeric_limits<double>::infinity();

Matrix<double> identity(long long n)
{
    Matrix<double> one(n, n);
    for (long long i = 0; i < n; ++i) {
        one[i][i] = 1;
    }
    return one;
}

struct Shape
{
    long long rows;
    long long columns;
    long long rightHandSides;
};

// Around the bounds of blocks, of their remainders and of the chunks of right-hand sides.
class LeastSquaresShapes : public testing::TestWithParam<Shape>
{
};

} // namespace

TEST_P(LeastSquaresShapes, ResidualIsOrthogonalToTheColumns)
{
    const Shape shape = GetParam();
    const Matrix<double> A = randomMatrix(shape.rows, shape.columns, 1);
    const Matrix<double> B = randomMatrix(shape.rows, shape.rightHandSides, 2);
    const auto before = elements(A);
    const auto right = elements(B);
    EXPECT_TRUE(isLeastSquaresSolution(A, B, A.lssolve(B)));
    EXPECT_EQ(elements(A), before);
    EXPECT_EQ(elements(B), right);
}

INSTANTIATE_TEST_SUITE_P(Sweep, LeastSquaresShapes,
                         testing::Values(Shape{2, 1, 1}, Shape{3, 2, 5}, Shape{24, 5, 1000}, Shape{255, 3, 4},
                                         Shape{256, 3, 4}, Shape{257, 3, 4}, Shape{385, 8, 2}, Shape{2000, 50, 3},
                                         Shape{100000, 5, 2}, Shape{1, 4, 3}, Shape{5, 24, 300}, Shape{3, 300, 2}));

TEST(LssolveTest, TallSolutionsMatchTheTruth)
{
    const Matrix<double> A = randomMatrix(100000, 5, 3);
    const Matrix<double> X = randomMatrix(5, 4, 4);
    EXPECT_TRUE(areClose(A.lssolve(A * X), X));
}

TEST(LssolveTest, WideSystemGivesTheSolutionOfSmallestNorm)
{
    const Matrix<double> X = matrixOf({{1, 1, 2}}).lssolve(matrixOf({{6}}));
    EXPECT_TRUE(areClose(X, matrixOf({{1}, {1}, {2}})));
}

TEST(LssolveTest, RankDeficientSystemGivesTheSolutionOfSmallestNorm)
{
    const Matrix<double> small = matrixOf({{1, 1}, {2, 2}, {3, 3}});
    EXPECT_TRUE(areClose(small.lssolve(matrixOf({{2}, {4}, {6}})), matrixOf({{1}, {1}})));

    Matrix<double> tall = randomMatrix(50000, 3, 5);
    for (long long i = 0; i < tall.M; ++i) {
        tall[i][2] = tall[i][0];
    }
    const Matrix<double> B = randomMatrix(50000, 2, 6);
    const Matrix<double> X = tall.lssolve(B);
    EXPECT_TRUE(isLeastSquaresSolution(tall, B, X));
    EXPECT_NEAR(X[0][0], X[2][0], 1e-10);
    EXPECT_LT(X.norm(0), 1);
}

TEST(LssolveTest, ZeroMatrixGivesZero)
{
    for (const long long rows : {3, 1000}) {
        const Matrix<double> X = Matrix<double>(rows, 2).lssolve(randomMatrix(rows, 3, 1));
        EXPECT_TRUE(areClose(X, Matrix<double>(2, 3)));
    }
}

TEST(LssolveTest, ScaleOfTheColumnsDoesNotChangeTheRank)
{
    Matrix<double> A = randomMatrix(1000, 3, 7);
    const Matrix<double> X = matrixOf({{1}, {2}, {3}});
    Matrix<double> expected = X.deepCopy();
    const double scales[] = {1e-12, 1, 1e12};
    for (long long j = 0; j < 3; ++j) {
        expected[j][0] /= scales[j];
        for (long long i = 0; i < A.M; ++i) {
            A[i][j] *= scales[j];
        }
    }
    const Matrix<double> actual = A.lssolve(A * expected);
    for (long long j = 0; j < 3; ++j) {
        EXPECT_NEAR(actual[j][0] * scales[j], X[j][0], 1e-10);
    }
}

TEST(LssolveTest, HugeAndTinyElementsAreSolvedAlike)
{
    for (const long long rows : {20, 2000}) {
        const Matrix<double> A = randomMatrix(rows, 3, 8);
        const Matrix<double> X = randomMatrix(3, 2, 9);
        const Matrix<double> B = A * X;
        for (const double scale : {1e-250, 1e250}) {
            Matrix<double> scaled(rows, 3);
            for (long long i = 0; i < A.storage.n_; ++i) {
                scaled.storage[i] = A.storage[i] * scale;
            }
            Matrix<double> solution = scaled.lssolve(B);
            ASSERT_FALSE(solution.empty());
            for (long long i = 0; i < solution.storage.n_; ++i) {
                solution.storage[i] *= scale;
            }
            EXPECT_TRUE(areClose(solution, X));
        }
    }
}

TEST(LssolveTest, EmptyAndUnfittingInputFails)
{
    const Matrix<double> A = randomMatrix(4, 2, 1);
    EXPECT_TRUE(A.lssolve(randomMatrix(3, 2, 1)).empty());
    EXPECT_TRUE(A.lssolve(Matrix<double>()).empty());
    EXPECT_TRUE(A.lssolve(Matrix<double>(4, 0)).empty());
    EXPECT_TRUE(Matrix<double>().lssolve(A).empty());
    EXPECT_TRUE(Matrix<double>(4, 0).lssolve(A).empty());
    EXPECT_TRUE(Matrix<double>(0, 4).lssolve(Matrix<double>(0, 4)).empty());
}

TEST(LssolveTest, ElementThatIsNotFiniteFails)
{
    for (const long long rows : {3, 1000}) {
        for (const double odd : {std::nan(""), infinity, -infinity}) {
            Matrix<double> A = randomMatrix(rows, 2, 1);
            Matrix<double> B = randomMatrix(rows, 2, 2);
            B[rows - 1][1] = odd;
            EXPECT_TRUE(A.lssolve(B).empty());
            EXPECT_TRUE(Matrix<double>(rows, 2).lssolve(B).empty());
            B[rows - 1][1] = 0;
            A[rows / 2][0] = odd;
            EXPECT_TRUE(A.lssolve(B).empty());
        }
    }
}

TEST(SolveTest, KnownSystem)
{
    const Matrix<double> A = matrixOf({{2, 1}, {1, 3}});
    Matrix<double> B = matrixOf({{4}, {7}});
    const Matrix<double> X = A.solve(B);
    EXPECT_TRUE(areClose(X, matrixOf({{1}, {2}})));
    EXPECT_EQ(elements(B), elements(matrixOf({{4}, {7}})));
}

TEST(SolveTest, SingularMatrixFails)
{
    Matrix<double> B = matrixOf({{1}, {2}});
    EXPECT_TRUE(matrixOf({{1, 2}, {2, 4}}).solve(B).empty());
    EXPECT_TRUE(matrixOf({{0, 0}, {0, 0}}).solve(B).empty());
    EXPECT_TRUE(matrixOf({{1, 0}, {0, 0}}).solve(B).empty());
    EXPECT_TRUE(matrixOf({{1, 1}, {1, 1 + 1e-16}}).solve(B).empty());
}

TEST(SolveTest, UnitsOfRowsAndColumnsDoNotMakeAMatrixSingular)
{
    Matrix<double> B = matrixOf({{1}, {2e-30}});
    EXPECT_TRUE(areClose(matrixOf({{1, 0}, {0, 1e-30}}).solve(B), matrixOf({{1}, {2}})));
    Matrix<double> huge = matrixOf({{1e300}, {2e-300}});
    EXPECT_TRUE(areClose(matrixOf({{1e300, 0}, {0, 1e-300}}).solve(huge), matrixOf({{1}, {2}})));
}

TEST(SolveTest, UnfittingEmptyAndNonFiniteInputFails)
{
    Matrix<double> B = randomMatrix(2, 1, 1);
    Matrix<double> nothing;
    EXPECT_TRUE(randomMatrix(2, 3, 1).solve(B).empty());
    EXPECT_TRUE(randomMatrix(3, 3, 1).solve(B).empty());
    EXPECT_TRUE(identity(2).solve(nothing).empty());
    EXPECT_TRUE(nothing.solve(nothing).empty());
    B[0][0] = std::nan("");
    EXPECT_TRUE(identity(2).solve(B).empty());
    EXPECT_TRUE(identity(2).solve(B).empty());
    Matrix<double> odd = identity(2);
    odd[1][0] = infinity;
    EXPECT_TRUE(odd.inverse().empty());
}

TEST(InverseTest, KnownInverse)
{
    EXPECT_TRUE(areClose(matrixOf({{4, 7}, {2, 6}}).inverse(), matrixOf({{0.6, -0.7}, {-0.2, 0.4}})));
}

TEST(InverseTest, SingularEmptyAndOblongMatricesHaveNone)
{
    EXPECT_TRUE(matrixOf({{1, 2}, {2, 4}}).inverse().empty());
    EXPECT_TRUE(Matrix<double>().inverse().empty());
    EXPECT_TRUE(randomMatrix(2, 3, 1).inverse().empty());
    EXPECT_TRUE(randomMatrix(3, 2, 1).inverse().empty());
    EXPECT_TRUE(Matrix<double>(3, 0).inverse().empty());
}

RC_GTEST_PROP(MatrixSolversLaw, LeastSquaresResidualIsOrthogonal, (std::uint32_t seed))
{
    const int rows = *rc::gen::inRange(1, 700);
    const int columns = *rc::gen::inRange(1, 12);
    const int rank = *rc::gen::inRange(1, columns + 1);
    const Matrix<double> A = randomMatrix(rows, rank, seed) * randomMatrix(rank, columns, seed + 1);
    const Matrix<double> B = randomMatrix(rows, 2, seed + 2);
    const auto verdict = isLeastSquaresSolution(A, B, A.lssolve(B));
    RC_LOG() << verdict.message();
    RC_ASSERT(static_cast<bool>(verdict));
}

RC_GTEST_PROP(MatrixSolversLaw, SolutionOfASquareSystemMeetsIt, (std::uint32_t seed))
{
    const int n = *rc::gen::inRange(1, 30);
    const Matrix<double> A = randomMatrix(n, n, seed);
    Matrix<double> B = randomMatrix(n, 3, seed + 1);
    const Matrix<double> X = A.solve(B);
    RC_ASSERT(X.num_rows() == n);
    const Matrix<double> residual = B - A * X;
    RC_ASSERT(residual.norm(0) <= 1e-12 * n * (A.norm(2) * X.norm(2) + B.norm(2)));
}

RC_GTEST_PROP(MatrixSolversLaw, InverseUndoesTheMatrix, (std::uint32_t seed))
{
    const int n = *rc::gen::inRange(1, 20);
    Matrix<double> A = randomMatrix(n, n, seed);
    for (int i = 0; i < n; ++i) {
        A[i][i] += n; // well conditioned
    }
    RC_ASSERT(static_cast<bool>(areClose(A * A.inverse(), identity(n), 1e-12)));
    RC_ASSERT(static_cast<bool>(areClose(A.inverse() * A, identity(n), 1e-12)));
}
