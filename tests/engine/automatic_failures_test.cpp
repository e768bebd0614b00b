// SPDX-License-Identifier: GPL-3.0-or-later
// Every way in which an automatic run ends without a result.
#include "engine/AutomaticRun.h"

#include "spectra/SpectrumPlotParams.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace {

using namespace automatic;
using AutomaticFailureTest = AutomaticRun;

TEST_F(AutomaticFailureTest, ABadTopologyGivesCode1)
{
    // Two images of one wavelength share a place of the grid.
    m_engine.m_selectedKeyPairs = m_engine.m_allKeyPairs.mid(0, 5);
    m_engine.m_selectedKeyPairs.append(m_engine.m_selectedKeyPairs.first());
    m_engine.updateKeys();
    EXPECT_EQ(runToEnd(), 1);
    EXPECT_TRUE(m_log.has("SpumKyvo: Wavelength table has a data mismatch!", 3));
}

TEST_F(AutomaticFailureTest, AWavelengthThatTheTableLacksIsToldAndGivesCode1)
{
    m_engine.m_primaryKeys.removeLast();
    EXPECT_EQ(runToEnd(), 1);
    EXPECT_EQ(m_log.count("SpumKyvo: error in set up wavelength topology", 16), 1);
}

TEST_F(AutomaticFailureTest, MoreComponentsThanTheRankGiveCode2)
{
    // Of four images two repeat the others.
    TestSequence repeated("repeated");
    repeated->isFluorescence = true;
    for (int j = 0; j < 4; ++j) {
        TestImage image;
        image.excitation = "640nm";
        image.emission = QString("%1nm").arg(660 + 20 * j);
        image.side = nSide;
        image.value = [this, j](int i) { return static_cast<float>(mixture(i, j % 2 == 0 ? 1 : 4)); };
        repeated.add(image);
    }
    CORVSpumKyvo engine(repeated.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    engine.resetAnalysis(RUNMODE_AUTOMATIC);
    engine.m_params.Constraints = {ComponentConstraint(), ComponentConstraint(), ComponentConstraint()};
    EXPECT_EQ(runEngine(engine), RunOutcome::Failed);
    EXPECT_EQ(engine.m_nError, 2);
    EXPECT_TRUE(m_log.has("SpumKyvo: Too many components to resolve!", 3));
}

TEST_F(AutomaticFailureTest, AGuessWithoutLightGivesCode3)
{
    constraint(1).InitGuess = "AlexaFluor 750"; // of a type that is not supported
    EXPECT_EQ(runToEnd(), 3);
    EXPECT_TRUE(m_log.has("SpumKyvo: do not support this type of initial guess!", 2));
    EXPECT_TRUE(m_log.has("SpumKyvo: Incorrect initial guess settings!", 3));
    // Nor has an emission any light at the excitation, by which it is multiplied.
    constraint(1).SpectrumType = 0;
    EXPECT_EQ(runToEnd(), 3);
}

TEST_F(AutomaticFailureTest, ACutOffBeyondTheBandsGivesCode4)
{
    m_engine.m_primaryKeys.append("900");
    m_engine.m_primaryKeys.append("920");
    for (const bool bHighPass : {true, false}) {
        prepare();
        (bHighPass ? constraint(0).HighPass : constraint(0).LowPass) = "920";
        EXPECT_EQ(runToEnd(), 4);
    }
    EXPECT_EQ(m_log.count("SpumKyvo: Incorrect constraint settings!", 3), 2);
}

TEST_F(AutomaticFailureTest, ACubeThatCannotBeBuiltGivesCode5)
{
    m_engine.m_selectedKeyPairs.append(KeyPair{"640nm", "999nm"});
    EXPECT_EQ(runToEnd(), 5);
    EXPECT_TRUE(m_log.has("SpumKyvo: Invalid data mask or matrix!", 3));
}

TEST_F(AutomaticFailureTest, AnEmptyMatrixGivesCode5)
{
    m_engine.m_bCubeValid = true;
    EXPECT_EQ(runToEnd(), 5);
}

TEST_F(AutomaticFailureTest, OneComponentGivesCode6)
{
    prepare(1);
    EXPECT_EQ(runToEnd(), 6);
    EXPECT_TRUE(m_log.has("SpumKyvo: No solution! Please adjust the setup!", 3));
    prepare(0);
    EXPECT_EQ(runToEnd(), 6);
}

TEST_F(AutomaticFailureTest, MoreComponentsThanImagesGiveCode6)
{
    selectImages(3);
    prepare(4);
    EXPECT_EQ(runToEnd(), 6);
}

TEST_F(AutomaticFailureTest, MoreComponentsThanPixelsGiveCode6)
{
    m_engine.m_analysisInput.maskImage = squareImage(nSide, 1, [](int i) { return i == 7 ? 1.0F : 0.0F; });
    ASSERT_TRUE(m_engine.createImageList());
    ASSERT_TRUE(m_engine.setBinningAndSize(true));
    ASSERT_TRUE(m_engine.takeDataMask());
    EXPECT_EQ(runToEnd(), 6);
    EXPECT_EQ(m_engine.m_cube.m_data.num_rows(), 1);
}

TEST_F(AutomaticFailureTest, ASpectrumThatConstraintsLeaveNothingOfGivesCode6)
{
    // A high pass at the last band takes them all.
    constraint(1).HighPass = m_engine.m_primaryKeys.last();
    EXPECT_EQ(runToEnd(), 6);
    EXPECT_EQ(m_engine.m_runFacts.ending, MCREnding::Degenerate);
    EXPECT_GT(m_engine.m_runFacts.iterations, 0);
    EXPECT_TRUE(m_engine.m_concentrations.empty());
}

TEST_F(AutomaticFailureTest, MemoryThatCannotBeHadGivesCode7)
{
    // A cube that claims more elements than any address has.
    XTNT::Matrix<double>& data = m_engine.m_cube.m_data;
    data = XTNT::Matrix<double>(4, 3, 1.0);
    data.M = std::numeric_limits<long long>::max() / 4;
    m_engine.m_bCubeValid = true;
    EXPECT_EQ(runToEnd(), 7);
    EXPECT_TRUE(m_log.has("SpumKyvo: No enough memory! Please reduce the binning or the size of the mask!", 3));
    EXPECT_TRUE(m_log.has("SpumKyvo: memory ran out during the analysis!", 3));
}

TEST_F(AutomaticFailureTest, AFailureLeavesTheResultsOfTheLastRun)
{
    m_engine.m_params.MaxIterations = 5;
    ASSERT_EQ(runToEnd(), 0);
    const XTNT::Matrix<double> concentrations = m_engine.m_concentrations.deepCopy();
    const XTNT::Matrix<double> spectra = m_engine.m_spectra.deepCopy();
    const QList<SpectrumPlotParams*> plots = m_engine.m_spectrumPlots;
    m_engine.m_params.MaxIterations = 6;
    constraint(0).InitGuess = "something";
    for (const int nCode : {3, 6, 1}) {
        EXPECT_EQ(runToEnd(), nCode);
        EXPECT_EQ((m_engine.m_concentrations - concentrations).norm(0), 0.0);
        EXPECT_EQ((m_engine.m_spectra - spectra).norm(0), 0.0);
        EXPECT_EQ(m_engine.m_spectrumPlots, plots);
        EXPECT_EQ(m_engine.m_lastParams.MaxIterations, 5);
        EXPECT_EQ(m_engine.m_lastParams.Constraints.at(0).InitGuess, QString("Auto"));
        // The run has come to its end all the same.
        EXPECT_TRUE(m_engine.m_bResultReady);
        constraint(0) = ComponentConstraint();
        if (nCode == 3) {
            constraint(0).HighPass = m_engine.m_primaryKeys.last();
        } else {
            m_engine.m_primaryKeys.removeLast();
        }
    }
}

TEST_F(AutomaticFailureTest, AProbeThatTheDatabaseLacksDoesNotStopARun)
{
    m_engine.m_analysisInput.componentNames = QStringList{"No such dye", "AlexaFluor 680"};
    m_engine.takeComponents();
    EXPECT_EQ(runToEnd(), 0);
    m_engine.m_analysisInput.componentNames.append("Another one");
    m_engine.takeComponents();
    EXPECT_EQ(runToEnd(), 6);
}

TEST_F(AutomaticFailureTest, NansInTheDataEndWithoutHanging)
{
    m_engine.m_params.MaxIterations = 10;
    ASSERT_TRUE(m_engine.buildImageCube());
    m_engine.m_cube.m_data[3][1] = std::numeric_limits<double>::quiet_NaN();
    // There is no rank then.
    EXPECT_EQ(runToEnd(), 2);
    EXPECT_TRUE(m_engine.m_bResultReady);
}

TEST(AutomaticFailureWithoutImagesTest, ADivergingFitIsToldAndGivesCode6)
{
    // Noise of low rank whose bends are straightened: from the fifth iteration on the residual grows.
    LogCapture log;
    CORVSpumKyvo engine("no sequence");
    engine.m_selectedKeyPairs = {{"640", "700"}, {"640", "720"}, {"640", "740"}, {"640", "760"}};
    engine.updateKeys();
    constexpr unsigned seed = 6;
    std::mt19937 random(seed);
    engine.m_cube.init(4, 3, 1, 4, {});
    for (long long i = 0; i < engine.m_cube.m_data.storage.size(); ++i) {
        engine.m_cube.m_data.storage[i] = static_cast<double>(random()) / 4294967296.0;
    }
    engine.m_bCubeValid = true;
    engine.m_eMode = RUNMODE_AUTOMATIC;
    engine.m_params.NonNegMode = 0;
    ComponentConstraint straightened;
    straightened.Unimodality = "Horizontal";
    engine.m_params.Constraints = {straightened, straightened};
    const testsupport::CapturedOutput trace;
    EXPECT_EQ(runEngine(engine), RunOutcome::Failed);
    EXPECT_EQ(engine.m_nError, 6);
    EXPECT_TRUE(log.has("SpumKyvo: Divergence, stop!", 3));
    EXPECT_EQ(engine.m_runFacts.ending, MCREnding::Diverged);
    EXPECT_GT(engine.m_runFacts.iterations, 11);
    EXPECT_GT(engine.m_runFacts.lackOfFitRaw, 1.0);
    EXPECT_TRUE(engine.m_concentrations.empty());
    EXPECT_TRUE(engine.m_lastParams.Constraints.isEmpty());
}

} // namespace
