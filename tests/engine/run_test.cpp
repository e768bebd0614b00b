// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/CORVSpumKyvo.h"
#include "engine/LogCapture.h"
#include "engine/TestSequence.h"
#include "engine/knownSpectra.h"

#include "host/CAutoProgressUpdate.h"
#include "host/CILImage.h"
#include "host/CORVPreference.h"
#include "host/CORVSequenceDataset.h"
#include "spectra/SpectrumPlotParams.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <vector>

namespace {

TEST(EngineTest, MembersStartAsDocumented)
{
    const CORVSpumKyvo engine("an id");
    EXPECT_EQ(engine.m_strSeqId, QString("an id"));
    EXPECT_EQ(engine.m_eAxis, 0);
    EXPECT_EQ(engine.m_eMode, 3);
    EXPECT_TRUE(engine.m_imageRecords.isEmpty());
    EXPECT_TRUE(engine.m_imageList.isEmpty());
    EXPECT_TRUE(engine.m_emissionKeys.isEmpty() && engine.m_excitationKeys.isEmpty());
    EXPECT_TRUE(engine.m_allKeyPairs.isEmpty() && engine.m_selectedKeyPairs.isEmpty());
    EXPECT_TRUE(engine.m_primaryKeys.isEmpty() && engine.m_secondaryKeys.isEmpty());
    EXPECT_TRUE(engine.m_presetSpectra.isEmpty());
    EXPECT_TRUE(engine.m_bAutoBinning);
    EXPECT_EQ(engine.m_nBinning, 0);
    EXPECT_EQ(engine.m_nWidth, 0);
    EXPECT_EQ(engine.m_nHeight, 0);
    EXPECT_EQ(engine.m_eUnit, 1);
    EXPECT_FALSE(engine.m_cube.m_bValid);
    EXPECT_FALSE(engine.m_bCubeValid);
    EXPECT_EQ(engine.m_pPhoto, nullptr);
    EXPECT_EQ(engine.m_bUseMask, 0);
    EXPECT_TRUE(engine.m_maskIndices.empty());
    EXPECT_TRUE(engine.m_labels.isEmpty() && engine.m_suggestedLabels.isEmpty());
    EXPECT_TRUE(engine.m_strSubjectType.isEmpty() && engine.m_probes.isEmpty());
    EXPECT_TRUE(engine.m_spots.isEmpty());
    EXPECT_EQ(engine.m_pProgress, nullptr);
    EXPECT_EQ(engine.m_nError, 0);
    EXPECT_TRUE(engine.m_concentrations.empty() && engine.m_spectra.empty());
    EXPECT_EQ(engine.m_nResultUnits, 0);
    EXPECT_TRUE(engine.m_spectrumPlots.isEmpty() && engine.m_scaleRatios.isEmpty());
    EXPECT_EQ(engine.m_nColorMap, 1);
    EXPECT_TRUE(engine.m_bReverse);
    EXPECT_FALSE(engine.m_bLogScale);
    EXPECT_EQ(engine.m_nOverlayOpacity, 100);
    EXPECT_TRUE(engine.m_bIndividualScale);
    EXPECT_TRUE(engine.m_roiResults.isEmpty() && engine.m_properties.isEmpty());
    EXPECT_FALSE(engine.m_bSkipSavePrompt || engine.m_bResultReady || engine.m_bRunPCA || engine.m_bCherenkov);
    EXPECT_TRUE(engine.m_unmixedImages.isEmpty() && engine.m_pcaResult.empty());
    EXPECT_FALSE(engine.m_bDecayApplied || engine.m_bLoadedDecayApplied || engine.m_bHasLoadedDecay);
    EXPECT_EQ(engine.m_dHalfLifeSec, 0.0);
    EXPECT_EQ(engine.m_dLoadedHalfLife, 0.0);
    EXPECT_TRUE(engine.m_strIsotope.isEmpty() && engine.m_strLoadedIsotope.isEmpty());
    EXPECT_FALSE(engine.m_bBatchMode);
    EXPECT_TRUE(engine.m_strBatchPath.isEmpty());
    EXPECT_FALSE(engine.hasError());
    EXPECT_TRUE(engine.getErrorText().isEmpty());
    EXPECT_EQ(engine.m_runFacts.iterations, 0);
    EXPECT_EQ(engine.m_runFacts.ending, MCREnding::NotRun);
}

TEST(EngineTest, SettingsOfAnAutomaticRunStartAsDocumented)
{
    const CORVSpumKyvo engine("an id");
    for (const MCRParams& params : {engine.m_params, engine.m_lastParams}) {
        EXPECT_FALSE(params.TransMode);
        EXPECT_EQ(params.Components, 2);
        EXPECT_EQ(params.DownSplRate, 1);
        EXPECT_EQ(params.MaxIterations, 200);
        EXPECT_EQ(params.DenoisePCA, 1);
        EXPECT_EQ(params.UnimodTol, 5.0);
        EXPECT_EQ(params.PCAMode, 1);
        EXPECT_EQ(params.WeightingMode, 0);
        EXPECT_EQ(params.Normalization, 1);
        EXPECT_EQ(params.NonNegMode, 2);
        EXPECT_TRUE(params.AutoSorting);
        EXPECT_FALSE(params.ForceAF);
        EXPECT_TRUE(params.Constraints.isEmpty());
    }
    const ComponentConstraint constraint;
    EXPECT_EQ(constraint.SpectrumType, 3);
    EXPECT_EQ(constraint.InitGuess, QString("Auto"));
    EXPECT_FALSE(constraint.Locked);
    EXPECT_EQ(constraint.Unimodality, QString("N/A"));
    EXPECT_EQ(constraint.HighPass, QString("N/A"));
    EXPECT_EQ(constraint.LowPass, QString("N/A"));
    EXPECT_EQ(constraint.SolutionMask, QString("All"));
    EXPECT_EQ(constraint.PureMask, QString("N/A"));
}

TEST(EngineTest, DisplaySettingsComeFromTheSequence)
{
    TestSequence sequence;
    *sequence->getImageAdjust() = {5, false, true};
    const CORVSpumKyvo engine(sequence.id());
    EXPECT_EQ(engine.m_nColorMap, 5);
    EXPECT_FALSE(engine.m_bReverse);
    EXPECT_TRUE(engine.m_bLogScale);
    EXPECT_FALSE(engine.m_bCherenkov);
}

TEST(EngineTest, SignalsStandInTheirOrder)
{
    const QMetaObject* pMeta = &CORVSpumKyvo::staticMetaObject;
    const char* const expected[] = {"readyToRun()",
                                    "cancelRun()",
                                    "pcaRun()",
                                    "loadSpumResult(QString,bool,ESTATUS*,downloaded_save_data*)",
                                    "loadSpumResult(QString,bool,ESTATUS*)",
                                    "createSpumKyvoSequence(QStringList,bool)",
                                    "printPixmap(QPixmap)"};
    int nMethod = pMeta->methodOffset();
    for (const char* pSignature : expected) {
        EXPECT_EQ(pMeta->method(nMethod).methodSignature(), QByteArray(pSignature));
        EXPECT_EQ(pMeta->method(nMethod++).methodType(), QMetaMethod::Signal);
    }
    EXPECT_EQ(pMeta->method(nMethod).methodType(), QMetaMethod::Slot);
}

TEST(EngineTest, SlotsStandInTheirOrder)
{
    const QMetaObject* pMeta = &CORVSpumKyvo::staticMetaObject;
    QStringList slotsInOrder;
    for (int i = pMeta->methodOffset(); i < pMeta->methodCount(); ++i) {
        if (pMeta->method(i).methodType() == QMetaMethod::Slot) {
            slotsInOrder << pMeta->method(i).methodSignature();
        }
    }
    EXPECT_EQ(slotsInOrder,
              (QStringList{"onAutoScaleClicked(bool)", "onImageDoubleClicked(int)", "onClickPrintButtons()",
                           "onClickCopyToClipboard()", "onSignalUpdatePreference()", "onClickUnmixWizardFinished(int)",
                           "onClickDrawingFinished(int)", "onClickCompositeFinished(int)", "onUpdateImageCubeRGB()",
                           "onClickExportAsSequence()", "onRunPCA()"}));
}

// What only an export needs stands behind the state of an analysis.
TEST(EngineTest, MembersStandInTheirOrder)
{
    const CORVSpumKyvo e("an id");
    const std::vector<const void*> members{&e.m_strSeqId,
                                           &e.m_eSeqKind,
                                           &e.m_eTemporalKind,
                                           &e.m_eAxis,
                                           &e.m_eMode,
                                           &e.m_imageRecords,
                                           &e.m_imageList,
                                           &e.m_emissionKeys,
                                           &e.m_excitationKeys,
                                           &e.m_allKeyPairs,
                                           &e.m_selectedKeyPairs,
                                           &e.m_primaryKeys,
                                           &e.m_secondaryKeys,
                                           &e.m_presetSpectra,
                                           &e.m_bAutoBinning,
                                           &e.m_nBinning,
                                           &e.m_nWidth,
                                           &e.m_nHeight,
                                           &e.m_eUnit,
                                           &e.m_cube,
                                           &e.m_bCubeValid,
                                           &e.m_pPhoto,
                                           &e.m_bUseMask,
                                           &e.m_maskIndices,
                                           &e.m_labels,
                                           &e.m_suggestedLabels,
                                           &e.m_strSubjectType,
                                           &e.m_probes,
                                           &e.m_params,
                                           &e.m_pWizard,
                                           &e.m_pConsole,
                                           &e.m_pComposite,
                                           &e.m_spots,
                                           &e.m_pProgress,
                                           &e.m_nError,
                                           &e.m_lastParams,
                                           &e.m_concentrations,
                                           &e.m_spectra,
                                           &e.m_nResultUnits,
                                           &e.m_spectrumPlots,
                                           &e.m_scaleRatios,
                                           &e.m_nColorMap,
                                           &e.m_bReverse,
                                           &e.m_bLogScale,
                                           &e.m_nOverlayOpacity,
                                           &e.m_bIndividualScale,
                                           &e.m_roiResults,
                                           &e.m_properties,
                                           &e.m_bSkipSavePrompt,
                                           &e.m_bResultReady,
                                           &e.m_unmixedImages,
                                           &e.m_bRunPCA,
                                           &e.m_pcaResult,
                                           &e.m_bCherenkov,
                                           &e.m_bDecayApplied,
                                           &e.m_dHalfLifeSec,
                                           &e.m_strIsotope,
                                           &e.m_strLoadedIsotope,
                                           &e.m_dLoadedHalfLife,
                                           &e.m_bLoadedDecayApplied,
                                           &e.m_bHasLoadedDecay,
                                           &e.m_bBatchMode,
                                           &e.m_strBatchPath,
                                           &e.m_nComponents};
    for (std::size_t i = 1; i < members.size(); ++i) {
        EXPECT_TRUE(std::less<>()(members[i - 1], members[i])) << "member " << i;
    }
}

TEST(EngineTest, AskingForAPCASetsTheFlagAndSaysSo)
{
    CORVSpumKyvo engine("an id");
    QSignalSpy spy(&engine, SIGNAL(pcaRun()));
    ASSERT_TRUE(QMetaObject::invokeMethod(&engine, "onRunPCA"));
    EXPECT_TRUE(engine.m_bRunPCA);
    EXPECT_EQ(spy.count(), 1);
}

TEST(EngineTest, PresetSpectraReplaceTheFormerOnes)
{
    CORVSpumKyvo engine("an id");
    auto* pKept = new SpectrumPlotParams;
    engine.setPresetSpectra({new SpectrumPlotParams, pKept});
    engine.setPresetSpectra({pKept});
    pKept->origin = "alive";
    EXPECT_EQ(engine.m_presetSpectra, (QList<SpectrumPlotParams*>{pKept}));
}

TEST(EngineTest, ResetLeavesNothingOfTheFormerAnalysis)
{
    CORVSpumKyvo engine("an id");
    engine.m_bCubeValid = true;
    engine.m_bUseMask = 1;
    engine.m_maskIndices = {1};
    engine.m_cube.init(1, 1, 1, 1, {});
    engine.m_imageList = {"a"};
    engine.m_labels = QStringList{"b"};
    engine.m_spectrumPlots.append(new SpectrumPlotParams);
    engine.m_concentrations = XTNT::Matrix<double>(1, 1);
    engine.m_spectra = XTNT::Matrix<double>(1, 1);
    engine.m_bAutoBinning = false;
    engine.m_unmixedImages.append(new CILImage);
    engine.m_bResultReady = true;
    engine.m_nError = 6;
    engine.m_bRunPCA = true;
    engine.m_selectedKeyPairs = {{"1", "2"}};
    engine.m_analysisInput.componentNames = QStringList{"Food"};
    engine.resetAnalysis(RUNMODE_GUIDED);
    EXPECT_EQ(engine.m_eMode, 1);
    EXPECT_FALSE(engine.m_bCubeValid);
    EXPECT_EQ(engine.m_bUseMask, 0);
    EXPECT_TRUE(engine.m_maskIndices.empty());
    EXPECT_TRUE(engine.m_cube.m_data.empty());
    EXPECT_TRUE(engine.m_imageList.isEmpty());
    EXPECT_TRUE(engine.m_labels.isEmpty());
    EXPECT_TRUE(engine.m_spectrumPlots.isEmpty());
    EXPECT_EQ(engine.m_concentrations.num_rows(), 0);
    EXPECT_EQ(engine.m_spectra.num_cols(), 0);
    EXPECT_TRUE(engine.m_bAutoBinning);
    EXPECT_TRUE(engine.m_unmixedImages.isEmpty());
    EXPECT_FALSE(engine.m_bResultReady);
    EXPECT_FALSE(engine.hasError());
    EXPECT_FALSE(engine.m_bRunPCA);
    // What the user chose stays.
    EXPECT_EQ(engine.m_selectedKeyPairs.size(), 1);
    EXPECT_EQ(engine.m_analysisInput.componentNames.size(), 1);
}

TEST(ReportStatusTest, WithoutProgressNothingIsWritten)
{
    LogCapture log;
    CORVSpumKyvo engine("an id");
    engine.reportStatus("lost", 3);
    EXPECT_TRUE(log.lines().empty());
}

TEST(ReportStatusTest, WithProgressTheLineIsShownAndLogged)
{
    LogCapture log;
    CORVSpumKyvo engine("an id");
    CAutoProgressUpdate progress("first");
    engine.m_pProgress = &progress;
    engine.reportStatus("Running...", 16);
    engine.m_pProgress = nullptr;
    EXPECT_EQ(progress.statusMessage(), QString("SpumKyvo: Running..."));
    ASSERT_EQ(log.lines().size(), 1U);
    const orv::LogRecord line = log.lines().front();
    EXPECT_EQ(line.m_strMessage, QString("SpumKyvo: Running..."));
    EXPECT_EQ(line.m_nLevel, 16);
    EXPECT_TRUE(line.m_strExtra.isEmpty());
}

// An engine with a cube of its own, so that no host is needed: 3 images, 2 components, 40 pixels.
class SolveTest : public ::testing::Test
{
protected:
    SolveTest() : m_engine("no sequence")
    {
        m_engine.m_selectedKeyPairs = {{"640", "700"}, {"640", "720"}, {"640", "740"}};
        m_engine.m_nWidth = 8;
        m_engine.m_nHeight = 5;
        m_engine.m_nBinning = 4;
        m_engine.m_cube.init(8, 5, 1, 3, {});
        for (int i = 0; i < 40; ++i) {
            for (std::size_t j = 0; j < 3; ++j) {
                m_engine.m_cube.m_data[i][static_cast<long long>(j)] =
                    m_first[j] * mapValue(0, i) + m_second[j] * mapValue(1, i);
            }
        }
        m_engine.m_bCubeValid = true;
    }

    void takeTwo() { takeSpectra(m_engine, {m_first, m_second}); }

    const std::vector<double> m_first{1.0, 0.5, 0.25};
    const std::vector<double> m_second{0.1, 0.4, 1.0};
    CORVSpumKyvo m_engine;
};

TEST_F(SolveTest, KnownSpectraGiveARowAComponent)
{
    for (const int nMode : {RUNMODE_LIBRARY, RUNMODE_GUIDED, RUNMODE_MANUAL}) {
        qDeleteAll(m_engine.m_spectrumPlots);
        m_engine.m_spectrumPlots.clear();
        takeTwo();
        m_engine.m_eMode = nMode;
        m_engine.run();
        EXPECT_FALSE(m_engine.hasError());
        ASSERT_EQ(m_engine.m_concentrations.num_rows(), 2);
        ASSERT_EQ(m_engine.m_concentrations.num_cols(), 40);
        for (int i = 0; i < 40; ++i) {
            EXPECT_NEAR(m_engine.m_concentrations[0][i], mapValue(0, i), 1e-12);
            EXPECT_NEAR(m_engine.m_concentrations[1][i], mapValue(1, i), 1e-12);
        }
        ASSERT_EQ(m_engine.m_scaleRatios.size(), 2);
        EXPECT_EQ(m_engine.m_scaleRatios.at(1).MinRatio, 0.1);
        EXPECT_EQ(m_engine.m_scaleRatios.at(1).MaxRatio, 0.9);
        EXPECT_EQ(m_engine.m_scaleRatios.at(1).extra, 1.0);
        EXPECT_TRUE(m_engine.m_bResultReady);
        EXPECT_EQ(m_engine.m_properties.size(), 10);
    }
}

TEST_F(SolveTest, SpectraAreScaledToMaximumOne)
{
    takeSpectra(m_engine, {{20.0, 10.0, 5.0}, m_second});
    m_engine.solveConcentrations();
    ASSERT_EQ(m_engine.m_spectra.num_rows(), 2);
    ASSERT_EQ(m_engine.m_spectra.num_cols(), 3);
    EXPECT_EQ(m_engine.m_spectra[0][0], 1.0);
    EXPECT_EQ(m_engine.m_spectra[0][2], 0.25);
    EXPECT_NEAR(m_engine.m_concentrations[0][7], mapValue(0, 7), 1e-12);
}

TEST_F(SolveTest, ConcentrationsAreNotNegative)
{
    takeTwo();
    for (int i = 0; i < 40; ++i) {
        m_engine.m_cube.m_data[i][0] = i % 2 == 0 ? 0.0 : 1.0;
    }
    m_engine.solveConcentrations();
    EXPECT_FALSE(m_engine.hasError());
    EXPECT_GE(m_engine.m_concentrations.storage.Min(), 0.0);
}

TEST_F(SolveTest, NoSpectraGiveCode3)
{
    m_engine.solveConcentrations();
    EXPECT_EQ(m_engine.m_nError, 3);
    EXPECT_EQ(m_engine.getErrorText(), QString("Incorrect initial guess settings!"));
}

TEST_F(SolveTest, ASpectrumOfAnotherLengthGivesCode3)
{
    for (const std::vector<double>& wrong :
         {std::vector<double>{1.0, 2.0}, std::vector<double>{1, 2, 3, 4}, std::vector<double>{}}) {
        qDeleteAll(m_engine.m_spectrumPlots);
        m_engine.m_spectrumPlots.clear();
        m_engine.m_concentrations = XTNT::Matrix<double>(1, 1, 7.0);
        takeSpectra(m_engine, {m_first, wrong});
        m_engine.solveConcentrations();
        EXPECT_EQ(m_engine.m_nError, 3);
        // The rows before it are stored; the concentrations of before stay.
        EXPECT_EQ(m_engine.m_spectra.num_rows(), 2);
        EXPECT_EQ(m_engine.m_spectra[0][1], 0.5);
        EXPECT_EQ(m_engine.m_spectra[1][1], 0.0);
        EXPECT_EQ(m_engine.m_concentrations[0][0], 7.0);
    }
}

TEST_F(SolveTest, AnEmptyMatrixGivesCode5)
{
    takeTwo();
    m_engine.m_cube.clear();
    m_engine.run();
    EXPECT_EQ(m_engine.m_nError, 5);
    EXPECT_EQ(m_engine.getErrorText(), QString("Invalid data mask or matrix!"));
}

TEST_F(SolveTest, ACubeThatCannotBeBuiltGivesCode5)
{
    takeTwo();
    m_engine.m_bCubeValid = false;
    m_engine.run();
    EXPECT_EQ(m_engine.m_nError, 5);
}

TEST_F(SolveTest, FewerPixelsThanSpectraGiveCode6)
{
    takeTwo();
    m_engine.m_cube.m_data = XTNT::Matrix<double>(1, 3, 1.0);
    m_engine.m_concentrations = XTNT::Matrix<double>(1, 1, 7.0);
    m_engine.solveConcentrations();
    EXPECT_EQ(m_engine.m_nError, 6);
    EXPECT_EQ(m_engine.m_concentrations[0][0], 7.0);
}

TEST_F(SolveTest, DataOfAnotherWidthThanTheSelectionGiveCode6)
{
    takeTwo();
    m_engine.m_cube.m_data = XTNT::Matrix<double>(10, 4, 1.0);
    m_engine.solveConcentrations();
    EXPECT_EQ(m_engine.m_nError, 6);
}

TEST_F(SolveTest, AZeroSpectrumIsDividedByZeroAndEndsWithoutASolution)
{
    takeSpectra(m_engine, {m_first, {0.0, 0.0, 0.0}});
    m_engine.solveConcentrations();
    EXPECT_TRUE(std::isnan(m_engine.m_spectra[1][0]));
    EXPECT_EQ(m_engine.m_nError, 6);
}

TEST_F(SolveTest, NegativeSpectraAreDividedByTheirMaximumToo)
{
    takeSpectra(m_engine, {m_first, {-1.0, -2.0, 0.0}});
    m_engine.solveConcentrations();
    EXPECT_TRUE(std::isinf(m_engine.m_spectra[1][0]));
    EXPECT_EQ(m_engine.m_nError, 6);
}

TEST_F(SolveTest, NansInTheDataEndWithoutHanging)
{
    takeTwo();
    m_engine.m_cube.m_data[3][1] = std::numeric_limits<double>::quiet_NaN();
    m_engine.m_cube.m_data[9][0] = std::numeric_limits<double>::infinity();
    m_engine.run();
    EXPECT_TRUE(m_engine.m_bResultReady);
    // Whether the solver takes the pixel for unsolvable or the whole: no other pixel is touched.
    if (m_engine.hasError()) {
        EXPECT_EQ(m_engine.m_nError, 6);
    } else {
        EXPECT_NEAR(m_engine.m_concentrations[0][0], mapValue(0, 0), 1e-12);
        EXPECT_NEAR(m_engine.m_concentrations[1][39], mapValue(1, 39), 1e-12);
    }
}

TEST_F(SolveTest, AFailedRunStillWritesThePropertiesAndSetsReady)
{
    m_engine.run();
    EXPECT_EQ(m_engine.m_nError, 3);
    EXPECT_TRUE(m_engine.m_bResultReady);
    EXPECT_EQ(m_engine.m_properties.size(), 10);
}

TEST_F(SolveTest, ANewRunClearsTheErrorOfTheLast)
{
    m_engine.run();
    ASSERT_TRUE(m_engine.hasError());
    takeTwo();
    m_engine.run();
    EXPECT_FALSE(m_engine.hasError());
}

TEST_F(SolveTest, ScaleRatiosFollowThePlotsEvenAfterAnError)
{
    m_engine.m_scaleRatios = {{0.3, 0.4, 0.5}, {0.3, 0.4, 0.5}, {0.3, 0.4, 0.5}};
    takeSpectra(m_engine, {{1.0}});
    m_engine.run();
    EXPECT_EQ(m_engine.m_nError, 3);
    ASSERT_EQ(m_engine.m_scaleRatios.size(), 1);
    EXPECT_EQ(m_engine.m_scaleRatios.first().MinRatio, 0.1);
}

TEST_F(SolveTest, PropertiesStateTheRun)
{
    takeTwo();
    m_engine.m_bUseMask = 1;
    m_engine.run();
    using Properties = QList<QPair<QString, QString>>;
    EXPECT_EQ(m_engine.m_properties, (Properties{{"DataMask", "Yes"},
                                                 {"SelectedImages", "3"},
                                                 {"SpectrumType", "Emission"},
                                                 {"Method", "Manual"},
                                                 {"AnalysisBinning", "4"},
                                                 {"ImageWidth", "8"},
                                                 {"ImageHeight", "5"},
                                                 {"DataUnit", "Radiance"},
                                                 {"SPUM_Ver", "2.0"},
                                                 {"Orvia", CORVPreference::getAppVersion()}}));
    m_engine.updateResultProperties(false);
    EXPECT_EQ(m_engine.m_properties.at(9).second, QString("Unknown"));
    m_engine.m_eUnit = 3;
    m_engine.m_eTemporalKind = 2;
    m_engine.updateResultProperties(true);
    EXPECT_EQ(m_engine.m_properties.at(7).second, QString("NTF Efficiency"));
    m_engine.m_eTemporalKind = 0;
    m_engine.m_eSeqKind = 2;
    m_engine.updateResultProperties(true);
    EXPECT_EQ(m_engine.m_properties.at(7).second, QString("NTF Efficiency"));
}

TEST(EngineRunTest, FromImagesToMapsOnTheThread)
{
    TestSequence sequence;
    sequence->isFluorescence = true;
    const std::vector<std::vector<double>> spectra = bellSpectra(3, 8);
    addMixture(sequence, 16, spectra);
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    engine.resetAnalysis(RUNMODE_LIBRARY);
    takeSpectra(engine, spectra);
    engine.start();
    ASSERT_TRUE(engine.wait(60000));
    ASSERT_FALSE(engine.hasError());
    ASSERT_EQ(engine.m_concentrations.num_rows(), 3);
    for (int k = 0; k < 3; ++k) {
        for (int i = 0; i < 256; ++i) {
            // The images are floats.
            EXPECT_NEAR(engine.m_concentrations[k][i], mapValue(k, i), 1e-5);
        }
    }
}

} // namespace
