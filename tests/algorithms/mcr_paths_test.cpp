// SPDX-License-Identifier: GPL-3.0-or-later
#include "McrCase.h"
#include "XTNT/xtnt_parallel.h"
#include "support/Numbers.h"

#include <cmath>

#include <gmock/gmock.h>

// The passes that are fused for speed, against the plain ones and whatever the number of threads.
using testsupport::agree;
using testsupport::Configure;
using testsupport::McrOutcome;
using testsupport::mixture;
using testsupport::oneRowOfBands;
using testsupport::randomMatrix;
using testsupport::runMcr;
using testsupport::sameBits;
using XTNT::Matrix;

namespace {

void twentyIterations(MCR& mcr)
{
    mcr.forceAF = 0;
    mcr.maxIterations = 20;
    mcr.convergenceTolerance = 0;
    mcr.setNonNegMode(0, 2);
    mcr.setNonNegMode(1, 2);
    mcr.setTopology(oneRowOfBands(mcr.nCols));
}

void expectPathsAgree(const Matrix<double>& data, int K, const Configure& configure, int iterations = 20)
{
    const McrOutcome fast = runMcr(data, K, configure, false);
    const McrOutcome plain = runMcr(data, K, configure, true);
    EXPECT_EQ(fast.result, plain.result);
    EXPECT_EQ(fast.mcr->iteration, plain.mcr->iteration);
    EXPECT_GE(fast.mcr->iteration, iterations);
    EXPECT_GT(fast.mcr->lackOfFitPCA, 0);
    EXPECT_NEAR(fast.mcr->lackOfFitPCA / plain.mcr->lackOfFitPCA, 1, 1e-8);
    EXPECT_NEAR(fast.mcr->lackOfFitRaw / plain.mcr->lackOfFitRaw, 1, 1e-8);
}

// A mixture with noise that falls from band to band, so that the singular values of the data span six decades.
Matrix<double> wideSpan(long long M, long long N, int K)
{
    Matrix<double> data = mixture(M, N, K, 0, 17);
    const Matrix<double> noise = randomMatrix(M, N, 18);
    for (long long i = 0; i < M; ++i) {
        for (long long j = 0; j < N; ++j) {
            data[i][j] +=
                0.02 * noise[i][j] * std::pow(10.0, -5.0 * static_cast<double>(j) / static_cast<double>(N - 1));
        }
    }
    return data;
}

// Spectra that differ by this much, each brightest in its band.
Matrix<double> nearlyEqualSpectra(int K, long long N, double difference)
{
    Matrix<double> spec(K, N);
    for (long long c = 0; c < K; ++c) {
        for (long long j = 0; j < N; ++j) {
            const double x = static_cast<double>(j) / static_cast<double>(N - 1);
            spec[c][j] = 1 + 0.5 * x + difference * std::cos(3 * x * static_cast<double>(c + 1));
        }
    }
    return spec;
}

struct ThreadCountGuard
{
    ~ThreadCountGuard() { XTNT::setThreadCount(0); }
};

} // namespace

TEST(McrPathsTest, NoisyDataGiveTheSameFit)
{
    expectPathsAgree(mixture(2000, 12, 4, 0.1, 13), 4, twentyIterations);
}

TEST(McrPathsTest, DataOfAWideSpanGiveTheSameFit)
{
    const Matrix<double> data = wideSpan(2000, 12, 4);
    PCA pca;
    pca.decompose(data, 0);
    EXPECT_GT(pca.condition, 1e6);
    expectPathsAgree(data, 4, [](MCR& mcr) {
        twentyIterations(mcr);
        mcr.extraPCs = 8;
    });
}

TEST(McrPathsTest, NearlyEqualSpectraGiveTheSameFit)
{
    const Matrix<double> amounts = randomMatrix(2000, 3, 3, 0, 1);
    for (const double difference : {1e-2, 1e-4, 1e-6}) {
        SCOPED_TRACE(difference);
        const Matrix<double> spec = nearlyEqualSpectra(3, 10, difference);
        const Matrix<double> noise = randomMatrix(2000, 10, 4, -0.02, 0.02);
        expectPathsAgree(
            amounts * spec + noise, 3,
            [&](MCR& mcr) {
                twentyIterations(mcr);
                mcr.maxIterations = 3;
                mcr.autoSorting = 0;
                mcr.setInitialEstimate(1, spec.deepCopy());
            },
            3);
    }
}

TEST(McrPathsTest, NearlyPerfectDataGiveTheSameFit)
{
    // The residual is a millionth of the data: from Gram matrices alone it would be lost.
    for (const double noise : {1e-4, 1e-6, 1e-9}) {
        SCOPED_TRACE(noise);
        expectPathsAgree(
            mixture(1500, 10, 3, noise, 23), 3,
            [](MCR& mcr) {
                mcr.forceAF = 0;
                mcr.extraPCs = 3;
            },
            2);
    }
}

TEST(McrPathsTest, ConstraintsGiveTheSameFit)
{
    const Configure kinds[] = {
        [](MCR& mcr) { mcr.forceAF = 1; },
        [](MCR& mcr) { mcr.setBandCutoff(0, 2, 3); },
        [](MCR& mcr) { mcr.setLocked(1, 1); },
        [](MCR& mcr) {
            mcr.setUnimodFlags(1, testsupport::vectorOf<int>({1, 2, 3, 4}));
        },
        [](MCR& mcr) { mcr.setNonNegMode(0, 1); },
        [](MCR& mcr) { mcr.setNonNegMode(0, 0); },
        [](MCR& mcr) { mcr.setNonNegMode(1, 1); },
        [](MCR& mcr) { mcr.normalization = 2; },
        [](MCR& mcr) {
            mcr.setPureMask(1, testsupport::vectorOf<int>({4, 900, 1999}));
        },
        [](MCR& mcr) {
            mcr.setUnimodFlags(0, testsupport::vectorOf<int>({0, 2, 0, 0}));
        },
    };
    const Matrix<double> data = mixture(2000, 12, 4, 0.15, 29);
    int number = 0;
    for (const Configure& kind : kinds) {
        SCOPED_TRACE(number++);
        expectPathsAgree(data, 4, [&](MCR& mcr) {
            twentyIterations(mcr);
            kind(mcr);
        });
    }
}

TEST(McrPathsTest, NumberOfThreadsDoesNotShow)
{
    const ThreadCountGuard guard;
    const Matrix<double> data = mixture(20000, 12, 4, 0.15, 41);
    std::vector<McrOutcome> outcomes;
    for (const int threads : {1, 2, 4, 4}) {
        XTNT::setThreadCount(threads);
        outcomes.push_back(runMcr(data, 4, [](MCR& mcr) {
            twentyIterations(mcr);
            mcr.forceAF = 1;
            mcr.maxIterations = 9;
            mcr.setBandCutoff(0, 2, 3);
            mcr.setUnimodMode(0, 2);
        }));
    }
    for (const McrOutcome& outcome : outcomes) {
        EXPECT_EQ(outcome.trace, outcomes[0].trace);
        EXPECT_TRUE(sameBits(outcome.mcr->conc, outcomes[0].mcr->conc));
        EXPECT_TRUE(sameBits(outcome.mcr->spec, outcomes[0].mcr->spec));
        EXPECT_TRUE(sameBits(outcome.mcr->data, outcomes[0].mcr->data));
        EXPECT_TRUE(sameBits(outcome.mcr->residualRaw, outcomes[0].mcr->residualRaw));
        EXPECT_EQ(outcome.mcr->lackOfFitPCA, outcomes[0].mcr->lackOfFitPCA);
        EXPECT_EQ(outcome.mcr->lackOfFitRaw, outcomes[0].mcr->lackOfFitRaw);
    }
}

// What is let go of leaves no trace in what stays: not of tall data, and not of wider ones.
TEST(McrPathsTest, MatricesThatAreNotKeptChangeNoBit)
{
    for (const auto& data : {mixture(3000, 12, 4, 0.15, 47), mixture(9, 12, 4, 0.15, 53)}) {
        const auto run = [&data](int keep) {
            return runMcr(data, 4, [keep](MCR& mcr) {
                twentyIterations(mcr);
                mcr.maxIterations = 7;
                mcr.keepMatrices = keep;
            });
        };
        const McrOutcome kept = run(1);
        const McrOutcome lean = run(0);
        EXPECT_EQ(lean.trace, kept.trace);
        EXPECT_TRUE(sameBits(lean.mcr->conc, kept.mcr->conc));
        EXPECT_TRUE(sameBits(lean.mcr->spec, kept.mcr->spec));
        EXPECT_TRUE(sameBits(lean.mcr->data, kept.mcr->data));
        EXPECT_EQ(lean.mcr->lackOfFitPCA, kept.mcr->lackOfFitPCA);
        EXPECT_EQ(lean.mcr->lackOfFitRaw, kept.mcr->lackOfFitRaw);
        EXPECT_TRUE(lean.mcr->residualPCA.empty() && lean.mcr->residualRaw.empty() && lean.mcr->pca.U.empty());
        EXPECT_FALSE(kept.mcr->residualPCA.empty() || kept.mcr->residualRaw.empty() || kept.mcr->pca.U.empty());
    }
}
