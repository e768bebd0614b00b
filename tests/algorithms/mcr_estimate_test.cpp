// SPDX-License-Identifier: GPL-3.0-or-later
#include "McrCase.h"
#include "support/Numbers.h"

#include <cmath>
#include <limits>

#include <gmock/gmock.h>

using testing::Each;
using testing::ElementsAre;
using testsupport::agree;
using testsupport::elements;
using testsupport::matrixOf;
using testsupport::mixture;
using testsupport::vectorOf;
using XTNT::Matrix;
using XTNT::Vector;

namespace {

// Two groups of pixels, of the means (1, 2, 8, 4) and (6, 3, 3, 0).
Matrix<double> twoGroups()
{
    return matrixOf({{1, 2, 8, 5}, {6, 3, 2.5, 0}, {1, 2.5, 8, 3}, {6.5, 3, 3.5, 0}, {1, 1.5, 8, 4}, {5.5, 3, 3, 0}});
}

} // namespace

TEST(McrEstimateTest, DataAreSharedAndDecomposed)
{
    const Matrix<double> data = twoGroups();
    MCR mcr;
    EXPECT_EQ(mcr.setData(data), 1);
    EXPECT_EQ(mcr.rawData.storage.data, data.storage.data);
    EXPECT_EQ(mcr.nRows, 6);
    EXPECT_EQ(mcr.nCols, 4);
    EXPECT_EQ(mcr.pca.rank, 4);
    EXPECT_EQ(mcr.pca.V.M, 4);
}

TEST(McrEstimateTest, BufferIsWrappedAndNotCopied)
{
    std::vector<double> buffer = elements(twoGroups());
    MCR mcr;
    EXPECT_EQ(mcr.setData(buffer.data(), 6, 4), 1);
    EXPECT_EQ(mcr.rawData.storage.data, buffer.data());
    EXPECT_EQ(mcr.setComponents(2), 0);
}

TEST(McrEstimateTest, EmptyDataGiveTheResultOfTheDecomposition)
{
    MCR mcr;
    EXPECT_EQ(mcr.setData(Matrix<double>()), 0);
    EXPECT_EQ(mcr.setData(nullptr, 0, 0), 0);
    EXPECT_EQ(mcr.setComponents(2), 1);
}

TEST(McrEstimateTest, MoreComponentsThanBandsOrPixelsComeBeforeTheRank)
{
    MCR mcr;
    mcr.setData(twoGroups());
    EXPECT_EQ(mcr.setComponents(5), 1);
    EXPECT_EQ(mcr.lastError, 0);
    MCR wide;
    wide.setData(matrixOf({{1, 2, 3, 4}, {2, 1, 0, 1}, {2, 1, 0, 2}}));
    EXPECT_EQ(wide.setComponents(4), 1);
    EXPECT_EQ(wide.nComponents, 0);
}

TEST(McrEstimateTest, MoreComponentsThanTheRankAreTooMany)
{
    // Rank 2: the third column is the sum of the others.
    const Matrix<double> data = matrixOf({{9, 1, 10}, {8, 0, 8}, {1, 7, 8}, {0, 6, 6}});
    MCR mcr;
    mcr.setData(data);
    EXPECT_EQ(mcr.setComponents(3), 2);
    EXPECT_EQ(mcr.lastError, 2);
    EXPECT_EQ(mcr.nComponents, 0);
    MCR equalToRank;
    equalToRank.setData(data);
    EXPECT_EQ(equalToRank.setComponents(2), 0);
    EXPECT_EQ(equalToRank.nComponents, 2);
    MCR repeatedColumn;
    repeatedColumn.setData(matrixOf({{1, 1}, {2, 2}, {5, 5}}));
    EXPECT_EQ(repeatedColumn.setComponents(2), 2);
}

TEST(McrEstimateTest, FewerThanTwoComponentsAreRefusedLast)
{
    MCR mcr;
    mcr.setData(twoGroups());
    for (const int k : {1, 0, -4}) {
        EXPECT_EQ(mcr.setComponents(k), 3) << k;
    }
    EXPECT_EQ(mcr.lastError, 0);
    // A zero matrix has rank 0, so that one component is too many first.
    MCR zero;
    zero.setData(Matrix<double>(5, 4));
    EXPECT_EQ(zero.setComponents(1), 2);
    EXPECT_EQ(zero.setComponents(0), 3);
}

TEST(McrEstimateTest, ComponentsSizeTheMembers)
{
    MCR mcr;
    mcr.setData(twoGroups());
    ASSERT_EQ(mcr.setComponents(2), 0);
    EXPECT_EQ(mcr.nComponents, 2);
    EXPECT_EQ(mcr.conc.M, 6);
    EXPECT_EQ(mcr.conc.N, 2);
    EXPECT_THAT(elements(mcr.conc), Each(0));
    EXPECT_EQ(mcr.spec.M, 2);
    EXPECT_EQ(mcr.spec.N, 4);
    EXPECT_EQ(mcr.specBoundModes.M, 2);
    EXPECT_EQ(mcr.specBoundModes.N, 4);
    EXPECT_THAT(elements(mcr.specBoundModes), Each(0));
    EXPECT_EQ(mcr.specBoundValues.M, 2);
    EXPECT_EQ(mcr.specBoundValues.N, 4);
    EXPECT_THAT(elements(mcr.specBoundValues), Each(0));
    EXPECT_THAT(elements(mcr.specUnimodModes), ElementsAre(0, 0));
    EXPECT_THAT(elements(mcr.knownSpectrumState), ElementsAre(0, 0));
    EXPECT_TRUE(mcr.concBoundModes.empty());
    EXPECT_TRUE(mcr.concUnimodModes.empty());
    EXPECT_TRUE(mcr.lockedFlags.empty());
    EXPECT_EQ(mcr.initialEstimateKind, 0);
}

TEST(McrEstimateTest, FirstSpectraAreTheGroupsMeansByTheirMaximumInOrderOfTheirCentres)
{
    MCR mcr;
    mcr.setData(twoGroups());
    ASSERT_EQ(mcr.setComponents(2), 0);
    EXPECT_TRUE(agree(mcr.spec, matrixOf({{1, 0.5, 0.5, 0}, {0.125, 0.25, 1, 0.5}})));
}

TEST(McrEstimateTest, FirstSpectraFollowNormalisationAndSorting)
{
    MCR unscaled;
    unscaled.normalization = 0;
    unscaled.setData(twoGroups());
    ASSERT_EQ(unscaled.setComponents(2), 0);
    EXPECT_TRUE(agree(unscaled.spec, matrixOf({{6, 3, 3, 0}, {1, 2, 8, 4}})));
    MCR bySum;
    bySum.normalization = 2;
    bySum.setData(twoGroups());
    ASSERT_EQ(bySum.setComponents(2), 0);
    EXPECT_TRUE(agree(bySum.spec, matrixOf({{0.125, 0.0625, 0.0625, 0}, {1 / 60., 2 / 60., 8 / 60., 4 / 60.}})));
}

TEST(McrEstimateTest, GroupWithoutSignalLeavesCodeThree)
{
    const Matrix<double> data =
        matrixOf({{0, -1, -1}, {0, -2, -1}, {0, -1, -2}, {9, 1, 0}, {9, 1.25, 0}, {0, -1, -1}, {9, 0.75, 0.5}});
    MCR mcr;
    mcr.setData(data);
    EXPECT_EQ(mcr.setComponents(2), 3);
    EXPECT_EQ(mcr.lastError, 3);
    // Without normalisation no factor is tested.
    MCR unscaled;
    unscaled.normalization = 0;
    unscaled.autoSorting = 0;
    unscaled.setData(data);
    EXPECT_EQ(unscaled.setComponents(2), 0);
}

TEST(McrEstimateTest, AnEmptyBackgroundIsNoGroup)
{
    MCR mcr;
    // The rows with light are nearer to each other than to the empty ones.
    mcr.setData(matrixOf({{0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {9, 3, 0}, {3, 9, 0}, {0, 0, 0}, {3, 9, 0.5}}));
    ASSERT_EQ(mcr.setComponents(2), 0);
    EXPECT_GT(mcr.spec[0][0], mcr.spec[0][1]);
    EXPECT_GT(mcr.spec[1][1], mcr.spec[1][0]);
}

TEST(McrEstimateTest, OtherStatesOnlyMarkTheRows)
{
    MCR mcr;
    mcr.setData(twoGroups());
    ASSERT_EQ(mcr.setComponents(2), 0);
    mcr.spec = matrixOf({{1, 2, 3, 4}, {4, 3, 2, 1}});
    mcr.computeInitialEstimate(-1);
    EXPECT_THAT(elements(mcr.knownSpectrumState), ElementsAre(-1, -1));
    EXPECT_THAT(elements(mcr.spec), ElementsAre(1, 2, 3, 4, 4, 3, 2, 1));
    mcr.computeInitialEstimate(0);
    EXPECT_THAT(elements(mcr.knownSpectrumState), ElementsAre(0, 0));
    EXPECT_TRUE(agree(mcr.spec, matrixOf({{1, 0.5, 0.5, 0}, {0.125, 0.25, 1, 0.5}})));
}

namespace {

struct KnownSpectrumTest : testing::Test
{
    void SetUp() override
    {
        mcr.setData(mixture(12, 4, 3, 0.05, 3));
        ASSERT_EQ(mcr.setComponents(3), 0);
        mcr.spec = matrixOf({{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0.5, 0.25, 0}});
    }

    MCR mcr;
    const Vector<double> known = vectorOf({0, 2, 0.2, 0});
};

} // namespace

TEST_F(KnownSpectrumTest, WrongComponentOrLengthChangesNothing)
{
    EXPECT_FALSE(mcr.setKnownSpectrum(-1, known));
    EXPECT_FALSE(mcr.setKnownSpectrum(3, known));
    EXPECT_FALSE(mcr.setKnownSpectrum(0, vectorOf({1, 2, 3})));
    EXPECT_EQ(mcr.autoSorting, 1);
    EXPECT_EQ(mcr.forceAF, 1);
    EXPECT_THAT(elements(mcr.knownSpectrumState), Each(0));
    EXPECT_THAT(elements(mcr.spec), ElementsAre(1, 0, 0, 0, 0, 1, 0, 0, 0, 0.5, 0.25, 0));
}

TEST_F(KnownSpectrumTest, BestOnItsOwnRowMovesNothing)
{
    EXPECT_TRUE(mcr.setKnownSpectrum(1, known));
    EXPECT_THAT(elements(mcr.spec), ElementsAre(1, 0, 0, 0, 0, 2, 0.2, 0, 0, 0.5, 0.25, 0));
    EXPECT_THAT(elements(mcr.knownSpectrumState), ElementsAre(0, -1, 0));
    EXPECT_EQ(mcr.autoSorting, 0);
    EXPECT_EQ(mcr.forceAF, 0);
}

TEST_F(KnownSpectrumTest, ResemblingRowTakesWhatStoodInTheComponentsPlace)
{
    EXPECT_TRUE(mcr.setKnownSpectrum(0, known));
    EXPECT_THAT(elements(mcr.spec), ElementsAre(0, 2, 0.2, 0, 1, 0, 0, 0, 0, 0.5, 0.25, 0));
    EXPECT_THAT(elements(mcr.knownSpectrumState), ElementsAre(-1, 0, 0));
}

TEST_F(KnownSpectrumTest, SecondOfTwoEqualSpectraTakesTheNextBestRow)
{
    EXPECT_TRUE(mcr.setKnownSpectrum(0, known));
    EXPECT_TRUE(mcr.setKnownSpectrum(1, known));
    EXPECT_THAT(elements(mcr.spec), ElementsAre(0, 2, 0.2, 0, 0, 2, 0.2, 0, 1, 0, 0, 0));
    EXPECT_THAT(elements(mcr.knownSpectrumState), ElementsAre(-1, -1, 0));
    EXPECT_TRUE(mcr.setKnownSpectrum(2, known));
    EXPECT_THAT(elements(mcr.spec), ElementsAre(0, 2, 0.2, 0, 0, 2, 0.2, 0, 0, 2, 0.2, 0));
    EXPECT_THAT(elements(mcr.knownSpectrumState), Each(-1));
}

TEST_F(KnownSpectrumTest, KnownRowOfItsOwnIsOverwritten)
{
    EXPECT_TRUE(mcr.setKnownSpectrum(1, known));
    EXPECT_TRUE(mcr.setKnownSpectrum(1, vectorOf({0, 3, 0, 0})));
    EXPECT_THAT(elements(mcr.spec.row(1)), ElementsAre(0, 3, 0, 0));
}

TEST_F(KnownSpectrumTest, SpectrumIsStoredAsGivenAndNormalisedByTheRun)
{
    const Vector<double> given = vectorOf({0, 40, 10, 20});
    ASSERT_TRUE(mcr.setKnownSpectrum(1, given));
    EXPECT_THAT(elements(mcr.spec.row(1)), ElementsAre(0, 40, 10, 20));
    mcr.maxIterations = 0;
    std::ostringstream trace;
    EXPECT_EQ(mcr.run(trace), 2);
    EXPECT_THAT(elements(mcr.spec.row(1)), ElementsAre(0, 1, 0.25, 0.5));
}
