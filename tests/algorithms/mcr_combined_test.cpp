// SPDX-License-Identifier: GPL-3.0-or-later
#include "McrCase.h"
#include "support/Numbers.h"

#include <cmath>

#include <gmock/gmock.h>

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
    return mixture(M, N, K, 0.15, 21);
}

void asTheEngineSets(MCR& mcr)
{
    mcr.forceAF = 0;
    mcr.maxIterations = 12;
    mcr.convergenceTolerance = 1e-6;
    mcr.setNonNegMode(0, 2);
    mcr.setNonNegMode(1, 2);
    mcr.setUnimodTol(1.05);
    mcr.setTopology(oneRowOfBands(N));
}

} // namespace

TEST(McrCombinedTest, LockedSpectrumComesBackAndTheOthersAreRefitted)
{
    const Vector<double> known = vectorOf({0, 0, 4, 8, 6, 1, 0, 0});
    const McrOutcome outcome = expectAsReference(noisy(), K, [&](MCR& mcr) {
        asTheEngineSets(mcr);
        EXPECT_TRUE(mcr.setUnimodMode(1, 1));
        EXPECT_TRUE(mcr.setKnownSpectrum(1, known));
        EXPECT_TRUE(mcr.setLocked(1, 1));
        // Normalised already, so that what is held is what comes back.
        for (long long j = 0; j < N; ++j) {
            mcr.spec[1][j] /= 8;
        }
    });
    const MCR& mcr = *outcome.mcr;
    for (long long j = 0; j < N; ++j) {
        EXPECT_EQ(mcr.spec[1][j], known[j] / 8);
        EXPECT_EQ(mcr.specBoundModes[1][j], 1);
        EXPECT_EQ(mcr.specBoundValues[1][j], known[j] / 8);
    }
    // A locked spectrum takes no unimodality.
    EXPECT_THAT(elements(mcr.specUnimodModes), ElementsAre(0, 0, 0));
    EXPECT_EQ(mcr.specUnimodActive, 0);
    EXPECT_EQ(mcr.specBoundsActive, 1);
}

TEST(McrCombinedTest, LockedSpectrumIsScaledLikeAnyOther)
{
    const Vector<double> known = vectorOf({0, 0, 4, 8, 6, 1, 0, 0});
    const McrOutcome outcome = expectAsReference(noisy(), K, [&](MCR& mcr) {
        asTheEngineSets(mcr);
        mcr.specBoundModes = Matrix<int>();
        mcr.specBoundValues = Matrix<double>();
        EXPECT_TRUE(mcr.setKnownSpectrum(0, known));
        EXPECT_TRUE(mcr.setLocked(0, 1));
    });
    for (long long j = 0; j < N; ++j) {
        EXPECT_EQ(outcome.mcr->specBoundValues[0][j], known[j]);
        EXPECT_EQ(outcome.mcr->spec[0][j], known[j] / 8);
    }
}

TEST(McrCombinedTest, TwoLockedSpectraAndOneCut)
{
    expectAsReference(noisy(), K, [](MCR& mcr) {
        asTheEngineSets(mcr);
        mcr.warmUp = 2;
        mcr.setKnownSpectrum(0, vectorOf({8, 6, 3, 1, 0, 0, 0, 0}));
        mcr.setKnownSpectrum(2, vectorOf({0, 0, 0, 0, 1, 3, 7, 6}));
        mcr.setLocked(0, 1);
        mcr.setLocked(2, 1);
        EXPECT_TRUE(mcr.setBandCutoff(0, 1, 1));
        EXPECT_TRUE(mcr.setBandCutoff(1, 1, 6));
    });
}

TEST(McrCombinedTest, RefitIsNonNegativeWhateverTheModeOfTheSpectra)
{
    // The free spectrum would have to be negative where the other is held too high.
    const Matrix<double> data = mixture(M, 4, 2, 0.02, 9);
    for (const bool plain : {true, false}) {
        const McrOutcome outcome = runMcr(
            data, 2,
            [](MCR& mcr) {
                bareLoop()(mcr);
                mcr.maxIterations = 1;
                mcr.setNonNegMode(0, 2);
                mcr.setBounds(1, matrixOf<int>({{1, 0, 0, 0}, {0, 0, 0, 0}}), Matrix<double>(2, 4, 50));
            },
            plain);
        EXPECT_EQ(outcome.mcr->spec[0][0], 50);
        EXPECT_EQ(outcome.mcr->spec[1][0], 0);
    }
    expectAsReference(noisy(), K, [](MCR& mcr) {
        asTheEngineSets(mcr);
        mcr.setNonNegMode(1, 0);
        mcr.warmUp = 0;
        Matrix<int> modes(K, N);
        modes[0][0] = modes[1][0] = modes[2][3] = modes[1][5] = modes[0][6] = 1;
        mcr.setBounds(1, modes, Matrix<double>(K, N, 3));
    });
}

TEST(McrCombinedTest, ChangeBelowTheThresholdIsNoneForTheRefit)
{
    // Both unknown in the second band; the bound moves the first spectrum by less than a ten-millionth there.
    const Matrix<double> data = matrixOf({{2, 1, 0}, {1, 3, 1}, {0, 2, 5}, {1, 1, 1}});
    for (const double shift : {5e-8, 1e-3}) {
        const auto run = [&](double moved) {
            return runMcr(data, 2, [&](MCR& mcr) {
                bareLoop()(mcr);
                mcr.maxIterations = 1;
                mcr.setInitialEstimate(1, matrixOf({{1, 1, 0}, {0, 1, 2}}));
                if (moved != 0) {
                    const McrOutcome free = runMcr(data, 2, [](MCR& other) {
                        bareLoop()(other);
                        other.maxIterations = 1;
                        other.setInitialEstimate(1, matrixOf({{1, 1, 0}, {0, 1, 2}}));
                    });
                    Matrix<double> values(2, 3);
                    values[0][1] = free.mcr->spec[0][1] + moved;
                    mcr.setBounds(1, matrixOf<int>({{0, 1, 0}, {0, 0, 0}}), values);
                }
            });
        };
        const double freely = run(0).mcr->spec[1][1];
        const double refitted = run(shift).mcr->spec[1][1];
        if (shift < 1e-7) {
            EXPECT_NEAR(refitted, freely, 1e-12);
        } else {
            EXPECT_GT(std::abs(refitted - freely), 1e-6);
        }
    }
}

TEST(McrCombinedTest, EveryUnimodalityModeWithBoundsAndNonNegativity)
{
    for (const int mode : {1, 2, 3, 4}) {
        for (const Matrix<int>& topology : {oneRowOfBands(N), matrixOf<int>({{1, 1, 1, 0, 1}, {1, 0, 1, 1, 1}}),
                                            matrixOf<int>({{1, 1, 1}, {0, 1, 1}, {1, 1, 1}})}) {
            SCOPED_TRACE(testing::Message() << "mode " << mode << ", rows " << topology.M);
            expectAsReference(mixture(M, N, K, 0.3, 5), K, [&](MCR& mcr) {
                asTheEngineSets(mcr);
                mcr.maxIterations = 8;
                mcr.autoSorting = 0;
                mcr.warmUp = 1;
                EXPECT_EQ(mcr.setTopology(topology), 0);
                mcr.setUnimodFlags(1, vectorOf<int>({mode, 0, mode}));
                EXPECT_EQ(mcr.setUnimodFlags(0, vectorOf<int>({0, mode, 0})), 0);
                EXPECT_TRUE(mcr.setBandCutoff(0, 1, 0));
            });
        }
    }
}

TEST(McrCombinedTest, EverythingAtOnce)
{
    expectAsReference(noisy(), K, [](MCR& mcr) {
        asTheEngineSets(mcr);
        mcr.forceAF = 1;
        mcr.warmUp = 3;
        mcr.normalization = 2;
        mcr.setUnimodFlags(0, vectorOf<int>({0, 0, 3}));
        mcr.setUnimodMode(0, 2);
        mcr.setUnimodMode(1, 3);
        mcr.setBandCutoff(1, 0, 6);
        mcr.setSolutionMask(2, Vector<int>(25));
        mcr.setPureMask(0, vectorOf<int>({1, 2}));
    });
}

TEST(McrCombinedTest, WeightedUpdate)
{
    const Matrix<double> weights = randomMatrix(M, N, 3, 0.2, 2);
    const McrOutcome outcome = expectAsReference(noisy(), K, [&](MCR& mcr) {
        asTheEngineSets(mcr);
        EXPECT_EQ(mcr.setWeights(weights), 0);
        EXPECT_EQ(mcr.setWeightingMode(1), 0);
    });
    EXPECT_NE(outcome.mcr->fitData.storage.data, outcome.mcr->data.storage.data);
}

TEST(McrCombinedTest, WeightedUpdateInTheFinalStep)
{
    const Matrix<double> weights = randomMatrix(M, N, 3, 0.2, 2);
    const McrOutcome outcome = expectAsReference(noisy(), K, [&](MCR& mcr) {
        asTheEngineSets(mcr);
        mcr.maxIterations = 100;
        mcr.convergenceTolerance = 0.5;
        mcr.setWeights(weights);
        mcr.setWeightingMode(2);
    });
    EXPECT_EQ(outcome.result, 0);
}

TEST(McrCombinedTest, EqualWeightsChangeOnlyByProjection)
{
    const auto specWith = [](bool weighted) {
        return runMcr(noisy(), K,
                      [weighted](MCR& mcr) {
                          bareLoop()(mcr);
                          mcr.maxIterations = 1;
                          if (weighted) {
                              mcr.setWeights(Matrix<double>(M, N, 3));
                              mcr.setWeightingMode(1);
                          }
                      })
            .mcr->spec;
    };
    EXPECT_TRUE(agree(specWith(true), specWith(false), 1e-10));
}

TEST(McrCombinedTest, WithoutWeightsTheFitDataAreAShare)
{
    const McrOutcome outcome = runMcr(noisy(), K, asTheEngineSets);
    EXPECT_EQ(outcome.mcr->fitData.storage.data, outcome.mcr->data.storage.data);
}

TEST(McrCombinedTest, RowScalingDividesTheRawDataAndMultipliesBack)
{
    const Matrix<double> data = noisy();
    const Matrix<double> before = data.deepCopy();
    const McrOutcome outcome = runMcr(data, K, [](MCR& mcr) {
        asTheEngineSets(mcr);
        mcr.rowScaling = 1;
    });
    EXPECT_EQ(outcome.mcr->rawData.storage.data, data.storage.data);
    EXPECT_TRUE(agree(data, before, 1e-15));
    expectAsReference(data, K, [](MCR& mcr) {
        asTheEngineSets(mcr);
        mcr.rowScaling = 1;
    });
    expectAsReference(data, K, [](MCR& mcr) {
        asTheEngineSets(mcr);
        mcr.rowScaling = 1;
        mcr.forceAF = 1;
    });
}

TEST(McrCombinedTest, RowScalingHasNoGuardAgainstARowWithoutSignal)
{
    Matrix<double> data = noisy();
    for (long long j = 0; j < N; ++j) {
        data[5][j] = 0;
    }
    const McrOutcome outcome = expectAsReference(data, K, [](MCR& mcr) {
        asTheEngineSets(mcr);
        mcr.rowScaling = 1;
    });
    EXPECT_TRUE(std::isnan(outcome.mcr->rawData[5][0]));
    EXPECT_TRUE(std::isnan(outcome.mcr->lackOfFitRaw));
    EXPECT_FALSE(std::isnan(outcome.mcr->lackOfFitPCA));
}

TEST(McrCombinedTest, DenoisingKeepsTheExtraComponents)
{
    for (const int extra : {0, 1, 3, 40}) {
        SCOPED_TRACE(extra);
        const McrOutcome outcome = expectAsReference(noisy(), K, [extra](MCR& mcr) {
            asTheEngineSets(mcr);
            mcr.extraPCs = extra;
        });
        PCA pca;
        pca.decompose(outcome.mcr->data, 0);
        int kept = 0;
        for (long long j = 0; j < N; ++j) {
            kept += pca.S[j][j] > 1e-12 * pca.S[0][0] ? 1 : 0;
        }
        EXPECT_EQ(kept, std::min<int>(K + extra, N));
    }
}

TEST(McrCombinedTest, GivenConcentrationsMakeTheFirstSpectra)
{
    expectAsReference(noisy(), K, [](MCR& mcr) {
        asTheEngineSets(mcr);
        EXPECT_EQ(mcr.setInitialEstimate(0, randomMatrix(M, K, 14, 0, 1)), 0);
    });
}

TEST(McrCombinedTest, AsManyComponentsAsBands)
{
    expectAsReference(
        mixture(25, 3, 3, 0.2, 2), 3,
        [](MCR& mcr) {
            mcr.forceAF = 0;
            mcr.maxIterations = 6;
            mcr.setNonNegMode(0, 2);
            mcr.setNonNegMode(1, 2);
        },
        false);
}

TEST(McrCombinedTest, AsManyComponentsAsPixels)
{
    expectAsReference(
        mixture(3, 6, 3, 0.4, 2), 3,
        [](MCR& mcr) {
            bareLoop()(mcr);
            mcr.maxIterations = 1;
            mcr.normalization = 1;
            mcr.setBandCutoff(0, 1, 0);
        },
        false);
}

TEST(McrCombinedTest, FewerPixelsThanBands)
{
    expectAsReference(mixture(7, 12, 3, 0.4, 2), 3, [](MCR& mcr) {
        mcr.maxIterations = 6;
        mcr.convergenceTolerance = 1e-6;
        mcr.setNonNegMode(0, 2);
        mcr.setNonNegMode(1, 2);
        mcr.setTopology(oneRowOfBands(12));
        mcr.setBandCutoff(1, 0, 9);
    });
}

TEST(McrCombinedTest, RunLeavesTheCallersDataAlone)
{
    const Matrix<double> data = noisy();
    const Matrix<double> before = data.deepCopy();
    for (const bool plain : {true, false}) {
        runMcr(
            data, K,
            [](MCR& mcr) {
                asTheEngineSets(mcr);
                mcr.forceAF = 1;
                mcr.setWeights(randomMatrix(M, N, 3, 0.2, 2));
                mcr.setWeightingMode(1);
                mcr.setBandCutoff(0, 0, 0);
            },
            plain);
        EXPECT_TRUE(testsupport::sameBits(data, before));
    }
}
