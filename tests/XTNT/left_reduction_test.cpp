// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/left_reduction.h"

#include "XTNT/concentration_pass.h"
#include "XTNT/least_squares.h"
#include "XTNT/row_blocks.h"
#include "XTNT/xtnt_parallel.h"

#include "support/Numbers.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

using testsupport::elements;
using testsupport::randomMatrix;
using testsupport::vectorOf;
using XTNT::LeftReduction;
using XTNT::Matrix;
using XTNT::Vector;

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

// Roundings of the squares of a sum over many rows, which add up like a random walk.
constexpr double squaresTolerance = 200 * epsilon;

double squaresOf(const Matrix<double>& a)
{
    long double sum = 0;
    for (long long i = 0; i < a.storage.n_; ++i) {
        sum += static_cast<long double>(a.storage[i]) * a.storage[i];
    }
    return static_cast<double>(sum);
}

// |C S - D|^2, element by element.
double residualSquares(const Matrix<double>& C, const Matrix<double>& S, const Matrix<double>& D)
{
    long double sum = 0;
    for (long long i = 0; i < D.M; ++i) {
        for (long long j = 0; j < D.N; ++j) {
            long double rest = D[i][j];
            for (long long k = 0; k < C.N; ++k) {
                rest -= static_cast<long double>(C[i][k]) * S[k][j];
            }
            sum += rest * rest;
        }
    }
    return static_cast<double>(sum);
}

// What the reduction is for: R and Q' D stand for C and D whatever the spectra.
::testing::AssertionResult standsFor(const LeftReduction& reduction, const Matrix<double>& C, const Matrix<double>& D,
                                     unsigned seed)
{
    const Matrix<double>& triangle = reduction.triangle();
    for (long long i = 0; i < triangle.M; ++i) {
        for (long long j = 0; j < i; ++j) {
            if (triangle[i][j] != 0) {
                return ::testing::AssertionFailure() << "[" << i << "][" << j << "] is not 0";
            }
        }
    }
    for (double size : {0.0, 1e-3, 1.0, 10.0}) {
        const Matrix<double> S = randomMatrix(C.N, D.N, seed, -size, size + 1e-300);
        const double direct = residualSquares(C, S, D);
        const double reduced = reduction.restSquares() + residualSquares(triangle, S, reduction.head());
        // What is summed: the residual's rounding is relative to this.
        const double summed = std::sqrt(squaresOf(D)) + std::sqrt(squaresOf(C) * squaresOf(S));
        if (!(std::abs(direct - reduced) <= squaresTolerance * summed * summed)) {
            return ::testing::AssertionFailure() << "squares " << reduced << ", expected " << direct << ", of "
                                                 << summed * summed << ", spectra up to " << size << ", seed " << seed;
        }
    }
    return ::testing::AssertionSuccess();
}

bool sameBits(const Matrix<double>& a, const Matrix<double>& b)
{
    return a.M == b.M && a.N == b.N && elements(a) == elements(b);
}

} // namespace

TEST(RowBlocksTest, ChunksAreWholeBlocksAndNotTooMany)
{
    EXPECT_EQ(256, XTNT::passChunkRows(0));
    EXPECT_EQ(256, XTNT::passChunkRows(1));
    EXPECT_EQ(256, XTNT::passChunkRows(1LL << 20));
    EXPECT_EQ(320, XTNT::passChunkRows((1LL << 20) + 1));
    for (long long rows : {1LL, 1000003LL, 1LL << 22, 99999999LL}) {
        EXPECT_EQ(0, XTNT::passChunkRows(rows) % XTNT::blockRows) << rows;
        EXPECT_LE((rows - 1) / XTNT::passChunkRows(rows) + 1, 4096) << rows;
    }
}

TEST(LeftReductionTest, StandsForTheProblemAtEveryNumberOfRows)
{
    for (long long rows : {1, 2, 3, 4, 5, 63, 64, 65, 127, 255, 256, 257, 1000}) {
        const Matrix<double> C = randomMatrix(rows, 4, 1);
        const Matrix<double> D = randomMatrix(rows, 7, 2);
        LeftReduction reduction(D, 4);
        reduction.addAll(C);
        EXPECT_TRUE(standsFor(reduction, C, D, 3)) << rows << " rows";
    }
}

TEST(LeftReductionTest, StandsForTheProblemAtEveryNumberOfComponentsAndBands)
{
    for (long long components = 1; components <= 14; ++components) {
        for (long long bands : {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13, 16, 23, 24, 25, 50}) {
            const Matrix<double> C = randomMatrix(150, components, 4);
            const Matrix<double> D = randomMatrix(150, bands, 5);
            LeftReduction reduction(D, components);
            reduction.addAll(C);
            ASSERT_TRUE(standsFor(reduction, C, D, 6)) << components << " components, " << bands << " bands";
        }
    }
}

TEST(LeftReductionTest, ManyRowsAreFoldedWithoutLoss)
{
    const Matrix<double> C = randomMatrix(300000, 5, 7, 0, 1);
    const Matrix<double> D = randomMatrix(300000, 6, 8, 0, 1);
    LeftReduction reduction(D, 5);
    reduction.addAll(C);
    EXPECT_TRUE(standsFor(reduction, C, D, 9));
}

TEST(LeftReductionTest, MoreComponentsThanRowsOfABlockAreReduced)
{
    const Matrix<double> C = randomMatrix(500, 70, 10);
    const Matrix<double> D = randomMatrix(500, 80, 11);
    LeftReduction reduction(D, 70);
    reduction.addAll(C);
    EXPECT_TRUE(standsFor(reduction, C, D, 12));
}

RC_GTEST_PROP(LeftReductionLaws, AnyProblemMayBeReducedWhateverItsRank, (unsigned seed))
{
    const long long rows = *rc::gen::inRange(1, 400);
    const long long components = *rc::gen::inRange(1, 9);
    const long long bands = *rc::gen::inRange(1, 51);
    const long long rank = *rc::gen::inRange<long long>(0, components + 1);
    const Matrix<double> C = randomMatrix(rows, rank, seed) * randomMatrix(rank, components, seed + 1);
    const Matrix<double> D = randomMatrix(rows, bands, seed + 2);
    const Matrix<double> zeros(rows, components);
    LeftReduction reduction(D, components);
    reduction.addAll(rank == 0 ? zeros : C);
    RC_ASSERT(standsFor(reduction, rank == 0 ? zeros : C, D, seed + 3));
}

TEST(LeftReductionTest, ZeroColumnLeavesAZeroColumn)
{
    Matrix<double> C = randomMatrix(700, 3, 13);
    for (long long i = 0; i < C.M; ++i) {
        C[i][1] = 0;
    }
    const Matrix<double> D = randomMatrix(700, 5, 14);
    LeftReduction reduction(D, 3);
    reduction.addAll(C);
    EXPECT_TRUE(standsFor(reduction, C, D, 15));
    for (long long i = 0; i < 3; ++i) {
        EXPECT_EQ(0, reduction.triangle()[i][1]);
    }
    EXPECT_FALSE(reduction.inRange());
}

TEST(LeftReductionTest, ColumnsThatNearlyAgreeKeepTheirDifference)
{
    const Matrix<double> base = randomMatrix(2000, 2, 16);
    for (double apart : {1e-4, 1e-8, 1e-11}) {
        Matrix<double> C = base.deepCopy();
        for (long long i = 0; i < C.M; ++i) {
            C[i][1] = C[i][0] + apart * C[i][1];
        }
        // The part of the difference that is at right angles to the first column.
        double along = 0;
        double first = 0;
        double second = 0;
        for (long long i = 0; i < C.M; ++i) {
            along += base[i][0] * base[i][1];
            first += base[i][0] * base[i][0];
            second += base[i][1] * base[i][1];
        }
        const double expected = apart * std::sqrt(second - along * along / first);
        LeftReduction reduction(randomMatrix(2000, 3, 17), 2);
        reduction.addAll(C);
        EXPECT_NEAR(1, std::abs(reduction.triangle()[1][1]) / expected, 16 * epsilon / apart) << apart;
    }
}

TEST(LeftReductionTest, RestOfAPerfectFitIsAllRounding)
{
    const Matrix<double> C = randomMatrix(5000, 4, 18, 0, 1);
    const Matrix<double> D = C * randomMatrix(4, 11, 19, 0, 1);
    LeftReduction reduction(D, 4);
    reduction.addAll(C);
    EXPECT_GE(reduction.restSquares(), 0);
    EXPECT_LE(std::sqrt(reduction.restSquares()), 16 * epsilon * D.norm(2));
}

TEST(LeftReductionTest, NumberOfThreadsDoesNotChangeABit)
{
    const Matrix<double> C = randomMatrix(10007, 6, 20);
    const Matrix<double> D = randomMatrix(10007, 13, 21);
    const auto reduce = [&](int threads) {
        XTNT::setThreadCount(threads);
        auto reduction = std::make_unique<LeftReduction>(D, 6);
        reduction->addAll(C);
        return reduction;
    };
    const std::unique_ptr<LeftReduction> one = reduce(1);
    for (int threads : {2, 4}) {
        const std::unique_ptr<LeftReduction> many = reduce(threads);
        EXPECT_TRUE(sameBits(one->triangle(), many->triangle())) << threads;
        EXPECT_TRUE(sameBits(one->head(), many->head())) << threads;
        EXPECT_EQ(one->restSquares(), many->restSquares()) << threads;
    }
    XTNT::setThreadCount(0);
}

TEST(LeftReductionTest, StepOfTheConcentrationsGivesTheBitsOfThePassOfItsOwn)
{
    const Matrix<double> S = randomMatrix(4, 9, 22, 0, 1);
    const Matrix<double> D = randomMatrix(3001, 9, 23);
    Matrix<double> C(3001, 4);
    LeftReduction fused(D, 4);
    XTNT::ConcentrationPass(D, S, XTNT::rightSolutionOperator(S)).run(C, [&](long long begin, long long end) {
        fused.add(C, begin, end);
    });
    fused.finish();
    LeftReduction separate(D, 4);
    separate.addAll(C);
    EXPECT_TRUE(sameBits(separate.triangle(), fused.triangle()));
    EXPECT_TRUE(sameBits(separate.head(), fused.head()));
    EXPECT_EQ(separate.restSquares(), fused.restSquares());
}

TEST(LeftReductionTest, ReorderedIsTheReductionOfTheReordered)
{
    const Matrix<double> C = randomMatrix(900, 4, 24);
    const Matrix<double> D = randomMatrix(900, 6, 25);
    LeftReduction reduction(D, 4);
    reduction.addAll(C);
    const Vector<long long> order = vectorOf<long long>({2, 0, 3, 1});
    for (int times = 0; times < 3; ++times) {
        reduction.reorder(order);
        const Matrix<double> once = C.columns(order);
        const Matrix<double> now = times == 0   ? once
                                   : times == 1 ? once.columns(order)
                                                : once.columns(order).columns(order);
        EXPECT_TRUE(standsFor(reduction, now, D, 26)) << times;
    }
}

TEST(LeftReductionTest, NanInTheDataSpoilsItsBandOnly)
{
    const Matrix<double> C = randomMatrix(300, 3, 27);
    const Matrix<double> clean = randomMatrix(300, 6, 28);
    Matrix<double> D = clean.deepCopy();
    D[123][2] = std::nan("");
    D[299][5] = std::numeric_limits<double>::infinity();
    LeftReduction expected(clean, 3);
    expected.addAll(C);
    LeftReduction reduction(D, 3);
    reduction.addAll(C);
    EXPECT_TRUE(sameBits(expected.triangle(), reduction.triangle()));
    EXPECT_TRUE(reduction.inRange());
    EXPECT_TRUE(std::isnan(reduction.restSquares()));
    for (long long k = 0; k < 3; ++k) {
        for (long long j : {0, 1, 3, 4}) {
            EXPECT_EQ(expected.head()[k][j], reduction.head()[k][j]);
        }
        EXPECT_TRUE(std::isnan(reduction.head()[k][2]));
        EXPECT_FALSE(std::isfinite(reduction.head()[k][5]));
    }
}

TEST(LeftReductionTest, ConcentrationsThatAreNotFiniteAreNotInRange)
{
    for (double bad : {std::nan(""), std::numeric_limits<double>::infinity()}) {
        Matrix<double> C = randomMatrix(300, 3, 29);
        C[77][1] = bad;
        LeftReduction reduction(randomMatrix(300, 4, 30), 3);
        reduction.addAll(C);
        EXPECT_FALSE(reduction.inRange());
    }
}

TEST(LeftReductionTest, MagnitudesBeyondSquaresAreNotInRange)
{
    const Matrix<double> base = randomMatrix(300, 3, 31);
    const struct
    {
        double scale;
        bool inRange;
    } cases[] = {{1e-200, false}, {1e-125, false}, {1e-110, true}, {1, true},
                 {1e110, true},   {1e125, false},  {1e200, false}};
    for (const auto& c : cases) {
        Matrix<double> C = base.deepCopy();
        for (long long i = 0; i < C.M; ++i) {
            C[i][2] *= c.scale;
        }
        LeftReduction reduction(randomMatrix(300, 4, 32), 3);
        reduction.addAll(C);
        EXPECT_EQ(c.inRange, reduction.inRange()) << c.scale;
    }
}

TEST(LeftReductionTest, ElementsTooSmallForASquareDistortNothing)
{
    // The first blocks hold a column whose squares have few digits left, or none.
    for (double tiny : {1e-150, 1e-158, 1e-161, 1e-300}) {
        Matrix<double> C = randomMatrix(400, 3, 33);
        for (long long i = 0; i < 200; ++i) {
            C[i][0] *= tiny;
        }
        const Matrix<double> D = randomMatrix(400, 5, 34);
        LeftReduction reduction(D, 3);
        reduction.addAll(C);
        EXPECT_TRUE(reduction.inRange());
        EXPECT_TRUE(standsFor(reduction, C, D, 35)) << tiny;
    }
}
