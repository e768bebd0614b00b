// SPDX-License-Identifier: GPL-3.0-or-later
#include "McrCase.h"
#include "support/Numbers.h"

#include <cmath>
#include <limits>

#include <gmock/gmock.h>

using testing::DoubleNear;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using testsupport::agree;
using testsupport::bareLoop;
using testsupport::elements;
using testsupport::expectAsReference;
using testsupport::matrixOf;
using testsupport::McrOutcome;
using testsupport::mixture;
using testsupport::oneRowOfBands;
using testsupport::runMcr;
using testsupport::sameTrace;
using XTNT::Matrix;

namespace {

constexpr int K = 3;
constexpr long long M = 30;
constexpr long long N = 8;

const char* const converged = "Convergence is achieved!!!\n";
const char* const goodFit = "Fit is good enough\n";
const char* const diverged = "Divergence, stop!!!\n";
const char* const limit = "Maximum iteration number is reached!!!\n";

Matrix<double> noisy()
{
    return mixture(M, N, K, 0.15, 31);
}

void plainSettings(MCR& mcr)
{
    mcr.forceAF = 0;
    mcr.maxIterations = 100;
    mcr.setNonNegMode(0, 2);
    mcr.setNonNegMode(1, 2);
}

bool endsWith(const std::string& text, const std::string& end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

int occurrences(const std::string& text, const std::string& part)
{
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

// First spectra that the loop without constraints leaves as they are, but for the disturbance: the leading directions
// of the data.
void startAtTheFit(MCR& mcr, double disturbance = 0)
{
    mcr.spec = mcr.pca.V.transpose().subMatrix(0, K - 1, 0, N - 1);
    const Matrix<double> shift = testsupport::randomMatrix(K, N, 77, -disturbance, disturbance);
    mcr.spec = mcr.spec + shift;
}

} // namespace

TEST(McrLoopTest, TraceIsWordForWord)
{
    // conc is the data, and the spectra come out as given. The bound then moves one element, and the other spectrum is
    // fitted again in that band: to what is left of it, (-2, 2, 1.5), its amounts (0, 2, 3) give 8.5 / 13. The residual
    // is
    // (-26, 9, -6) / 13; the norm of the data is the root of 38.
    const McrOutcome outcome = runMcr(matrixOf({{4, 0}, {0, 2}, {3, 3}}), 2, [](MCR& mcr) {
        bareLoop()(mcr);
        mcr.maxIterations = 1;
        mcr.setInitialEstimate(1, matrixOf({{1, 0}, {0, 1}}));
        mcr.setBounds(1, matrixOf<int>({{0, 1}, {0, 0}}), Matrix<double>(2, 2, 0.5));
    });
    EXPECT_EQ(outcome.result, 2);
    EXPECT_THAT(elements(outcome.mcr->spec),
                ElementsAre(DoubleNear(1, 1e-12), 0.5, DoubleNear(0, 1e-12), DoubleNear(8.5 / 13, 1e-12)));
    EXPECT_TRUE(sameTrace(outcome.trace, "Iteration: 1\n"
                                         "Residue (PCA) Norm, OLD=6.16441, NEW=2.16617\n"
                                         "......Fitting is improving!!!\n"
                                         "Change in sigma(%)184.576\n"
                                         "Fitting error (lack of fit) in % (PCA) =35.14\n"
                                         "Percent of variance explained (r2) =64.86\n"
                                         "2 2\n"
                                         "1 0.5 \n"
                                         "0 0.653846 \n"
                                         "Maximum iteration number is reached!!!\n"));
    EXPECT_TRUE(agree(outcome.mcr->residualRaw, matrixOf({{0, -2}, {0, 9 / 13.}, {0, -6 / 13.}}), 1e-12));
    EXPECT_TRUE(agree(outcome.mcr->residualPCA, outcome.mcr->residualRaw));
    EXPECT_NEAR(outcome.mcr->lackOfFitPCA, std::sqrt(793 / 38.0) / 13 * 100, 1e-10);
    EXPECT_NEAR(outcome.mcr->lackOfFitRaw, std::sqrt(793 / 38.0) / 13 * 100, 1e-10);
}

TEST(McrLoopTest, ConvergesAfterTheWarmUp)
{
    const McrOutcome outcome = expectAsReference(noisy(), K, plainSettings);
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.mcr->ending(), MCR::Ending::Converged);
    EXPECT_TRUE(endsWith(outcome.trace, converged));
    EXPECT_EQ(outcome.mcr->warmUp, 5);
    EXPECT_EQ(outcome.mcr->maxIterations, 100);
}

TEST(McrLoopTest, ConvergedRunSolvesTheConcentrationsOnceMore)
{
    const McrOutcome outcome = runMcr(noisy(), K, [](MCR& mcr) {
        bareLoop()(mcr);
        mcr.normalization = 1;
        mcr.maxIterations = 100;
    });
    ASSERT_EQ(outcome.mcr->ending(), MCR::Ending::Converged);
    const reference::Table best =
        reference::leastSquaresFromRight(reference::Table(outcome.mcr->data), reference::Table(outcome.mcr->spec));
    EXPECT_TRUE(agree(outcome.mcr->conc, best, 1e-10));
}

TEST(McrLoopTest, GoodFitDoesNotUpdateTheConcentrations)
{
    // conc was solved with the spectra of before; those that the run ends with are a little different.
    const McrOutcome outcome = expectAsReference(
        mixture(M, N, K, 0.0005, 3), K, [](MCR& mcr) { mcr.warmUp = 0; }, false);
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.mcr->ending(), MCR::Ending::GoodFit);
    EXPECT_TRUE(endsWith(outcome.trace, goodFit));
    EXPECT_LT(outcome.mcr->lackOfFitPCA, 0.1);
    const reference::Table solvedAgain =
        reference::leastSquaresFromRight(reference::Table(outcome.mcr->data), reference::Table(outcome.mcr->spec));
    EXPECT_FALSE(agree(outcome.mcr->conc, solvedAgain, 1e-10));
}

TEST(McrLoopTest, LackOfFitIsAgainstTheDenoisedAndTheRawData)
{
    const McrOutcome outcome = runMcr(noisy(), K, plainSettings);
    const MCR& mcr = *outcome.mcr;
    const Matrix<double> model = mcr.conc * mcr.spec;
    EXPECT_TRUE(agree(mcr.residualPCA, mcr.fitData - model, 1e-10));
    EXPECT_TRUE(agree(mcr.residualRaw, mcr.rawData - model, 1e-10));
    EXPECT_NEAR(mcr.lackOfFitPCA, mcr.residualPCA.norm(2) / mcr.data.norm(2) * 100, 1e-10);
    EXPECT_NEAR(mcr.lackOfFitRaw, mcr.residualRaw.norm(2) / mcr.rawData.norm(2) * 100, 1e-10);
    EXPECT_LT(mcr.lackOfFitPCA, mcr.lackOfFitRaw);
}

TEST(McrLoopTest, StallInTheSecondIterationEndsTheWarmUpOnly)
{
    // Begins beside the fit that the loop without constraints ends in, so that it stands still at once.
    const McrOutcome outcome = expectAsReference(mixture(M, N, K, 0.1, 1), K, [](MCR& mcr) {
        bareLoop()(mcr);
        mcr.warmUp = 5;
        mcr.extraPCs = 2;
        mcr.maxIterations = 100;
        startAtTheFit(mcr, 1e-3);
    });
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.mcr->iteration, 3);
    EXPECT_EQ(outcome.mcr->ending(), MCR::Ending::Converged);
    EXPECT_EQ(occurrences(outcome.trace, converged), 1);
    EXPECT_EQ(outcome.mcr->warmUp, 5);
}

TEST(McrLoopTest, ConstraintsWakeInTheIterationAfterTheStall)
{
    const auto settings = [](int iterations) {
        return [iterations](MCR& mcr) {
            bareLoop()(mcr);
            mcr.warmUp = 5;
            mcr.extraPCs = 2;
            mcr.maxIterations = iterations;
            startAtTheFit(mcr);
            mcr.setTopology(oneRowOfBands(N));
            mcr.setBandCutoff(0, 1, 0);
        };
    };
    EXPECT_NE(runMcr(mixture(M, N, K, 0.1, 1), K, settings(2)).mcr->spec[1][0], 0);
    EXPECT_EQ(runMcr(mixture(M, N, K, 0.1, 1), K, settings(3)).mcr->spec[1][0], 0);
}

TEST(McrLoopTest, PerfectDataEndTheWarmUpInTheFirstIterationAndTheRunInTheSecond)
{
    for (const bool plain : {true, false}) {
        const McrOutcome outcome = runMcr(
            mixture(M, N, K, 0, 2), K, [](MCR& mcr) { mcr.forceAF = 0; }, plain);
        EXPECT_EQ(outcome.result, 0);
        EXPECT_EQ(outcome.mcr->iteration, 2);
        EXPECT_TRUE(endsWith(outcome.trace, goodFit) || endsWith(outcome.trace, converged));
        EXPECT_LT(outcome.mcr->lackOfFitPCA, 1e-9);
        EXPECT_EQ(outcome.mcr->warmUp, 5);
    }
}

TEST(McrLoopTest, ResidualOfExactlyZeroIsAGoodFit)
{
    for (const bool plain : {true, false}) {
        const McrOutcome outcome = runMcr(
            matrixOf({{4, 0}, {0, 2}}), 2, [](MCR& mcr) { mcr.forceAF = 0; }, plain);
        EXPECT_EQ(outcome.result, 0);
        EXPECT_EQ(outcome.mcr->iteration, 2);
        EXPECT_TRUE(endsWith(outcome.trace, goodFit));
        EXPECT_THAT(outcome.trace, HasSubstr("Change in sigma(%)inf\n"));
        EXPECT_THAT(outcome.trace, HasSubstr("OLD=0, NEW=0\n......Fitting is improving!!!\n"));
        EXPECT_EQ(outcome.mcr->lackOfFitPCA, 0);
    }
}

TEST(McrLoopTest, StallAndGoodFitInOneIterationEndTheRun)
{
    // The stall ends the warm-up, and the test of the fit after it finds it ended.
    const McrOutcome outcome = expectAsReference(mixture(M, N, K, 0.0005, 3), K, [](MCR& mcr) {
        bareLoop()(mcr);
        mcr.warmUp = 5;
        mcr.convergenceTolerance = 1e30;
        startAtTheFit(mcr);
    });
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.mcr->iteration, 1);
    EXPECT_EQ(outcome.mcr->ending(), MCR::Ending::GoodFit);
    EXPECT_THAT(outcome.trace, Not(HasSubstr(converged)));
}

TEST(McrLoopTest, OneIterationGivesTheLimitWhateverTheFit)
{
    for (const double noise : {0.0, 0.15}) {
        const McrOutcome outcome = runMcr(mixture(M, N, K, noise, 4), K, [](MCR& mcr) {
            plainSettings(mcr);
            mcr.maxIterations = 1;
        });
        EXPECT_EQ(outcome.result, 2);
        EXPECT_EQ(outcome.mcr->ending(), MCR::Ending::IterationLimit);
        EXPECT_EQ(outcome.mcr->iteration, 2);
        EXPECT_THAT(outcome.trace, StartsWith("Iteration: 1\n"));
        EXPECT_TRUE(endsWith(outcome.trace, limit));
    }
}

TEST(McrLoopTest, NoIterationAtAllStillFinishes)
{
    const McrOutcome outcome = expectAsReference(noisy(), K, [](MCR& mcr) {
        plainSettings(mcr);
        mcr.maxIterations = 0;
    });
    EXPECT_EQ(outcome.result, 2);
    EXPECT_EQ(outcome.trace, limit);
    EXPECT_EQ(outcome.mcr->iteration, 1);
    // conc is zero still, so that nothing is explained.
    EXPECT_DOUBLE_EQ(outcome.mcr->lackOfFitPCA, 100);
}

TEST(McrLoopTest, ConvergenceInTheLastIterationIsTheLimit)
{
    const int iterations = runMcr(noisy(), K, plainSettings).mcr->iteration;
    const McrOutcome outcome = expectAsReference(noisy(), K, [iterations](MCR& mcr) {
        plainSettings(mcr);
        mcr.maxIterations = iterations;
    });
    EXPECT_EQ(outcome.result, 2);
    EXPECT_EQ(outcome.mcr->iteration, iterations);
    EXPECT_TRUE(endsWith(outcome.trace, std::string(converged) + limit));
}

TEST(McrLoopTest, GoodFitInTheLastIterationIsTheLimit)
{
    const McrOutcome outcome = runMcr(mixture(M, N, K, 0.0005, 3), K, [](MCR& mcr) {
        bareLoop()(mcr);
        mcr.maxIterations = 1;
        startAtTheFit(mcr);
    });
    EXPECT_EQ(outcome.result, 2);
    EXPECT_EQ(outcome.mcr->iteration, 1);
    EXPECT_TRUE(endsWith(outcome.trace, std::string(goodFit) + limit));
}

TEST(McrLoopTest, RunMayBeRepeated)
{
    auto mcr = testsupport::preparedMcr(noisy(), K);
    plainSettings(*mcr);
    std::ostringstream first;
    ASSERT_EQ(mcr->run(first), 0);
    const int iterations = mcr->iteration;
    reference::Resolution reference(*mcr);
    const int expected = reference.run();
    std::ostringstream second;
    EXPECT_EQ(mcr->run(second), expected);
    EXPECT_THAT(second.str(), StartsWith("Iteration: " + std::to_string(iterations + 1) + "\n"));
    EXPECT_TRUE(testsupport::sameTrace(second.str(), reference.trace()));
    EXPECT_TRUE(agree(mcr->conc, reference.conc));
    EXPECT_TRUE(agree(mcr->spec, reference.spec));
    EXPECT_EQ(mcr->warmUp, 5);
    // At the limit a further run only finishes.
    mcr->maxIterations = mcr->iteration;
    const int before = mcr->iteration;
    std::ostringstream third;
    EXPECT_EQ(mcr->run(third), 2);
    EXPECT_EQ(mcr->iteration, before + 1);
    EXPECT_EQ(third.str(), limit);
}

TEST(McrLoopTest, WarmUpLastsAsManyIterationsAsItSays)
{
    // Convergence is refused while it runs.
    for (const int warmUp : {0, 1, 2, 3}) {
        const McrOutcome outcome = runMcr(noisy(), K, [warmUp](MCR& mcr) {
            plainSettings(mcr);
            mcr.warmUp = warmUp;
            mcr.convergenceTolerance = 1e30;
        });
        EXPECT_EQ(outcome.result, 0);
        EXPECT_EQ(outcome.mcr->iteration, warmUp < 2 ? 1 : 2);
        EXPECT_EQ(outcome.mcr->warmUp, warmUp);
    }
}

TEST(McrLoopTest, FinalConstraintsBoundAfterUnimodalityAndTheLoopBefore)
{
    const Matrix<double> data = noisy();
    Matrix<int> modes(M, K);
    Matrix<double> values(M, K);
    for (long long i = 0; i < M; ++i) {
        modes[i][0] = 1;
        values[i][0] = static_cast<double>(M - i);
    }
    // Rises again, below the peak.
    values[20][0] = 15;
    const auto amountAfter = [&](bool toTheEnd) {
        const McrOutcome outcome = expectAsReference(data, K, [&](MCR& mcr) {
            bareLoop()(mcr);
            mcr.maxIterations = toTheEnd ? 60 : 1;
            mcr.convergenceTolerance = toTheEnd ? 1e30 : 0;
            mcr.setBounds(0, modes, values);
            mcr.setUnimodFlags(0, testsupport::vectorOf<int>({1, 0, 0}));
        });
        EXPECT_EQ(outcome.result, toTheEnd ? 0 : 2);
        return outcome.mcr->conc[20][0];
    };
    EXPECT_EQ(amountAfter(false), 0);
    EXPECT_EQ(amountAfter(true), 15);
}

TEST(McrLoopTest, NotANumberTravelsToTheLimit)
{
    for (const bool plain : {true, false}) {
        SCOPED_TRACE(plain ? "plain path" : "ordinary path");
        const McrOutcome inSpectrum = runMcr(
            noisy(), K,
            [](MCR& mcr) {
                plainSettings(mcr);
                mcr.maxIterations = 9;
                mcr.autoSorting = 0;
                Matrix<double> values(K, N);
                values[1][2] = std::numeric_limits<double>::quiet_NaN();
                Matrix<int> modes(K, N);
                modes[1][2] = 1;
                mcr.setBounds(1, modes, values);
            },
            plain);
        EXPECT_EQ(inSpectrum.result, 2);
        EXPECT_EQ(occurrences(inSpectrum.trace, "Iteration: "), 9);
        EXPECT_EQ(inSpectrum.mcr->ending(), MCR::Ending::IterationLimit);
        EXPECT_TRUE(std::isnan(inSpectrum.mcr->lackOfFitPCA));
        const McrOutcome inData = runMcr(
            noisy(), K,
            [](MCR& mcr) {
                plainSettings(mcr);
                mcr.maxIterations = 4;
                mcr.pca.U[7][0] = std::numeric_limits<double>::quiet_NaN();
            },
            plain);
        EXPECT_EQ(inData.result, 2);
        EXPECT_EQ(occurrences(inData.trace, "Fitting is improving!!!"), 4);
        EXPECT_EQ(occurrences(inData.trace, "Fitting is not improving!!!"), 0);
        EXPECT_EQ(inData.mcr->notImprovingCount, 0);
    }
}
