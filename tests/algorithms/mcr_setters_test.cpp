// SPDX-License-Identifier: GPL-3.0-or-later
#include "McrCase.h"
#include "support/Numbers.h"

#include <gmock/gmock.h>

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testsupport::elements;
using testsupport::matrixOf;
using testsupport::mixture;
using testsupport::preparedMcr;
using testsupport::vectorOf;
using XTNT::Matrix;
using XTNT::Vector;

namespace {

constexpr int K = 3;
constexpr long long M = 12;
constexpr long long N = 6;

std::unique_ptr<MCR> ready()
{
    return preparedMcr(mixture(M, N, K, 0.01, 1), K);
}

} // namespace

TEST(McrSettersTest, DefaultsAreThoseOfTheTable)
{
    const MCR mcr;
    EXPECT_EQ(mcr.nComponents, 0);
    EXPECT_EQ(mcr.nRows, 0);
    EXPECT_EQ(mcr.nCols, 0);
    EXPECT_EQ(mcr.iteration, 0);
    EXPECT_EQ(mcr.maxIterations, 20);
    EXPECT_EQ(mcr.notImprovingCount, 0);
    EXPECT_EQ(mcr.weightingMode, 0);
    EXPECT_EQ(mcr.concNonNegMode, 0);
    EXPECT_EQ(mcr.specNonNegMode, 0);
    EXPECT_EQ(mcr.rowScaling, 0);
    EXPECT_EQ(mcr.debugTrace, 0);
    EXPECT_EQ(mcr.initialEstimateKind, 0);
    EXPECT_EQ(mcr.convergenceTolerance, 0.1);
    EXPECT_EQ(mcr.unimodTol, 1.0);
    EXPECT_EQ(mcr.normalization, 1);
    EXPECT_EQ(mcr.forceAF, 1);
    EXPECT_EQ(mcr.warmUp, 5);
    EXPECT_EQ(mcr.autoSorting, 1);
    EXPECT_EQ(mcr.lackOfFitPCA, 0);
    EXPECT_EQ(mcr.lackOfFitRaw, 0);
    EXPECT_EQ(mcr.extraPCs, 1);
    EXPECT_EQ(mcr.lastError, 0);
    EXPECT_EQ(mcr.concUnimodActive + mcr.specUnimodActive + mcr.concBoundsActive + mcr.specBoundsActive, 0);
    EXPECT_TRUE(mcr.rawData.empty() && mcr.conc.empty() && mcr.spec.empty() && mcr.topology.empty());
}

TEST(McrSettersTest, TopologyMustHoldAsManyBandsAsTheData)
{
    const auto mcr = ready();
    EXPECT_EQ(mcr->setTopology(matrixOf<int>({{1, 1, 1, 1, 1}})), 1);
    EXPECT_EQ(mcr->setTopology(Matrix<int>()), 1);
    EXPECT_TRUE(mcr->topology.empty());
    const Matrix<int> layout = matrixOf<int>({{1, 0, 1, 1}, {0, 1, 1, 1}});
    EXPECT_EQ(mcr->setTopology(layout), 0);
    EXPECT_EQ(mcr->topology.storage.data, layout.storage.data);
    EXPECT_EQ(mcr->setTopology(matrixOf<int>({{1, 1, 1, 1, 1, 1, 1}})), 1);
    EXPECT_EQ(mcr->topology.storage.data, layout.storage.data);
}

TEST(McrSettersTest, NonNegModeSizesTheFlagsOfItsFactor)
{
    const auto mcr = ready();
    EXPECT_EQ(mcr->setNonNegMode(0, 1), 0);
    EXPECT_EQ(mcr->concNonNegMode, 1);
    EXPECT_THAT(elements(mcr->concNonNegFlags), ElementsAre(1, 1, 1));
    EXPECT_THAT(elements(mcr->specNonNegFlags), IsEmpty());
    mcr->specNonNegFlags = vectorOf<int>({0, 0, 0});
    EXPECT_EQ(mcr->setNonNegMode(1, 2), 0);
    EXPECT_EQ(mcr->specNonNegMode, 2);
    EXPECT_THAT(elements(mcr->specNonNegFlags), ElementsAre(1, 1, 1));
    EXPECT_EQ(mcr->setNonNegMode(2, 0), 1);
    EXPECT_EQ(mcr->setNonNegMode(-1, 0), 1);
    EXPECT_EQ(mcr->concNonNegMode, 1);
    EXPECT_EQ(mcr->specNonNegMode, 2);
}

TEST(McrSettersTest, UnimodTolIsStored)
{
    const auto mcr = ready();
    mcr->setUnimodTol(1.25);
    EXPECT_EQ(mcr->unimodTol, 1.25);
}

TEST(McrSettersTest, UnimodFlagsOfSpectraAreStoredAndStillRefused)
{
    const auto mcr = ready();
    EXPECT_EQ(mcr->setUnimodFlags(0, vectorOf<int>({1, 2})), 1);
    EXPECT_EQ(mcr->setUnimodFlags(1, vectorOf<int>({1, 2, 3, 0})), 1);
    EXPECT_THAT(elements(mcr->concUnimodModes), IsEmpty());
    EXPECT_THAT(elements(mcr->specUnimodModes), ElementsAre(0, 0, 0));
    EXPECT_EQ(mcr->setUnimodFlags(0, vectorOf<int>({1, 2, 3})), 0);
    EXPECT_THAT(elements(mcr->concUnimodModes), ElementsAre(1, 2, 3));
    EXPECT_EQ(mcr->setUnimodFlags(1, vectorOf<int>({4, 0, 2})), 1);
    EXPECT_THAT(elements(mcr->specUnimodModes), ElementsAre(4, 0, 2));
    EXPECT_EQ(mcr->setUnimodFlags(2, vectorOf<int>({3, 3, 3})), 1);
    EXPECT_THAT(elements(mcr->concUnimodModes), ElementsAre(1, 2, 3));
    EXPECT_THAT(elements(mcr->specUnimodModes), ElementsAre(4, 0, 2));
}

TEST(McrSettersTest, UnimodModeTakesTheNamedModesOnly)
{
    const auto mcr = ready();
    EXPECT_FALSE(mcr->setUnimodMode(-1, 1));
    EXPECT_FALSE(mcr->setUnimodMode(K, 1));
    EXPECT_FALSE(mcr->setUnimodMode(0, 4));
    EXPECT_THAT(elements(mcr->specUnimodModes), Each(0));
    EXPECT_TRUE(mcr->setUnimodMode(1, 3));
    EXPECT_THAT(elements(mcr->specUnimodModes), ElementsAre(0, 3, 0));
    mcr->specUnimodModes = Vector<int>();
    EXPECT_TRUE(mcr->setUnimodMode(2, 1));
    EXPECT_THAT(elements(mcr->specUnimodModes), ElementsAre(0, 0, 1));
}

TEST(McrSettersTest, BoundsMustHaveTheSizeOfTheirFactor)
{
    const auto mcr = ready();
    const Matrix<int> specModes(K, N, 2);
    const Matrix<double> specValues(K, N, 0.5);
    const Matrix<int> concModes(M, K, 3);
    const Matrix<double> concValues(M, K, 0.25);
    EXPECT_EQ(mcr->setBounds(0, specModes, specValues), 1);
    EXPECT_EQ(mcr->setBounds(0, concModes, specValues), 1);
    EXPECT_EQ(mcr->setBounds(0, specModes, concValues), 1);
    EXPECT_EQ(mcr->setBounds(1, concModes, concValues), 1);
    EXPECT_EQ(mcr->setBounds(1, specModes, concValues), 1);
    EXPECT_EQ(mcr->setBounds(1, concModes, specValues), 1);
    EXPECT_EQ(mcr->setBounds(2, specModes, specValues), 1);
    EXPECT_TRUE(mcr->concBoundModes.empty());
    EXPECT_THAT(elements(mcr->specBoundModes), Each(0));
    EXPECT_EQ(mcr->setBounds(0, concModes, concValues), 0);
    EXPECT_EQ(mcr->setBounds(1, specModes, specValues), 0);
    EXPECT_THAT(elements(mcr->concBoundModes), Each(3));
    EXPECT_THAT(elements(mcr->concBoundValues), Each(0.25));
    EXPECT_THAT(elements(mcr->specBoundModes), Each(2));
    EXPECT_THAT(elements(mcr->specBoundValues), Each(0.5));
}

TEST(McrSettersTest, InitialEstimateMustHaveTheSizeOfItsFactor)
{
    const auto mcr = ready();
    const Matrix<double> spec(K, N, 1);
    const Matrix<double> conc(M, K, 1);
    EXPECT_EQ(mcr->setInitialEstimate(0, spec), 1);
    EXPECT_EQ(mcr->setInitialEstimate(1, conc), 1);
    EXPECT_EQ(mcr->setInitialEstimate(2, spec), 1);
    EXPECT_EQ(mcr->initialEstimateKind, 0);
    EXPECT_EQ(mcr->setInitialEstimate(0, conc), 0);
    EXPECT_EQ(mcr->initialEstimateKind, 1);
    EXPECT_EQ(mcr->conc.storage.data, conc.storage.data);
    EXPECT_EQ(mcr->setInitialEstimate(1, spec), 0);
    EXPECT_EQ(mcr->initialEstimateKind, 2);
    EXPECT_EQ(mcr->spec.storage.data, spec.storage.data);
}

TEST(McrSettersTest, WeightingModeIsRefusedWithoutWeights)
{
    const auto mcr = ready();
    EXPECT_EQ(mcr->setWeightingMode(1), 1);
    EXPECT_EQ(mcr->weightingMode, 0);
    EXPECT_EQ(mcr->setWeightingMode(0), 1);
    EXPECT_EQ(mcr->setWeights(Matrix<double>(N, M, 1)), 1);
    EXPECT_EQ(mcr->setWeights(Matrix<double>(M, N - 1, 1)), 1);
    EXPECT_TRUE(mcr->weights.empty());
    const Matrix<double> weights(M, N, 1);
    EXPECT_EQ(mcr->setWeights(weights), 0);
    EXPECT_EQ(mcr->weights.storage.data, weights.storage.data);
    EXPECT_EQ(mcr->setWeightingMode(1), 0);
    EXPECT_EQ(mcr->weightingMode, 1);
    mcr->weights = Matrix<double>();
    EXPECT_EQ(mcr->setWeightingMode(0), 1);
    EXPECT_EQ(mcr->weightingMode, 1);
}

TEST(McrSettersTest, LockedSizesItsFlags)
{
    const auto mcr = ready();
    EXPECT_FALSE(mcr->setLocked(-1, 1));
    EXPECT_FALSE(mcr->setLocked(K, 1));
    EXPECT_THAT(elements(mcr->lockedFlags), IsEmpty());
    EXPECT_TRUE(mcr->setLocked(1, 1));
    EXPECT_THAT(elements(mcr->lockedFlags), ElementsAre(0, 1, 0));
    EXPECT_TRUE(mcr->setLocked(1, 0));
    EXPECT_TRUE(mcr->setLocked(2, 1));
    EXPECT_THAT(elements(mcr->lockedFlags), ElementsAre(0, 0, 1));
}

TEST(McrSettersTest, BandCutoffRefusesWhatIsOutOfRange)
{
    const auto mcr = ready();
    EXPECT_EQ(mcr->setTopology(testsupport::oneRowOfBands(N)), 0);
    EXPECT_FALSE(mcr->setBandCutoff(0, -1, 2));
    EXPECT_FALSE(mcr->setBandCutoff(0, K, 2));
    EXPECT_FALSE(mcr->setBandCutoff(0, 0, static_cast<int>(N)));
    EXPECT_FALSE(mcr->setBandCutoff(2, 0, 2));
    EXPECT_THAT(elements(mcr->specBoundModes), Each(0));
}

TEST(McrSettersTest, BandCutoffsMarkTheEndsOfASingleRow)
{
    const auto mcr = ready();
    ASSERT_EQ(mcr->setTopology(testsupport::oneRowOfBands(N)), 0);
    EXPECT_TRUE(mcr->setBandCutoff(0, 0, 1));
    EXPECT_TRUE(mcr->setBandCutoff(1, 2, 4));
    EXPECT_THAT(elements(mcr->specBoundModes), ElementsAre(1, 1, 0, 0, 0, 0, //
                                                           0, 0, 0, 0, 0, 0, //
                                                           0, 0, 0, 0, 1, 1));
    EXPECT_THAT(elements(mcr->specBoundValues), Each(0));
    // Marks stay, a later cut adds to them.
    EXPECT_TRUE(mcr->setBandCutoff(1, 0, 5));
    EXPECT_THAT(elements(mcr->specBoundModes.row(0)), ElementsAre(1, 1, 0, 0, 0, 1));
}

TEST(McrSettersTest, BandCutoffsCountTheBandsThatEveryRowHas)
{
    const auto mcr = ready();
    mcr->specBoundModes = Matrix<int>();
    mcr->specBoundValues = Matrix<double>();
    // Segments: bands 0 to 2 of the first row, 3 to 5 of the second.
    ASSERT_EQ(mcr->setTopology(matrixOf<int>({{1, 1, 0, 1}, {0, 1, 1, 1}})), 0);
    EXPECT_TRUE(mcr->setBandCutoff(0, 0, 1));
    EXPECT_TRUE(mcr->setBandCutoff(1, 1, 2));
    EXPECT_TRUE(mcr->setBandCutoff(0, 2, 0));
    EXPECT_THAT(elements(mcr->specBoundModes), ElementsAre(1, 1, 0, 1, 0, 0, //
                                                           0, 0, 1, 0, 1, 1, //
                                                           1, 0, 0, 0, 0, 0));
    EXPECT_THAT(elements(mcr->specBoundValues), Each(0));
    EXPECT_EQ(mcr->specBoundValues.M, K);
    EXPECT_EQ(mcr->specBoundValues.N, N);
}

TEST(McrSettersTest, BandCutoffBeyondTheLayoutTakesWholeRowsOrNone)
{
    const auto mcr = ready();
    ASSERT_EQ(mcr->setTopology(matrixOf<int>({{1, 1, 0, 1}, {0, 1, 1, 1}})), 0);
    EXPECT_TRUE(mcr->setBandCutoff(1, 0, 5));
    EXPECT_THAT(elements(mcr->specBoundModes), Each(0));
    EXPECT_TRUE(mcr->setBandCutoff(0, 0, 5));
    EXPECT_THAT(elements(mcr->specBoundModes.row(0)), Each(1));
    EXPECT_THAT(elements(mcr->specBoundModes.row(1)), Each(0));
}

TEST(McrSettersTest, SolutionMaskMarksByTheLengthOfTheList)
{
    const auto mcr = ready();
    EXPECT_TRUE(mcr->setSolutionMask(1, vectorOf<int>({11, 11, 7})));
    EXPECT_EQ(mcr->concBoundModes.M, M);
    EXPECT_EQ(mcr->concBoundModes.N, K);
    EXPECT_THAT(elements(mcr->concBoundModes.column(0)), Each(0));
    EXPECT_THAT(elements(mcr->concBoundModes.column(1)), ElementsAre(0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1, 1));
    EXPECT_THAT(elements(mcr->concBoundModes.column(2)), Each(0));
    EXPECT_THAT(elements(mcr->concBoundValues), Each(0));
    EXPECT_TRUE(mcr->setSolutionMask(2, Vector<int>()));
    EXPECT_THAT(elements(mcr->concBoundModes.column(2)), Each(1));
    // A list longer than the image leaves every pixel.
    EXPECT_TRUE(mcr->setSolutionMask(0, Vector<int>(M + 3)));
    EXPECT_THAT(elements(mcr->concBoundModes.column(0)), Each(0));
}

TEST(McrSettersTest, MasksAreRefusedOnlyWhenTheListFailsAtBothEnds)
{
    const auto mcr = ready();
    const Vector<int> bothEnds = vectorOf<int>({-1, static_cast<int>(M)});
    EXPECT_FALSE(mcr->setSolutionMask(0, bothEnds));
    EXPECT_FALSE(mcr->setPureMask(0, bothEnds));
    EXPECT_FALSE(mcr->setSolutionMask(-1, vectorOf<int>({1})));
    EXPECT_FALSE(mcr->setSolutionMask(K, vectorOf<int>({1})));
    EXPECT_FALSE(mcr->setPureMask(-1, vectorOf<int>({1})));
    EXPECT_FALSE(mcr->setPureMask(K, vectorOf<int>({1})));
    EXPECT_TRUE(mcr->concBoundModes.empty());
    EXPECT_TRUE(mcr->setSolutionMask(0, vectorOf<int>({-1, 3})));
    EXPECT_TRUE(mcr->setSolutionMask(0, vectorOf<int>({0, 99})));
    EXPECT_TRUE(mcr->setPureMask(0, vectorOf<int>({-1, 3})));
    EXPECT_TRUE(mcr->setPureMask(0, vectorOf<int>({0, 99})));
}

TEST(McrSettersTest, PureMaskHoldsTheOtherComponentsAtZero)
{
    const auto mcr = ready();
    EXPECT_TRUE(mcr->setPureMask(1, vectorOf<int>({2, 5})));
    for (long long i = 0; i < M; ++i) {
        const int mode = i == 2 || i == 5 ? 1 : 0;
        EXPECT_THAT(elements(mcr->concBoundModes.row(i)), ElementsAre(mode, 0, mode)) << "pixel " << i;
    }
    EXPECT_THAT(elements(mcr->concBoundValues), Each(0));
    EXPECT_TRUE(mcr->setPureMask(1, Vector<int>()));
}
