// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/constrained_concentrations.h"

#include "XTNT/least_squares.h"
#include "XTNT/xtnt_parallel.h"
#include "support/NnlsProblem.h"
#include "support/Numbers.h"
#include "support/NumericLaws.h"

#include <cmath>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

using testsupport::areClose;
using testsupport::elements;
using testsupport::isNonNegativeOptimum;
using testsupport::matrixOf;
using testsupport::randomMatrix;
using XTNT::Matrix;
using XTNT::Vector;

namespace {

using Procedure = int (*)(const Matrix<double>&, const Matrix<double>&, Matrix<double>&);

// What it throws, or 1 when it throws nothing.
int thrownBy(Procedure procedure, const Matrix<double>& D, const Matrix<double>& S, Matrix<double>& C)
{
    try {
        procedure(D, S, C);
    } catch (int code) {
        return code;
    }
    return 1;
}

// The two paths have one contract.
class ConstrainedConcentrationsTest : public testing::TestWithParam<Procedure>
{
protected:
    Procedure run = GetParam();
};

} // namespace

TEST_P(ConstrainedConcentrationsTest, DifferentNumbersOfBandsThrowMinusOne)
{
    Matrix<double> C = matrixOf({{7}});
    EXPECT_EQ(thrownBy(run, Matrix<double>(10, 4), Matrix<double>(2, 5), C), -1);
    EXPECT_EQ(C[0][0], 7);
}

TEST_P(ConstrainedConcentrationsTest, FewerPixelsThanSpectraThrowMinusOne)
{
    Matrix<double> C;
    EXPECT_EQ(thrownBy(run, randomMatrix(2, 5, 1), randomMatrix(3, 5, 2), C), -1);
    EXPECT_EQ(thrownBy(run, randomMatrix(3, 5, 1), randomMatrix(3, 5, 2), C), 1);
}

TEST_P(ConstrainedConcentrationsTest, FailedFitThrowsMinusTwo)
{
    Matrix<double> C;
    Matrix<double> S = randomMatrix(2, 4, 2);
    S[1][2] = std::nan("");
    EXPECT_EQ(thrownBy(run, randomMatrix(10, 4, 1), S, C), -2);
    EXPECT_TRUE(C.empty());
    EXPECT_EQ(thrownBy(run, Matrix<double>(0, 4), Matrix<double>(0, 4), C), -2);
    EXPECT_EQ(thrownBy(run, randomMatrix(4, 2, 1), matrixOf({{1, 1}, {1, 1}}), C), -2);
}

TEST_P(ConstrainedConcentrationsTest, TrueConcentrationsComeBack)
{
    const Matrix<double> S = randomMatrix(4, 18, 1, 0, 1);
    const Matrix<double> truth = randomMatrix(500, 4, 2, 0, 1);
    Matrix<double> C;
    EXPECT_EQ(run(truth * S, S, C), 0);
    EXPECT_TRUE(areClose(C, truth, 1e-11));
}

TEST_P(ConstrainedConcentrationsTest, OnlyRowsWithANegativeElementAreReplaced)
{
    const Matrix<double> S = randomMatrix(3, 10, 1, 0, 1);
    const Matrix<double> D = randomMatrix(2000, 10, 2, -0.2, 1);
    const Matrix<double> free = XTNT::solveForRight(D, S);
    Matrix<double> C;
    run(D, S, C);
    int kept = 0;
    for (long long p = 0; p < D.M; ++p) {
        if (free.row(p).Min() >= 0) {
            ++kept;
            ASSERT_EQ(elements(C.row(p)), elements(free.row(p)));
        } else {
            ASSERT_TRUE(areClose(
                C.subMatrix(p, p, 0, 2),
                outerProduct(testsupport::vectorOf({1}), testsupport::runNnls(transpose(S), D.row(p)).x), 1e-11));
        }
    }
    EXPECT_GT(kept, 0);
    EXPECT_LT(kept, D.M);
}

TEST_P(ConstrainedConcentrationsTest, DataAndSpectraAreLeftAlone)
{
    const Matrix<double> S = randomMatrix(3, 10, 1);
    const Matrix<double> D = randomMatrix(50, 10, 2);
    const auto data = elements(D);
    const auto spectra = elements(S);
    Matrix<double> C;
    run(D, S, C);
    EXPECT_EQ(elements(D), data);
    EXPECT_EQ(elements(S), spectra);
}

TEST_P(ConstrainedConcentrationsTest, SameBitsOnAnyNumberOfThreads)
{
    const Matrix<double> S = randomMatrix(5, 24, 1, 0, 1);
    const Matrix<double> D = randomMatrix(10000, 24, 2);
    Matrix<double> one;
    Matrix<double> three;
    XTNT::setThreadCount(1);
    run(D, S, one);
    XTNT::setThreadCount(3);
    run(D, S, three);
    XTNT::setThreadCount(0);
    EXPECT_EQ(elements(one), elements(three));
}

TEST_P(ConstrainedConcentrationsTest, EveryRowMeetsTheOptimalityConditions)
{
    rc::check([this] {
        const auto seed = *rc::gen::arbitrary<std::uint32_t>();
        const int components = *rc::gen::inRange(1, 9);
        const int bands = *rc::gen::inRange(components, 25);
        const Matrix<double> S = randomMatrix(components, bands, seed, 0, 1);
        const Matrix<double> D = randomMatrix(40, bands, seed + 1, -0.5, 1);
        Matrix<double> C;
        run(D, S, C);
        for (long long p = 0; p < D.M; ++p) {
            const auto verdict = isNonNegativeOptimum(transpose(S), D.row(p), C.row(p), 1e-10);
            RC_LOG() << "pixel " << p << ": " << verdict.message();
            RC_ASSERT(static_cast<bool>(verdict));
        }
    });
}

INSTANTIATE_TEST_SUITE_P(BothPaths, ConstrainedConcentrationsTest,
                         testing::Values(&XTNT::constrainedConcentrations, &XTNT::constrainedConcentrationsPlain),
                         [](const auto& tested) { return tested.index == 0 ? "Fast" : "Plain"; });
