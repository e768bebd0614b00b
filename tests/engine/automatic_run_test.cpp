// SPDX-License-Identifier: GPL-3.0-or-later
// Automatic runs from images to maps.
#include "engine/AutomaticRun.h"
#include "engine/UserTables.h"

#include "host/CAutoProgressUpdate.h"
#include "spectra/SpectrumPlotParams.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace automatic;
using AutomaticRunTest = AutomaticRun;

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
    EXPECT_EQ(m_engine.m_runFacts.ending, MCREnding::NotRun);
    ASSERT_EQ(runToEnd(), 0);
    EXPECT_GE(m_engine.m_runFacts.iterations, 2);
    EXPECT_LE(m_engine.m_runFacts.iterations, 200);
    EXPECT_NE(m_engine.m_runFacts.ending, MCREnding::NotRun);
    EXPECT_LT(m_engine.m_runFacts.lackOfFitRaw, 1.0);
    EXPECT_GE(m_engine.m_runFacts.lackOfFitRaw, m_engine.m_runFacts.lackOfFitDenoised);
    EXPECT_GE(m_engine.m_runFacts.rank, nComponents);
    m_engine.resetAnalysis(RUNMODE_AUTOMATIC);
    EXPECT_EQ(m_engine.m_runFacts.ending, MCREnding::NotRun);
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
    EXPECT_EQ(m_engine.m_runFacts.ending, MCREnding::IterationLimit);
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

TEST(AutomaticRunOfOtherSequencesTest, ATemporalSequenceIsResolvedOverTime)
{
    TestSequence sequence;
    sequence->setKyvoSequence(true);
    for (int j = 0; j < 6; ++j) {
        TestImage image;
        image.kyvoTime = QString::number(60 * j);
        image.kyvoInterval = "1";
        image.side = nSide;
        image.value = [j](int i) {
            return static_cast<float>(std::exp(-0.7 * j) * discValue(0, i) +
                                      (1.0 - std::exp(-0.4 * j)) * discValue(2, i));
        };
        sequence.add(image);
    }
    LogCapture log;
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    engine.resetAnalysis(RUNMODE_AUTOMATIC);
    engine.m_analysisInput.componentNames = QStringList{"Unknown", "Unknown"};
    engine.takeComponents();
    const testsupport::CapturedOutput trace;
    ASSERT_EQ(runEngine(engine), RunOutcome::Succeeded);
    EXPECT_EQ(engine.m_concentrations.num_rows(), 2);
    ASSERT_EQ(engine.m_spectrumPlots.size(), 2);
    EXPECT_EQ(engine.m_spectrumPlots.first()->axis, 2);
    EXPECT_EQ(engine.m_spectrumPlots.first()->points.at(5).second, QString("300"));
    EXPECT_LT(engine.m_runFacts.lackOfFitRaw, 1.0);
}

TEST(AutomaticRunOfOtherSequencesTest, AGridOfExcitationsAndEmissionsIsResolved)
{
    const std::vector<std::vector<double>> spectra = bellSpectra(2, 4);
    const double excitation[2][2] = {{1.0, 0.3}, {0.4, 1.0}};
    TestSequence sequence;
    sequence->isFluorescence = true;
    for (int e = 0; e < 2; ++e) {
        for (std::size_t j = 0; j < 4; ++j) {
            TestImage image;
            image.excitation = QString("%1nm").arg(600 + 40 * e);
            image.emission = QString("%1nm").arg(700 + 20 * static_cast<int>(j));
            image.side = nSide;
            image.value = [&spectra, &excitation, e, j](int i) {
                return static_cast<float>(excitation[0][e] * spectra[0][j] * discValue(0, i) +
                                          excitation[1][e] * spectra[1][j] * discValue(1, i));
            };
            sequence.add(image);
        }
    }
    LogCapture log;
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    engine.resetAnalysis(RUNMODE_AUTOMATIC);
    ComponentConstraint oneSided;
    oneSided.Unimodality = "Vertical";
    engine.m_params.Constraints = {oneSided, oneSided};
    const testsupport::CapturedOutput trace;
    ASSERT_EQ(runEngine(engine), RunOutcome::Succeeded);
    XTNT::Matrix<int> topology;
    engine.buildTopology(topology);
    EXPECT_EQ(topology.num_rows(), 2);
    EXPECT_EQ(topology.num_cols(), 4);
    EXPECT_EQ(engine.m_spectra.num_cols(), 8);
    EXPECT_LT(engine.m_runFacts.lackOfFitRaw, 1.0);
}

// Where nothing is, there is exactly nothing: pixels that a clustering must not take for a component.
TEST(BlackBackgroundTest, TwoDiscsOnExactZerosAreResolved)
{
    constexpr int nDiscSide = 32;
    constexpr int nBands = 7;
    // Of two that overlap that far the discs are nearer to each other than to the background.
    const auto light = [](int k, int j) {
        const double x = (j - (k == 0 ? 2.0 : 4.0)) / 2.0;
        return std::exp(-0.5 * x * x);
    };
    const auto disc = [](int k, int i) {
        const double x = i % nDiscSide - (k == 0 ? 9.0 : 22.0);
        const double y = i / nDiscSide - 15.0; // NOLINT(bugprone-integer-division): a row
        return x * x + y * y < 36.0 ? 100.0 : 0.0;
    };
    TestSequence sequence;
    sequence->isFluorescence = true;
    for (int j = 0; j < nBands; ++j) {
        TestImage image;
        image.emission = QString("%1nm").arg(660 + 20 * j);
        image.side = nDiscSide;
        image.value = [&, j](int i) { return static_cast<float>(disc(0, i) * light(0, j) + disc(1, i) * light(1, j)); };
        sequence.add(image);
    }
    LogCapture log;
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    engine.resetAnalysis(RUNMODE_AUTOMATIC);
    engine.m_params.Constraints = {ComponentConstraint(), ComponentConstraint()};
    const testsupport::CapturedOutput trace;
    ASSERT_EQ(runEngine(engine), RunOutcome::Succeeded) << log.reports();
    ASSERT_EQ(engine.m_concentrations.num_rows(), 2);
    for (int i = 0; i < nDiscSide * nDiscSide; ++i) {
        for (int k = 0; k < 2; ++k) {
            EXPECT_EQ(engine.m_concentrations[k][i] > 50.0, disc(k, i) > 0.0) << "component " << k << ", pixel " << i;
        }
    }
}

} // namespace
