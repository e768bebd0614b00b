// SPDX-License-Identifier: GPL-3.0-or-later
// Automatic runs from images to maps, and every way in which they end.
#include "engine/CORVSpumKyvo.h"
#include "engine/LogCapture.h"
#include "engine/TestSequence.h"
#include "engine/UserTables.h"
#include "engine/runEngine.h"
#include "support/CapturedOutput.h"

#include "host/CAutoProgressUpdate.h"
#include "host/CORVSequenceDataset.h"
#include "host/corrcoef.h"
#include "spectra/SpectrumPlotParams.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int nSide = 16;
constexpr int nImages = 8;
constexpr int nComponents = 3;

// Discs of one component each over a background of the first, with pixels of each alone.
double discValue(int nComponent, int nPixel)
{
    const double x = nPixel % nSide;
    const double y = nPixel / nSide; // NOLINT(bugprone-integer-division): a row
    const double centre[nComponents][2] = {{4.0, 4.0}, {11.0, 5.0}, {7.0, 11.0}};
    const double distance = std::hypot(x - centre[nComponent][0], y - centre[nComponent][1]);
    return 100.0 * std::max(0.0, 1.0 - distance / 6.0);
}

class AutomaticRunTest : public ::testing::Test
{
protected:
    AutomaticRunTest() : m_spectra(bellSpectra(nComponents, nImages)), m_engine(m_sequence.id())
    {
        m_sequence->isFluorescence = true;
        for (int j = 0; j < nImages; ++j) {
            TestImage image;
            image.excitation = "640nm";
            image.emission = QString("%1nm").arg(660 + 20 * j);
            image.side = nSide;
            image.value = [this, j](int i) { return static_cast<float>(mixture(i, j)); };
            m_sequence.add(image);
        }
        EXPECT_TRUE(m_engine.buildDatasetInfo());
        prepare();
    }

    double mixture(int nPixel, int nImage) const
    {
        double total = 1.0;
        for (int k = 0; k < nComponents; ++k) {
            total += m_spectra[static_cast<std::size_t>(k)][static_cast<std::size_t>(nImage)] * discValue(k, nPixel);
        }
        return total;
    }
    void prepare(int n = nComponents)
    {
        m_engine.resetAnalysis(RUNMODE_AUTOMATIC);
        m_engine.m_params = MCRParams();
        for (int i = 0; i < n; ++i) {
            m_engine.m_params.Constraints.append(ComponentConstraint());
        }
    }
    void selectImages(int n)
    {
        QList<KeyPair> selection = m_engine.m_allKeyPairs.mid(0, n);
        ASSERT_TRUE(m_engine.applySelection(selection));
    }
    // Runs to the end and gives the error code.
    int runToEnd()
    {
        const testsupport::CapturedOutput trace;
        runEngine(m_engine);
        m_strTrace = trace.text();
        return m_engine.m_nError;
    }
    // The best correlation of any resolved map with that of a true component.
    double likeness(int nComponent)
    {
        XTNT::Vector<double> truth(nSide * nSide);
        for (int i = 0; i < nSide * nSide; ++i) {
            truth[i] = discValue(nComponent, i);
        }
        double best = -1.0;
        for (long long k = 0; k < m_engine.m_concentrations.num_rows(); ++k) {
            XTNT::Vector<double> map = m_engine.m_concentrations.row(k);
            best = std::max(best, XTNT::corrcoef(truth, map));
        }
        return best;
    }
    ComponentConstraint& constraint(int i) { return m_engine.m_params.Constraints[i]; }

    LogCapture m_log;
    const std::vector<std::vector<double>> m_spectra;
    TestSequence m_sequence;
    CORVSpumKyvo m_engine;
    std::string m_strTrace;
};

TEST_F(AutomaticRunTest, AMixtureIsResolved)
{
    ASSERT_EQ(runToEnd(), 0);
    ASSERT_EQ(m_engine.m_concentrations.num_rows(), nComponents);
    ASSERT_EQ(m_engine.m_concentrations.num_cols(), nSide * nSide);
    ASSERT_EQ(m_engine.m_spectra.num_rows(), nComponents);
    ASSERT_EQ(m_engine.m_spectra.num_cols(), nImages);
    for (int k = 0; k < nComponents; ++k) {
        EXPECT_GT(likeness(k), 0.99) << k;
        EXPECT_DOUBLE_EQ(m_engine.m_spectra.row(k).Max(), 1.0);
    }
    EXPECT_GE(m_engine.m_concentrations.storage.Min(), 0.0);
    EXPECT_TRUE(m_engine.m_bResultReady);
    EXPECT_EQ(m_engine.m_properties.at(3).second, QString("Automatic"));
    ASSERT_EQ(m_engine.m_scaleRatios.size(), nComponents);
    EXPECT_EQ(m_engine.m_scaleRatios.at(2).MinRatio, 0.1);
    EXPECT_EQ(m_engine.m_scaleRatios.at(2).MaxRatio, 0.9);
    EXPECT_EQ(m_engine.m_scaleRatios.at(2).extra, 1.0);
    ASSERT_EQ(m_engine.m_spectrumPlots.size(), nComponents);
    EXPECT_EQ(m_engine.m_spectrumPlots.at(1)->settings.name, QString("UMX2"));
    EXPECT_EQ(m_engine.m_spectrumPlots.at(1)->points.at(3).value, m_engine.m_spectra[1][3]);
}

TEST_F(AutomaticRunTest, ComponentsAreSortedFromBlueToRed)
{
    ASSERT_EQ(runToEnd(), 0);
    double last = -1.0;
    for (int k = 0; k < nComponents; ++k) {
        long long nPeak = 0;
        m_engine.m_spectra.row(k).Max(&nPeak);
        EXPECT_GT(static_cast<double>(nPeak), last);
        last = static_cast<double>(nPeak);
    }
}

TEST_F(AutomaticRunTest, ProgressIsToldStepByStep)
{
    ASSERT_EQ(runToEnd(), 0);
    EXPECT_EQ(m_log.reports(), "SpumKyvo: Initializing MCR with data...\n"
                               "SpumKyvo: Setting MCR parameters...\n"
                               "SpumKyvo: Running MCR...\n"
                               "SpumKyvo: Updating the Concentration Results...\n"
                               "SpumKyvo: Updating the Spectrum Unmixing results...\n"
                               "SpumKyvo: Creating plots from spectrum unmixing results...\n");
    EXPECT_TRUE(m_log.has("SpumKyvo: Running MCR...", 16));
    EXPECT_NE(m_strTrace.find("Iteration: "), std::string::npos);
}

TEST_F(AutomaticRunTest, OffTheThreadTheResultIsTheSameAndNothingIsTold)
{
    ASSERT_EQ(runToEnd(), 0);
    const XTNT::Matrix<double> concentrations = m_engine.m_concentrations.deepCopy();
    const std::string reports = m_log.reports();
    prepare();
    CAutoProgressUpdate progress("");
    m_engine.m_pProgress = &progress;
    const testsupport::CapturedOutput trace;
    m_engine.runMCR();
    m_engine.m_pProgress = nullptr;
    EXPECT_EQ(m_engine.m_nError, 0);
    EXPECT_EQ((m_engine.m_concentrations - concentrations).norm(0), 0.0);
    EXPECT_EQ(m_log.reports(), reports);
}

TEST_F(AutomaticRunTest, TheSettingsOfAGoodRunAreKept)
{
    m_engine.m_params.MaxIterations = 30;
    m_engine.m_params.Components = 17;
    constraint(1).SolutionMask = "a mask";
    constraint(1).PureMask = "another";
    ASSERT_EQ(runToEnd(), 0);
    EXPECT_EQ(m_engine.m_params.Components, nComponents);
    EXPECT_EQ(m_engine.m_lastParams.Components, nComponents);
    EXPECT_EQ(m_engine.m_lastParams.MaxIterations, 30);
    ASSERT_EQ(m_engine.m_lastParams.Constraints.size(), nComponents);
    EXPECT_EQ(m_engine.m_lastParams.Constraints.at(1).SolutionMask, QString("a mask"));
    EXPECT_EQ(m_engine.m_lastParams.Constraints.at(1).PureMask, QString("another"));
}

TEST_F(AutomaticRunTest, FactsOfTheRun)
{
    EXPECT_EQ(m_engine.m_runFacts.ending, MCR::Ending::NotRun);
    ASSERT_EQ(runToEnd(), 0);
    EXPECT_GE(m_engine.m_runFacts.iterations, 2);
    EXPECT_LE(m_engine.m_runFacts.iterations, 200);
    EXPECT_NE(m_engine.m_runFacts.ending, MCR::Ending::NotRun);
    EXPECT_LT(m_engine.m_runFacts.lackOfFitRaw, 1.0);
    EXPECT_GE(m_engine.m_runFacts.lackOfFitRaw, m_engine.m_runFacts.lackOfFitDenoised);
    EXPECT_GE(m_engine.m_runFacts.rank, nComponents);
    m_engine.resetAnalysis(RUNMODE_AUTOMATIC);
    EXPECT_EQ(m_engine.m_runFacts.ending, MCR::Ending::NotRun);
    EXPECT_EQ(m_engine.m_runFacts.iterations, 0);
}

TEST_F(AutomaticRunTest, TheDataOfTheCubeAreSharedAndLeftAsTheyWere)
{
    ASSERT_EQ(runToEnd(), 0);
    const XTNT::Matrix<double> before = m_engine.m_cube.m_data.deepCopy();
    ASSERT_EQ(runToEnd(), 0);
    EXPECT_EQ((m_engine.m_cube.m_data - before).norm(0), 0.0);
    // Nobody else holds them any more.
    EXPECT_EQ(*m_engine.m_cube.m_data.storage.refCount, 1);
}

TEST_F(AutomaticRunTest, NamesAndColoursSurviveARerun)
{
    ASSERT_EQ(runToEnd(), 0);
    m_engine.m_spectrumPlots.first()->settings.name = "mine";
    m_engine.m_spectrumPlots.first()->settings.color = "black";
    m_engine.m_params.MaxIterations = 3;
    ASSERT_EQ(runToEnd(), 0);
    EXPECT_EQ(m_engine.m_spectrumPlots.first()->settings.name, QString("mine"));
    EXPECT_EQ(m_engine.m_spectrumPlots.first()->settings.color, QString("black"));
    EXPECT_EQ(m_engine.m_spectrumPlots.first()->points.at(0).value, m_engine.m_spectra[0][0]);
}

TEST_F(AutomaticRunTest, SuggestedLabelsNameThePlotsWhileTheirNumberFits)
{
    m_engine.m_suggestedLabels = QStringList{"A", "B", "C"};
    ASSERT_EQ(runToEnd(), 0);
    EXPECT_EQ(m_engine.m_spectrumPlots.at(2)->settings.name, QString("C"));
    prepare();
    m_engine.m_suggestedLabels.removeLast();
    ASSERT_EQ(runToEnd(), 0);
    EXPECT_EQ(m_engine.m_spectrumPlots.at(2)->settings.name, QString("UMX3"));
}

TEST_F(AutomaticRunTest, AReachedLimitIsToldAndTheResultTaken)
{
    m_engine.m_params.MaxIterations = 1;
    ASSERT_EQ(runToEnd(), 0);
    EXPECT_TRUE(m_log.has("SpumKyvo: Maximum iteration number is reached!", 2));
    EXPECT_EQ(m_engine.m_concentrations.num_rows(), nComponents);
    EXPECT_EQ(m_engine.m_spectrumPlots.size(), nComponents);
    EXPECT_EQ(m_engine.m_lastParams.MaxIterations, 1);
    EXPECT_EQ(m_engine.m_runFacts.iterations, 1);
    EXPECT_EQ(m_engine.m_runFacts.ending, MCR::Ending::IterationLimit);
}

TEST_F(AutomaticRunTest, ABadTopologyGivesCode1)
{
    // Two images of one wavelength share a place of the grid.
    m_engine.m_selectedKeyPairs = m_engine.m_allKeyPairs.mid(0, 5);
    m_engine.m_selectedKeyPairs.append(m_engine.m_selectedKeyPairs.first());
    m_engine.updateKeys();
    EXPECT_EQ(runToEnd(), 1);
    EXPECT_TRUE(m_log.has("SpumKyvo: Wavelength table has a data mismatch!", 3));
}

TEST_F(AutomaticRunTest, AWavelengthThatTheTableLacksIsToldAndGivesCode1)
{
    m_engine.m_primaryKeys.removeLast();
    EXPECT_EQ(runToEnd(), 1);
    EXPECT_EQ(m_log.count("SpumKyvo: error in set up wavelength topology", 16), 1);
}

TEST_F(AutomaticRunTest, MoreComponentsThanTheRankGiveCode2)
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

TEST_F(AutomaticRunTest, AGuessWithoutLightGivesCode3)
{
    constraint(1).InitGuess = "AlexaFluor 750"; // of a type that is not supported
    EXPECT_EQ(runToEnd(), 3);
    EXPECT_TRUE(m_log.has("SpumKyvo: do not support this type of initial guess!", 2));
    EXPECT_TRUE(m_log.has("SpumKyvo: Incorrect initial guess settings!", 3));
    // Nor has an emission any light at the excitation, by which it is multiplied.
    constraint(1).SpectrumType = 0;
    EXPECT_EQ(runToEnd(), 3);
}

TEST_F(AutomaticRunTest, ACutOffBeyondTheBandsGivesCode4)
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

TEST_F(AutomaticRunTest, ACubeThatCannotBeBuiltGivesCode5)
{
    m_engine.m_selectedKeyPairs.append(KeyPair{"640nm", "999nm"});
    EXPECT_EQ(runToEnd(), 5);
    EXPECT_TRUE(m_log.has("SpumKyvo: Invalid data mask or matrix!", 3));
}

TEST_F(AutomaticRunTest, AnEmptyMatrixGivesCode5)
{
    m_engine.m_bCubeValid = true;
    EXPECT_EQ(runToEnd(), 5);
}

TEST_F(AutomaticRunTest, OneComponentGivesCode6)
{
    prepare(1);
    EXPECT_EQ(runToEnd(), 6);
    EXPECT_TRUE(m_log.has("SpumKyvo: No solution! Please adjust the setup!", 3));
    prepare(0);
    EXPECT_EQ(runToEnd(), 6);
}

TEST_F(AutomaticRunTest, MoreComponentsThanImagesGiveCode6)
{
    selectImages(3);
    prepare(4);
    EXPECT_EQ(runToEnd(), 6);
}

TEST_F(AutomaticRunTest, MoreComponentsThanPixelsGiveCode6)
{
    m_engine.m_analysisInput.maskImage = squareImage(nSide, 1, [](int i) { return i == 7 ? 1.0F : 0.0F; });
    ASSERT_TRUE(m_engine.createImageList());
    ASSERT_TRUE(m_engine.setBinningAndSize(true));
    ASSERT_TRUE(m_engine.takeDataMask());
    EXPECT_EQ(runToEnd(), 6);
    EXPECT_EQ(m_engine.m_cube.m_data.num_rows(), 1);
}

TEST_F(AutomaticRunTest, ASpectrumThatConstraintsLeaveNothingOfGivesCode6)
{
    // A high pass at the last band takes them all.
    constraint(1).HighPass = m_engine.m_primaryKeys.last();
    EXPECT_EQ(runToEnd(), 6);
    EXPECT_EQ(m_engine.m_runFacts.ending, MCR::Ending::Degenerate);
    EXPECT_GT(m_engine.m_runFacts.iterations, 0);
    EXPECT_TRUE(m_engine.m_concentrations.empty());
}

TEST_F(AutomaticRunTest, MemoryThatCannotBeHadGivesCode7)
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

TEST_F(AutomaticRunTest, AFailureLeavesTheResultsOfTheLastRun)
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

TEST_F(AutomaticRunTest, AKnownSpectrumIsTakenAndALockedOneHeld)
{
    UserTables tables;
    tables.write("library_sources.csv", "wavelength_nm,MineEm\n660,0\n680,0\n700,0\n720,0\n"
                                        "740,0.4\n760,2\n780,4\n800,3\n");
    constraint(2).SpectrumType = 0;
    constraint(2).InitGuess = "Mine";
    constraint(2).Locked = true;
    ASSERT_EQ(runToEnd(), 0);
    const std::vector<double> expected{0.0, 0.0, 0.0, 0.0, 0.1, 0.5, 1.0, 0.75};
    for (int j = 0; j < nImages; ++j) {
        EXPECT_NEAR(m_engine.m_spectra[2][j], expected[static_cast<std::size_t>(j)], 1e-12) << j;
    }
}

TEST_F(AutomaticRunTest, AKnownSpectrumThatIsFreeIsOnlyAStart)
{
    UserTables tables;
    tables.write("library_sources.csv", "wavelength_nm,MineEm\n660,0\n780,4\n800,3\n");
    constraint(0).SpectrumType = 0;
    constraint(0).InitGuess = "MineEm";
    ASSERT_EQ(runToEnd(), 0);
    // It keeps its place: nothing is sorted beside known spectra.
    long long nPeak = 0;
    m_engine.m_spectra.row(0).Max(&nPeak);
    EXPECT_GT(nPeak, 4);
}

TEST_F(AutomaticRunTest, CutOffsDarkenTheirBands)
{
    constraint(2).HighPass = m_engine.m_primaryKeys.at(2);
    constraint(0).LowPass = m_engine.m_primaryKeys.at(6);
    // What is no key along the axis is no limit.
    constraint(1).HighPass = "N/A";
    constraint(1).LowPass = "123";
    ASSERT_EQ(runToEnd(), 0);
    for (int j = 0; j <= 2; ++j) {
        EXPECT_EQ(m_engine.m_spectra[2][j], 0.0);
    }
    EXPECT_EQ(m_engine.m_spectra[0][6], 0.0);
    EXPECT_EQ(m_engine.m_spectra[0][7], 0.0);
    EXPECT_GT(m_engine.m_spectra[2][3], 0.0);
}

TEST_F(AutomaticRunTest, UnimodalityIsTakenByName)
{
    for (const char* pMode : {"Vertical", "Horizontal", "Average"}) {
        prepare();
        for (int i = 0; i < nComponents; ++i) {
            constraint(i).Unimodality = pMode;
        }
        ASSERT_EQ(runToEnd(), 0) << pMode;
        for (int k = 0; k < nComponents; ++k) {
            const XTNT::Vector<double> spectrum = m_engine.m_spectra.row(k);
            long long nPeak = 0;
            spectrum.Max(&nPeak);
            for (long long j = nPeak + 1; j + 1 < nImages; ++j) {
                EXPECT_LE(spectrum[j + 1], spectrum[j] * 1.05 + 1e-9) << pMode << ", " << k << ", " << j;
            }
        }
    }
    prepare();
    constraint(0).Unimodality = "Diagonal";
    EXPECT_EQ(runToEnd(), 0);
}

TEST_F(AutomaticRunTest, AMaskLeavesItsPixels)
{
    m_engine.m_analysisInput.maskImage = squareImage(nSide, 1, [](int i) { return i < 200 ? 1.0F : 0.0F; });
    ASSERT_TRUE(m_engine.createImageList());
    ASSERT_TRUE(m_engine.setBinningAndSize(true));
    ASSERT_TRUE(m_engine.takeDataMask());
    ASSERT_EQ(runToEnd(), 0);
    EXPECT_EQ(m_engine.m_concentrations.num_cols(), 200);
    EXPECT_EQ(m_engine.m_properties.first().second, QString("Yes"));
}

TEST_F(AutomaticRunTest, NamesFromTheUserLeadToTheirConstraints)
{
    m_engine.m_strSubjectType = "Mouse";
    m_engine.m_analysisInput.componentNames = QStringList{"AlexaFluor 750", "AlexaFluor 680", "AlexaFluor 700"};
    m_engine.takeComponents();
    EXPECT_EQ(runToEnd(), 0);
    ASSERT_EQ(m_engine.m_spectrumPlots.size(), 3);
    EXPECT_EQ(m_engine.m_spectrumPlots.at(0)->settings.name, QString("AlexaFluor 680"));
    EXPECT_EQ(m_engine.m_spectrumPlots.at(2)->settings.name, QString("AlexaFluor 750"));
}

TEST_F(AutomaticRunTest, AProbeThatTheDatabaseLacksDoesNotStopARun)
{
    m_engine.m_analysisInput.componentNames = QStringList{"No such dye", "AlexaFluor 680"};
    m_engine.takeComponents();
    EXPECT_EQ(runToEnd(), 0);
    m_engine.m_analysisInput.componentNames.append("Another one");
    m_engine.takeComponents();
    EXPECT_EQ(runToEnd(), 6);
}

TEST_F(AutomaticRunTest, NansInTheDataEndWithoutHanging)
{
    m_engine.m_params.MaxIterations = 10;
    ASSERT_TRUE(m_engine.buildImageCube());
    m_engine.m_cube.m_data[3][1] = std::numeric_limits<double>::quiet_NaN();
    // There is no rank then.
    EXPECT_EQ(runToEnd(), 2);
    EXPECT_TRUE(m_engine.m_bResultReady);
}

} // namespace
