// SPDX-License-Identifier: GPL-3.0-or-later
#include "McrCase.h"
#include "support/Numbers.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using testsupport::bareLoop;
using testsupport::Configure;
using testsupport::expectAsReference;
using testsupport::matrixOf;
using testsupport::McrOutcome;
using testsupport::mixture;
using XTNT::Matrix;

namespace {

// Runs both paths beside the reference and expects code 3 in this iteration, with nothing of Finish done.
void expectDegenerate(const Matrix<double>& data, int K, int iteration, const Configure& configure)
{
    const McrOutcome outcome = expectAsReference(data, K, [&](MCR& mcr) {
        bareLoop()(mcr);
        mcr.normalization = 1;
        mcr.lackOfFitPCA = 12.5;
        mcr.lackOfFitRaw = 25;
        mcr.residualPCA = matrixOf({{1, 2}});
        mcr.residualRaw = matrixOf({{3, 4, 5}});
        configure(mcr);
    });
    const MCR& mcr = *outcome.mcr;
    EXPECT_EQ(outcome.result, 3);
    EXPECT_EQ(mcr.lastError, 3);
    EXPECT_EQ(mcr.ending(), MCR::Ending::Degenerate);
    EXPECT_EQ(mcr.iteration, iteration);
    EXPECT_EQ(mcr.lackOfFitPCA, 12.5);
    EXPECT_EQ(mcr.lackOfFitRaw, 25);
    EXPECT_EQ(mcr.residualRaw.N, 3);
}

Matrix<double> tall()
{
    return mixture(15, 5, 2, 0.2, 6);
}

} // namespace

TEST(McrDegenerateTest, FirstSpectraWithAZeroRow)
{
    expectDegenerate(tall(), 2, 0, [](MCR& mcr) {
        mcr.setInitialEstimate(1, matrixOf({{1, 2, 3, 2, 1}, {0, 0, 0, 0, 0}}));
    });
    // With the sum of absolute values a spectrum that is nowhere above zero passes, with the maximum it does not.
    expectDegenerate(tall(), 2, 0, [](MCR& mcr) {
        mcr.setInitialEstimate(1, matrixOf({{1, 2, 3, 2, 1}, {0, -1, -2, 0, 0}}));
    });
    const McrOutcome outcome = testsupport::runMcr(tall(), 2, [](MCR& mcr) {
        mcr.normalization = 2;
        mcr.forceAF = 0;
        mcr.setInitialEstimate(1, matrixOf({{1, 2, 3, 2, 1}, {0, -1, -2, 0, 0}}));
    });
    EXPECT_NE(outcome.result, 3);
}

TEST(McrDegenerateTest, RowsBeforeTheZeroRowAreDivided)
{
    const McrOutcome outcome = testsupport::runMcr(tall(), 2, [](MCR& mcr) {
        mcr.setInitialEstimate(1, matrixOf({{1, 2, 4, 2, 1}, {0, 0, 0, 0, 0}}));
    });
    EXPECT_EQ(outcome.result, 3);
    EXPECT_EQ(outcome.mcr->spec[0][2], 1);
    EXPECT_EQ(outcome.mcr->spec[0][0], 0.25);
}

TEST(McrDegenerateTest, FactorBelowTheThreshold)
{
    const auto resultWith = [](double largest) {
        return testsupport::runMcr(tall(), 2,
                                   [largest](MCR& mcr) {
                                       mcr.forceAF = 0;
                                       Matrix<double> first = matrixOf({{1, 2, 4, 2, 1}, {0, 1, 0, 0, 0}});
                                       first[1][1] = largest;
                                       mcr.setInitialEstimate(1, first);
                                   })
            .result;
    };
    EXPECT_EQ(resultWith(0.9e-15), 3);
    EXPECT_NE(resultWith(1.1e-15), 3);
}

TEST(McrDegenerateTest, GivenConcentrationsWithAnUnusedComponent)
{
    expectDegenerate(tall(), 2, 0, [](MCR& mcr) {
        Matrix<double> conc(15, 2, 1);
        for (long long i = 0; i < 15; ++i) {
            conc[i][1] = 0;
        }
        mcr.setInitialEstimate(0, conc);
    });
}

TEST(McrDegenerateTest, SquareSystemOfEqualSpectra)
{
    expectDegenerate(mixture(15, 2, 2, 0.2, 6), 2, 1, [](MCR& mcr) {
        mcr.setInitialEstimate(1, matrixOf({{1, 0.5}, {2, 1}}));
    });
}

TEST(McrDegenerateTest, ConcentrationsThatVanishMakeAZeroSpectrum)
{
    expectDegenerate(tall(), 2, 1, [](MCR& mcr) {
        Matrix<int> modes(15, 2);
        for (long long i = 0; i < 15; ++i) {
            modes[i][1] = 1;
        }
        mcr.setBounds(0, modes, Matrix<double>(15, 2));
    });
}

TEST(McrDegenerateTest, BoundsThatMakeAZeroSpectrum)
{
    expectDegenerate(tall(), 2, 1, [](MCR& mcr) {
        mcr.setTopology(testsupport::oneRowOfBands(5));
        mcr.setBandCutoff(0, 1, 4);
    });
    // Asleep for two iterations.
    expectDegenerate(tall(), 2, 3, [](MCR& mcr) {
        mcr.warmUp = 3;
        mcr.convergenceTolerance = 1e-9;
        mcr.setTopology(testsupport::oneRowOfBands(5));
        mcr.setBandCutoff(0, 1, 4);
    });
}

TEST(McrDegenerateTest, SquareSystemOfEqualConcentrations)
{
    // Two pixels; bounds make their amounts equal.
    expectDegenerate(matrixOf({{3, 1, 1}, {1, 2, 4}}), 2, 1,
                     [](MCR& mcr) { mcr.setBounds(0, Matrix<int>(2, 2, 1), Matrix<double>(2, 2, 1)); });
}

TEST(McrDegenerateTest, LastSolutionOfAConvergedRun)
{
    // The bounds of the only iteration make the spectra equal; the concentrations before were solved with others.
    const auto configure = [](MCR& mcr) {
        mcr.convergenceTolerance = 1e30;
        mcr.setInitialEstimate(1, matrixOf({{1, 0}, {0, 1}}));
        mcr.setBounds(1, Matrix<int>(2, 2, 1), matrixOf({{4, 2}, {4, 2}}));
    };
    expectDegenerate(mixture(15, 2, 2, 0.2, 6), 2, 1, configure);
    const McrOutcome outcome = testsupport::runMcr(mixture(15, 2, 2, 0.2, 6), 2, [&](MCR& mcr) {
        bareLoop()(mcr);
        configure(mcr);
    });
    EXPECT_THAT(outcome.trace, HasSubstr("Convergence is achieved!!!\n"));
}

TEST(McrDegenerateTest, RowScalingIsNotTakenBack)
{
    const Matrix<double> data = tall();
    const McrOutcome outcome = testsupport::runMcr(data, 2, [](MCR& mcr) {
        mcr.rowScaling = 1;
        mcr.setInitialEstimate(1, matrixOf({{1, 2, 3, 2, 1}, {0, 0, 0, 0, 0}}));
    });
    EXPECT_EQ(outcome.result, 3);
    for (long long i = 0; i < 15; ++i) {
        double squares = 0;
        for (long long j = 0; j < 5; ++j) {
            squares += data[i][j] * data[i][j];
        }
        EXPECT_NEAR(squares, 1, 1e-12);
    }
}

TEST(McrDegenerateTest, WithoutNormalisationNoFactorIsTested)
{
    const McrOutcome outcome = expectAsReference(tall(), 2, [](MCR& mcr) {
        bareLoop()(mcr);
        mcr.maxIterations = 4;
        mcr.setTopology(testsupport::oneRowOfBands(5));
        mcr.setBandCutoff(0, 1, 4);
        mcr.setNonNegMode(0, 2);
    });
    EXPECT_NE(outcome.result, 3);
    EXPECT_EQ(outcome.mcr->spec.row(1).Max(), 0);
}
