// SPDX-License-Identifier: GPL-3.0-or-later
#include "McrCase.h"
#include "support/Numbers.h"

#include <cmath>

#include <gmock/gmock.h>

using testing::Each;
using testing::ElementsAre;
using testsupport::agree;
using testsupport::bareLoop;
using testsupport::elements;
using testsupport::expectAsReference;
using testsupport::matrixOf;
using testsupport::McrOutcome;
using testsupport::mixture;
using testsupport::oneRowOfBands;
using testsupport::randomMatrix;
using testsupport::runMcr;
using testsupport::vectorOf;
using XTNT::Matrix;
using XTNT::Vector;

namespace {

constexpr int K = 3;
constexpr long long M = 30;
constexpr long long N = 8;

Matrix<double> noisy()
{
    return mixture(M, N, K, 0.15, 11);
}

// Ten iterations of a bare loop, as long as the fit does not end before.
void tenIterations(MCR& mcr)
{
    mcr.maxIterations = 10;
    mcr.convergenceTolerance = 1e-6;
}

bool hasNegative(const XTNT::Matrix<double>& a)
{
    for (long long i = 0; i < a.storage.n_; ++i) {
        if (a.storage[i] < 0) {
            return true;
        }
    }
    return false;
}

} // namespace

TEST(McrConstraintsTest, NonNegativityOfEachModeOnEachFactor)
{
    for (const int concMode : {0, 1, 2}) {
        for (const int specMode : {0, 1, 2}) {
            SCOPED_TRACE(testing::Message() << "modes " << concMode << ", " << specMode);
            const McrOutcome outcome = expectAsReference(noisy(), K, [&](MCR& mcr) {
                tenIterations(mcr);
                mcr.forceAF = 0;
                mcr.maxIterations = 4;
                EXPECT_EQ(mcr.setNonNegMode(0, concMode), 0);
                EXPECT_EQ(mcr.setNonNegMode(1, specMode), 0);
            });
            EXPECT_EQ(hasNegative(outcome.mcr->conc), concMode == 0);
            EXPECT_TRUE(specMode == 0 || !hasNegative(outcome.mcr->spec));
        }
    }
}

TEST(McrConstraintsTest, ClampWorksOnFlaggedComponentsOnly)
{
    const McrOutcome outcome = expectAsReference(noisy(), K, [](MCR& mcr) {
        bareLoop()(mcr);
        mcr.normalization = 1;
        mcr.maxIterations = 3;
        mcr.setNonNegMode(0, 1);
        mcr.setNonNegMode(1, 1);
        mcr.concNonNegFlags = vectorOf<int>({0, 1, 2});
        mcr.specNonNegFlags = vectorOf<int>({1, 0, 0});
    });
    EXPECT_LT(outcome.mcr->conc.column(0).Min(), 0);
    EXPECT_EQ(outcome.mcr->conc.column(1).Min(), 0);
    EXPECT_LT(outcome.mcr->conc.column(2).Min(), 0);
    EXPECT_GE(outcome.mcr->spec.row(0).Min(), 0);
}

TEST(McrConstraintsTest, FlagsPlayNoPartInTheNonNegativeSolution)
{
    const auto run = [](int flag) {
        return runMcr(noisy(), K, [flag](MCR& mcr) {
            tenIterations(mcr);
            mcr.setNonNegMode(0, 2);
            mcr.setNonNegMode(1, 2);
            mcr.concNonNegFlags.fill(flag);
            mcr.specNonNegFlags.fill(flag);
        });
    };
    EXPECT_TRUE(testsupport::sameBits(run(0).mcr->conc, run(1).mcr->conc));
}

TEST(McrConstraintsTest, RowWithoutNegativesKeepsTheUnconstrainedSolution)
{
    // Two equal spectra: the solution of smallest norm shares out evenly, a non-negative solver would fill one.
    const Matrix<double> data = mixture(20, 5, 2, 0, 4);
    for (const bool plain : {true, false}) {
        const McrOutcome outcome = runMcr(
            data, 2,
            [](MCR& mcr) {
                bareLoop()(mcr);
                mcr.maxIterations = 1;
                mcr.setNonNegMode(0, 2);
                mcr.setInitialEstimate(1, matrixOf({{1, 2, 2, 1, 0.5}, {1, 2, 2, 1, 0.5}}));
            },
            plain);
        ASSERT_EQ(outcome.result, 2);
        EXPECT_GT(outcome.mcr->conc.norm(0), 0);
        for (long long i = 0; i < 20; ++i) {
            EXPECT_NEAR(outcome.mcr->conc[i][0], outcome.mcr->conc[i][1], 1e-12);
        }
    }
}

TEST(McrConstraintsTest, NormalisationOfEachKind)
{
    for (const int kind : {0, 1, 2, 3}) {
        SCOPED_TRACE(kind);
        const McrOutcome outcome = expectAsReference(noisy(), K, [kind](MCR& mcr) {
            tenIterations(mcr);
            mcr.normalization = kind;
            mcr.setNonNegMode(0, 2);
        });
        for (long long c = 0; c < K; ++c) {
            const Vector<double> row = outcome.mcr->spec.row(c);
            double sum = 0;
            for (long long j = 0; j < N; ++j) {
                sum += std::abs(row[j]);
            }
            if (kind == 1) {
                EXPECT_DOUBLE_EQ(row.Max(), 1);
            } else if (kind == 2) {
                EXPECT_NEAR(sum, 1.0 / N, 1e-15);
            }
        }
    }
}

TEST(McrConstraintsTest, MaximumOfANegativeSpectrumIsSigned)
{
    const McrOutcome outcome = runMcr(noisy(), 2, [](MCR& mcr) {
        mcr.maxIterations = 0;
        mcr.autoSorting = 0;
        mcr.spec = matrixOf({{-4, -2, -8, -4, -4, -4, -4, -4}, {1, 2, -4, 0, 0, 0, 0, 0}});
    });
    EXPECT_EQ(outcome.result, 2);
    EXPECT_THAT(elements(outcome.mcr->spec), ElementsAre(2, 1, 4, 2, 2, 2, 2, 2, 0.5, 1, -2, 0, 0, 0, 0, 0));
}

TEST(McrConstraintsTest, SortingFollowsTheCentreOfMass)
{
    const Matrix<double> unsorted =
        matrixOf({{0, 0, 0, 0, 0, 0, 1, 2}, {1, 1, 1, 1, 1, 1, 1, 1}, {3, 1, 0, 0, 0, 0, 0, 0}});
    const auto after = [&](unsigned char sorting, const Matrix<int>& topology) {
        const McrOutcome outcome = runMcr(noisy(), K, [&](MCR& mcr) {
            mcr.normalization = 0;
            mcr.autoSorting = sorting;
            mcr.maxIterations = 0;
            if (!topology.empty()) {
                EXPECT_EQ(mcr.setTopology(topology), 0);
            }
            mcr.setInitialEstimate(1, unsorted.deepCopy());
            for (long long c = 0; c < K; ++c) {
                mcr.conc[0][c] = static_cast<double>(c);
            }
        });
        return std::make_pair(elements(outcome.mcr->spec.column(0)), elements(outcome.mcr->conc.row(0)));
    };
    const auto sorted = std::make_pair(std::vector<double>{3, 1, 0}, std::vector<double>{2, 1, 0});
    const auto asGiven = std::make_pair(std::vector<double>{0, 1, 3}, std::vector<double>{0, 1, 2});
    EXPECT_EQ(after(1, Matrix<int>()), sorted);
    EXPECT_EQ(after(1, oneRowOfBands(N)), sorted);
    EXPECT_EQ(after(0, oneRowOfBands(N)), asGiven);
    EXPECT_EQ(after(1, Matrix<int>(2, 4, 1)), asGiven);
}

TEST(McrConstraintsTest, SortingWorksWithoutNormalisation)
{
    const McrOutcome outcome = expectAsReference(noisy(), K, [](MCR& mcr) {
        tenIterations(mcr);
        mcr.normalization = 0;
        mcr.setInitialEstimate(1, randomMatrix(K, N, 8, 0.1, 1));
    });
    double before = 0;
    for (long long c = 0; c < K; ++c) {
        double moment = 0;
        double sum = 0;
        for (long long j = 0; j < N; ++j) {
            moment += static_cast<double>(j + 1) * outcome.mcr->spec[c][j];
            sum += outcome.mcr->spec[c][j];
        }
        EXPECT_TRUE(c == 0 || moment / sum > before);
        before = moment / sum;
    }
}

TEST(McrConstraintsTest, ForcedAutofluorescenceFillsTheFirstComponentWhereThereIsSignal)
{
    Matrix<double> data = noisy();
    for (long long j = 0; j < N; ++j) {
        data[4][j] = 0;
        data[7][j] *= 1e-4;
    }
    const auto run = [&](unsigned char force, const Matrix<int>& topology) {
        return expectAsReference(data, K, [&](MCR& mcr) {
            tenIterations(mcr);
            mcr.forceAF = force;
            mcr.setNonNegMode(0, 2);
            mcr.setNonNegMode(1, 2);
            mcr.setTopology(topology);
        });
    };
    const auto zeros = [](const McrOutcome& outcome) {
        const std::vector<double> column = elements(outcome.mcr->conc.column(0));
        return std::count(column.begin(), column.end(), 0.0);
    };
    EXPECT_GT(zeros(run(0, oneRowOfBands(N))), 2);
    EXPECT_LE(zeros(run(1, oneRowOfBands(N))), 2);
    EXPECT_GT(zeros(run(1, Matrix<int>(2, 4, 1))), 2);
}

TEST(McrConstraintsTest, ForcedAutofluorescenceTakesTheMeanWithItsZeros)
{
    // Amounts are set by bounds; the row of norm 0.5 is below a thousandth of the largest.
    const Matrix<double> data = matrixOf({{600, 0, 0}, {0, 300, 40}, {0.5, 0, 0}, {3, 4, 10}, {0, 800, 0}});
    for (const bool plain : {true, false}) {
        const McrOutcome outcome = runMcr(
            data, 2,
            [](MCR& mcr) {
                bareLoop()(mcr);
                mcr.forceAF = 1;
                mcr.maxIterations = 1;
                mcr.setBounds(0, Matrix<int>(5, 2, 1), matrixOf({{3, 1}, {0, 1}, {0, 1}, {0, 0}, {7, 2}}));
            },
            plain);
        EXPECT_THAT(elements(outcome.mcr->conc.column(0)), ElementsAre(3, 2, 0, 2, 7));
        EXPECT_THAT(elements(outcome.mcr->conc.column(1)), ElementsAre(1, 1, 1, 0, 2));
        EXPECT_DOUBLE_EQ(outcome.mcr->rowNorms[3], std::sqrt(125.0));
        EXPECT_EQ(outcome.mcr->rowNorms.n_, 5);
    }
}

TEST(McrConstraintsTest, RowNormsAreLeftAloneWhenNothingAsksForThem)
{
    const McrOutcome outcome = runMcr(noisy(), K, [](MCR& mcr) { mcr.forceAF = 0; });
    EXPECT_TRUE(outcome.mcr->rowNorms.empty());
}

TEST(McrConstraintsTest, BoundsOfEachModeOnConcentrations)
{
    for (const int mode : {-1, 0, 1, 2, 3, 4}) {
        SCOPED_TRACE(mode);
        Matrix<int> modes(M, K);
        for (long long i = 0; i < M; i += 2) {
            modes[i][i / 2 % K] = mode;
        }
        // One that binds, so that the switch is on whatever the mode.
        modes[1][0] = 1;
        const McrOutcome outcome = expectAsReference(noisy(), K, [&](MCR& mcr) {
            tenIterations(mcr);
            mcr.warmUp = 2;
            mcr.setNonNegMode(1, 2);
            EXPECT_EQ(mcr.setBounds(0, modes, Matrix<double>(M, K, 0.3)), 0);
        });
        EXPECT_EQ(outcome.mcr->concBoundsActive, 1);
        EXPECT_EQ(outcome.mcr->specBoundsActive, 0);
        for (long long i = 0; i < M; i += 2) {
            const double value = outcome.mcr->conc[i][i / 2 % K];
            EXPECT_TRUE(mode != 1 || value == 0.3);
            EXPECT_TRUE(mode != 2 || value <= 0.3);
            EXPECT_TRUE(mode != 3 || value >= 0.3);
        }
    }
}

TEST(McrConstraintsTest, BoundsOfEachModeOnSpectra)
{
    for (const int mode : {-1, 0, 1, 2, 3, 4}) {
        SCOPED_TRACE(mode);
        Matrix<int> modes(K, N);
        modes[0][0] = modes[0][1] = modes[1][1] = modes[2][4] = modes[2][6] = modes[0][6] = mode;
        modes[1][7] = 1;
        const McrOutcome outcome = expectAsReference(noisy(), K, [&](MCR& mcr) {
            tenIterations(mcr);
            mcr.warmUp = 2;
            mcr.normalization = 0;
            mcr.autoSorting = 0;
            mcr.setNonNegMode(0, 2);
            EXPECT_EQ(mcr.setBounds(1, modes, Matrix<double>(K, N, 0.3)), 0);
        });
        EXPECT_EQ(outcome.mcr->specBoundsActive, 1);
        EXPECT_EQ(outcome.mcr->concBoundsActive, 0);
        EXPECT_EQ(outcome.mcr->spec[1][7], 0.3);
        EXPECT_TRUE(mode != 1 || outcome.mcr->spec[2][4] == 0.3);
    }
}

TEST(McrConstraintsTest, CutoffsForceBandsToZeroAfterTheWarmUp)
{
    for (const Matrix<int>& topology : {oneRowOfBands(N), Matrix<int>(2, 4, 1)}) {
        SCOPED_TRACE(topology.M);
        const McrOutcome outcome = expectAsReference(noisy(), K, [&](MCR& mcr) {
            tenIterations(mcr);
            mcr.warmUp = 2;
            mcr.autoSorting = 0;
            mcr.setNonNegMode(0, 2);
            mcr.setNonNegMode(1, 2);
            EXPECT_EQ(mcr.setTopology(topology), 0);
            EXPECT_TRUE(mcr.setBandCutoff(0, 2, 1));
            EXPECT_TRUE(mcr.setBandCutoff(1, 0, 3));
        });
        const MCR& mcr = *outcome.mcr;
        EXPECT_THAT((std::vector<double>{mcr.spec[2][0], mcr.spec[2][1], mcr.spec[0][7]}), Each(0));
        if (topology.M == 2) {
            EXPECT_THAT((std::vector<double>{mcr.spec[2][4], mcr.spec[2][5], mcr.spec[0][3]}), Each(0));
        } else {
            EXPECT_THAT((std::vector<double>{mcr.spec[0][3], mcr.spec[0][4], mcr.spec[0][5]}), Each(0));
        }
    }
}

TEST(McrConstraintsTest, BoundsSleepWhileTheWarmUpRuns)
{
    const auto boundAfter = [](int iterations) {
        const McrOutcome outcome = runMcr(noisy(), K, [iterations](MCR& mcr) {
            mcr.convergenceTolerance = 0;
            mcr.maxIterations = iterations;
            mcr.setTopology(oneRowOfBands(N));
            mcr.setBandCutoff(0, 0, 0);
        });
        return outcome.mcr->spec[0][0] == 0;
    };
    EXPECT_FALSE(boundAfter(4));
    EXPECT_TRUE(boundAfter(5));
}

TEST(McrConstraintsTest, MasksOfPixels)
{
    const McrOutcome outcome = expectAsReference(noisy(), K, [](MCR& mcr) {
        tenIterations(mcr);
        mcr.warmUp = 1;
        mcr.autoSorting = 0;
        mcr.forceAF = 0;
        mcr.setNonNegMode(0, 2);
        mcr.setNonNegMode(1, 2);
        EXPECT_TRUE(mcr.setSolutionMask(1, Vector<int>(20)));
        EXPECT_TRUE(mcr.setPureMask(0, vectorOf<int>({3, 4, 28})));
    });
    for (long long i = 20; i < M; ++i) {
        EXPECT_EQ(outcome.mcr->conc[i][1], 0);
    }
    for (const long long i : {3, 4, 28}) {
        EXPECT_EQ(outcome.mcr->conc[i][1], 0);
        EXPECT_EQ(outcome.mcr->conc[i][2], 0);
    }
}
