// SPDX-License-Identifier: GPL-3.0-or-later
// The set-up of an analysis in its windows, and its runs.
#include "WorkArea.h"

#include "plugin/sequenceWindows.h"
#include "support/CapturedOutput.h"

#include "host/CORVChildWindow.h"
#include "host/CORVDataset.h"
#include "host/CORVImageWindow.h"
#include "host/CORVPreference.h"
#include "host/CORVPreferenceSignals.h"
#include "host/CORVProcess.h"
#include "host/orv_paths.h"
#include "platform/orvutils/ProcessControl.h"
#include "spectra/SpUnmixSpectrumLibraryWnd.h"
#include "spectra/SpectrumPlotParams.h"
#include "spectra/SpumKyvoDatabase.h"
#include "windows/CORVDistributionView.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <random>

using namespace workarea;

namespace {

class SetUpTest : public WorkAreaTest
{
protected:
    static Plan other()
    {
        Plan plan;
        plan.id = "seq-B";
        plan.emissions = QStringList{"500", "520", "540", "560"};
        return plan;
    }
    void start(const char* pMethod)
    {
        choose(pMethod);
        m_palette->onClickUnmixSpectra();
    }
    void run()
    {
        const testsupport::CapturedOutput trace;
        finishWizard(1);
    }
    int ended() const { return orv::processState().m_nRunning; }
    std::vector<double> concentrations()
    {
        std::vector<double> values;
        for (long long k = 0; k < engine().m_concentrations.num_rows(); ++k) {
            for (long long i = 0; i < engine().m_concentrations.num_cols(); ++i) {
                values.push_back(engine().m_concentrations[k][i]);
            }
        }
        return values;
    }
};

TEST_F(SetUpTest, TheWizardOpensInATabWithWhatTheEngineKnows)
{
    Plan plan;
    plan.subject = "Well Plate";
    auto& opened = open(plan);
    box(0, 0)->setChecked(false);
    start("Automatic");
    EXPECT_EQ(opened.tabs(), QStringList("Auto Unmix"));
    EXPECT_EQ(opened.window().getCurrentTabName(), "Auto Unmix");
    EXPECT_FALSE(wizard().isHidden());
    EXPECT_EQ(wizard().m_nImageCount, 5);
    EXPECT_EQ(wizard().m_nAnalysisType, 1);
    EXPECT_EQ(wizard().getImagingSubject(), "Well Plate");
    EXPECT_EQ(wizard().m_pPhotoImage, engine().m_pPhoto);
    EXPECT_EQ(engine().m_eMode, RUNMODE_AUTOMATIC);
    EXPECT_EQ(engine().m_selectedKeyPairs.size(), 5);
}

TEST_F(SetUpTest, AnAutomaticRunEndsWithTilesSpectraAndProperties)
{
    auto& opened = open();
    QSignalSpy restored(m_palette.get(), SIGNAL(restoreWindows(bool)));
    QSignalSpy validity(m_palette.get(), SIGNAL(updateValidity(QWidget*, bool)));
    unmixAutomatically();
    EXPECT_EQ(complaints(), "");
    EXPECT_FALSE(engine().hasError());
    EXPECT_EQ(opened.tabs(), QStringList("Unmixing"));
    EXPECT_EQ(opened.window().getCurrentTabName(), "Unmixing");
    const int nComponents = static_cast<int>(engine().m_concentrations.num_rows());
    EXPECT_EQ(nComponents, 2);
    EXPECT_EQ(console().distributionView()->getImageNumber(), nComponents + 1);
    EXPECT_EQ(console().distributionView()->imageLabel(nComponents), "Composite");
    EXPECT_EQ(console().getSpectra().size(), nComponents);
    EXPECT_FALSE(console().m_bSpectraModified);
    EXPECT_TRUE(console().m_bResultsExist);
    EXPECT_FALSE(console().m_pseudoColorImage.isNull());
    EXPECT_EQ(console().m_pImageTabWidget->currentIndex(), 1);
    EXPECT_EQ(resultItems().first(), "DataMask");
    EXPECT_EQ(m_palette->m_pSPUnResultsLV->topLevelItem(3)->text(1), "Automatic");
    EXPECT_EQ(m_palette->tabWidget1->currentIndex(), 1);
    EXPECT_EQ(m_palette->m_pSavedResultsCB->currentText(), "SPUM_001(new)");
    EXPECT_TRUE(m_palette->m_pSaveButton->isEnabled());
    EXPECT_TRUE(m_palette->isEnabled());
    ASSERT_EQ(restored.count(), 2);
    EXPECT_EQ(restored.at(0).at(0).toBool(), false);
    EXPECT_EQ(restored.at(1).at(0).toBool(), true);
    ASSERT_GE(validity.count(), 1);
    EXPECT_EQ(validity.last().at(1).toBool(), true);
    EXPECT_EQ(engine().m_pProgress, nullptr);
    EXPECT_EQ(ended(), 0);
}

TEST_F(SetUpTest, AnEngineWithoutAWindowForItsSequenceStaysAsItIs)
{
    auto& opened = open();
    const QWidget* pFrame = opened.window().parentWidget();
    delete &opened.window();
    delete pFrame;
    start("Automatic");
    EXPECT_EQ(engine().m_pWizard, nullptr);
    EXPECT_EQ(engine().m_eMode, RUNMODE_MANUAL);
}

TEST_F(SetUpTest, CancelTakesTheTabAwayAndKeepsTheOverview)
{
    auto& opened = open();
    unmixAutomatically();
    const QImage overview = console().m_pseudoColorImage;
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    start("Automatic");
    QSignalSpy cancelled(&engine(), SIGNAL(cancelRun()));
    wizard().reject();
    EXPECT_EQ(cancelled.count(), 1);
    EXPECT_TRUE(wizard().isHidden());
    EXPECT_EQ(opened.tabs(), QStringList());
    EXPECT_EQ(console().m_pseudoColorImage, overview);
    // The table of the old result went when the analysis was started.
    EXPECT_TRUE(resultItems().isEmpty());
}

// With data in the cube its overview is made anew and given to the console.
TEST_F(SetUpTest, AWizardResultOfZeroStillGivesTheOverview)
{
    open();
    start("Automatic");
    ASSERT_TRUE(engine().createPseudoColorImage());
    QSignalSpy cancelled(&engine(), SIGNAL(cancelRun()));
    finishWizard(0);
    EXPECT_EQ(cancelled.count(), 1);
    ASSERT_NE(engine().m_pConsole, nullptr);
    EXPECT_FALSE(engine().m_cube.m_rgbImage.isNull());
}

TEST_F(SetUpTest, AnAcquisitionStopsTheWizardForGood)
{
    open();
    start("Automatic");
    QSignalSpy ready(&engine(), SIGNAL(readyToRun()));
    QSignalSpy cancelled(&engine(), SIGNAL(cancelRun()));
    CORVProcess::startLongProcess(0, LONGPROCESS_ACQUISITION, false, QString());
    finishWizard(1);
    CORVProcess::endLongProcess(LONGPROCESS_ACQUISITION);
    EXPECT_TRUE(m_log.has("SpumKyvo: Unable to proceed analysis during acquistion.", 16));
    EXPECT_TRUE(wizard().isHidden());
    EXPECT_EQ(ready.count() + cancelled.count(), 0);
    EXPECT_EQ(engine().m_pProgress, nullptr);
}

TEST_F(SetUpTest, AnImageThatIsMissingShowsTheWizardAgain)
{
    open();
    start("Automatic");
    engine().m_imageRecords.clear();
    QSignalSpy ready(&engine(), SIGNAL(readyToRun()));
    finishWizard(1);
    EXPECT_TRUE(m_log.has("SpumKyvo: Unable to createImageList.", 16));
    EXPECT_FALSE(wizard().isHidden());
    EXPECT_EQ(ready.count(), 0);
    EXPECT_EQ(engine().m_pProgress, nullptr);
}

TEST_F(SetUpTest, ASizeThatCannotBeSetIsToldInABox)
{
    open();
    start("Automatic");
    engine().m_bAutoBinning = false;
    engine().m_nBinning = 1;
    for (CORVDataset* pDataset : m_opened.front()->sequence().getDatasets()) {
        pDataset->setCoreImage(IMAGETYPE_MAIN_DATA, CILImage());
    }
    engine().m_nBinning = 0;
    m_opened.front()->sequence().setSequenceID("renamed");
    finishWizard(1);
    m_opened.front()->sequence().setSequenceID("seq-A");
    EXPECT_TRUE(m_log.has("SpumKyvo: Unable to setBinningAndSize.", 16));
    EXPECT_EQ(m_answers.texts(), QStringList("Unable to set the binning factor and size for the image cube."));
    EXPECT_FALSE(wizard().isHidden());
    EXPECT_EQ(engine().m_pProgress, nullptr);
}

TEST_F(SetUpTest, WithoutAMaskNothingStarts)
{
    auto& opened = open();
    start("Automatic");
    QSignalSpy ready(&engine(), SIGNAL(readyToRun()));
    QSignalSpy cancelled(&engine(), SIGNAL(cancelRun()));
    *wizard().m_pMaskImage = CILImage();
    finishWizard(1);
    EXPECT_TRUE(m_log.has("SpumKyvo: unable to get a valid photo mask!", 2));
    EXPECT_EQ(ready.count() + cancelled.count(), 0);
    EXPECT_EQ(opened.tabs(), QStringList("Unmixing"));
    EXPECT_TRUE(wizard().isHidden());
    EXPECT_EQ(engine().m_pProgress, nullptr);
}

TEST_F(SetUpTest, ASubjectThatTheUserChoseIsTheEngines)
{
    Plan plan;
    plan.subject = "Phantom of ours";
    open(plan);
    start("Automatic");
    run();
    EXPECT_EQ(engine().m_strSubjectType, "Phantom of ours");
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    start("Automatic");
    wizard().m_pSubjectCB->setCurrentText("Other");
    run();
    EXPECT_EQ(engine().m_strSubjectType, "Other");
}

TEST_F(SetUpTest, NamesAndConstraintsAreTheWizards)
{
    open();
    start("Automatic");
    const QStringList names = wizard().getComponentNames();
    run();
    EXPECT_EQ(engine().m_analysisInput.componentNames, names);
    EXPECT_EQ(engine().m_labels.size(), names.size());
    EXPECT_TRUE(engine().m_analysisInput.useConstraints);
    EXPECT_EQ(engine().m_params.Constraints.size(), names.size());
    EXPECT_EQ(engine().m_bUseMask, 1);
    EXPECT_LT(static_cast<int>(engine().m_maskIndices.size()), side * side);
}

// The dialog of libraries, used as soon as it is open.
void whenLibrariesOpen(QObject* pContext, const std::function<void(SpUnmixSpectrumLibraryWnd&)>& use)
{
    auto* pTimer = new QTimer(pContext);
    QObject::connect(pTimer, &QTimer::timeout, pContext, [pTimer, use] {
        if (auto* pDialog = qobject_cast<SpUnmixSpectrumLibraryWnd*>(QApplication::activeModalWidget())) {
            pTimer->deleteLater();
            use(*pDialog);
        }
    });
    pTimer->start(2);
}

TEST_F(SetUpTest, BackingOutOfTheLibrariesStartsNothing)
{
    auto& opened = open();
    QSignalSpy cancelled(&engine(), SIGNAL(cancelRun()));
    QSignalSpy ready(&engine(), SIGNAL(readyToRun()));
    bool bAppendHidden = false;
    whenLibrariesOpen(m_palette.get(), [&](SpUnmixSpectrumLibraryWnd& dialog) {
        bAppendHidden = dialog.m_pAppendChk->isHidden();
        dialog.reject();
    });
    start("Library");
    EXPECT_TRUE(bAppendHidden);
    EXPECT_EQ(cancelled.count(), 1);
    EXPECT_EQ(ready.count(), 0);
    EXPECT_EQ(opened.tabs(), QStringList());
}

// Libraries may know more images than are selected, in another order.
TEST_F(SetUpTest, SpectraOfALibraryAreUnmixed)
{
    open();
    QList<SpectrumPlotParams*> spectra;
    QList<KeyPair> pairs = engine().m_allKeyPairs;
    std::reverse(pairs.begin(), pairs.end());
    for (std::size_t k = 0; k < 2; ++k) {
        std::vector<double> values = bellSpectra(2, 6)[k];
        std::reverse(values.begin(), values.end());
        spectra << plotOf(pairs, values);
        spectra.last()->settings.name = k == 0 ? "one" : "two";
    }
    const QString strFolder = getORVPath(ORV_PATH_USER_DATA, true, nullptr) + "Spum";
    ASSERT_TRUE(QDir().mkpath(strFolder));
    ASSERT_TRUE(SpumKyvoDatabase().saveLibrary(strFolder + "/both.csv", spectra, "a note"));
    qDeleteAll(spectra);
    box(0, 0)->setChecked(false);
    whenLibrariesOpen(m_palette.get(), [](SpUnmixSpectrumLibraryWnd& dialog) {
        dialog.preload(true, "both");
        dialog.onClickNext();
    });
    start("Library");
    EXPECT_EQ(complaints(), "");
    ASSERT_EQ(engine().m_concentrations.num_rows(), 2);
    ASSERT_EQ(engine().m_spectra.num_cols(), 5);
    EXPECT_EQ(engine().m_spectrumPlots.first()->settings.name, "one");
    EXPECT_EQ(engine().m_spectrumPlots.first()->points.first().second, engine().m_selectedKeyPairs.first().second);
    EXPECT_EQ(console().getSpectra().size(), 2);
    EXPECT_EQ(m_palette->m_pSPUnResultsLV->topLevelItem(3)->text(1), "Library");
    QFile::remove(strFolder + "/both.csv");
}

TEST_F(SetUpTest, ASpectrumThatLacksAnImageIsRefusedByTheRun)
{
    open();
    engine().setPresetSpectra({plotOf(engine().m_selectedKeyPairs.mid(0, 3), {1.0, 0.5, 0.2})});
    engine().prepareAnalysis(RUNMODE_LIBRARY, true);
    EXPECT_TRUE(m_log.has("SpumKyvo: Incorrect initial guess settings!", 3));
    EXPECT_TRUE(resultItems().isEmpty());
}

TEST_F(SetUpTest, PresetSpectraRunAtOnce)
{
    open();
    engine().setPresetSpectra({plotOf(engine().m_selectedKeyPairs, bellSpectra(2, 6)[0]),
                               plotOf(engine().m_selectedKeyPairs, bellSpectra(2, 6)[1])});
    engine().prepareAnalysis(RUNMODE_LIBRARY, true);
    EXPECT_EQ(complaints(), "");
    EXPECT_EQ(engine().m_eMode, RUNMODE_LIBRARY);
    EXPECT_EQ(engine().m_concentrations.num_rows(), 2);
    EXPECT_EQ(console().getSpectra().size(), 2);
    EXPECT_EQ(console().distributionView()->getImageNumber(), 3);
    EXPECT_EQ(m_palette->m_pSPUnResultsLV->topLevelItem(3)->text(1), "Library");
}

TEST_F(SetUpTest, AFailedOverviewOfTheLibraryMethodIsSilent)
{
    open();
    QSignalSpy ready(&engine(), SIGNAL(readyToRun()));
    QSignalSpy cancelled(&engine(), SIGNAL(cancelRun()));
    engine().m_imageRecords.clear();
    start("Library");
    EXPECT_EQ(ready.count() + cancelled.count(), 0);
    EXPECT_TRUE(m_answers.asked.isEmpty());
    EXPECT_FALSE(m_log.mentions("unable to create pseudo color image"));
}

TEST_F(SetUpTest, TheGuidedMethodOpensTheConsoleForDrawing)
{
    Plan plan;
    auto& opened = open(plan);
    engine().m_bResultReady = true;
    start("Guided");
    EXPECT_EQ(opened.tabs(), QStringList("Unmixing"));
    EXPECT_TRUE(console().m_bBackgroundMode);
    EXPECT_FALSE(engine().m_bResultReady);
    ASSERT_EQ(console().getSpectra().size(), 1 + engine().m_probes.size());
    EXPECT_EQ(console().getSpectra().first()->settings.name, "TissueAF");
}

TEST_F(SetUpTest, TheManualMethodOpensTheConsoleWithProbesUnlessTemporal)
{
    Plan plan;
    open(plan);
    start("Manual");
    EXPECT_FALSE(console().m_bBackgroundMode);
    EXPECT_EQ(console().getSpectra().size(), 1 + engine().m_probes.size());
    Plan temporal;
    temporal.id = "seq-T";
    temporal.temporal = true;
    open(temporal);
    start("Manual");
    EXPECT_TRUE(console().getSpectra().isEmpty());
}

TEST_F(SetUpTest, AFailedOverviewOfTheDrawingMethodsIsTold)
{
    open();
    for (const char* pMethod : {"Guided", "Manual"}) {
        engine().m_imageRecords.clear();
        QSignalSpy cancelled(&engine(), SIGNAL(cancelRun()));
        start(pMethod);
        EXPECT_EQ(cancelled.count(), 1) << pMethod;
    }
    EXPECT_EQ(m_log.count("SpumKyvo: unable to create pseudo color image.", 3), 2);
}

TEST_F(SetUpTest, LeavingTheConsoleTakesItsTabAway)
{
    auto& opened = open();
    start("Manual");
    engine().m_bResultReady = true;
    QSignalSpy cancelled(&engine(), SIGNAL(cancelRun()));
    engine().onClickDrawingFinished(0);
    EXPECT_EQ(opened.tabs(), QStringList());
    EXPECT_FALSE(engine().m_bResultReady);
    EXPECT_EQ(cancelled.count(), 1);
}

// The spectra of a Manual analysis, of those that the images were made from.
class DrawnTest : public SetUpTest
{
protected:
    void giveSpectra(const QStringList& names)
    {
        QList<SpectrumPlotParams*> spectra;
        for (int k = 0; k < names.size(); ++k) {
            spectra << plotOf(engine().m_selectedKeyPairs, bellSpectra(3, 6)[static_cast<std::size_t>(k)]);
            spectra.last()->settings.name = names.at(k);
        }
        console().setSpectra(spectra);
        qDeleteAll(spectra);
    }
};

TEST_F(DrawnTest, AnEmptyNameLeavesTheConsoleOpenAndStartsNothing)
{
    auto& opened = open();
    start("Manual");
    giveSpectra({"one", ""});
    QSignalSpy ready(&engine(), SIGNAL(readyToRun()));
    QSignalSpy cancelled(&engine(), SIGNAL(cancelRun()));
    m_answers.asked.clear();
    engine().onClickDrawingFinished(1);
    ASSERT_EQ(m_answers.texts(), QStringList("Please enter a name for each unmixing component"));
    EXPECT_EQ(ready.count() + cancelled.count(), 0);
    EXPECT_EQ(opened.tabs(), QStringList("Unmixing"));
    EXPECT_FALSE(console().isHidden());
    EXPECT_TRUE(engine().m_spectrumPlots.isEmpty());
}

TEST_F(DrawnTest, NamedSpectraAreUnmixed)
{
    open();
    start("Manual");
    giveSpectra({"one", "two", "three"});
    engine().onClickDrawingFinished(1);
    EXPECT_EQ(engine().m_eMode, RUNMODE_MANUAL);
    EXPECT_EQ(engine().m_concentrations.num_rows(), 3);
    EXPECT_EQ(m_palette->m_pSPUnResultsLV->topLevelItem(3)->text(1), "Manual");
}

TEST_F(DrawnTest, TheDrawingStepBecomesTheAnalysis)
{
    open();
    start("Guided");
    giveSpectra({"one", "two"});
    engine().onClickDrawingFinished(1);
    EXPECT_FALSE(console().m_bBackgroundMode);
    EXPECT_EQ(console().getSpectra().size(), 2);
    EXPECT_EQ(engine().m_eMode, RUNMODE_GUIDED);
    EXPECT_EQ(engine().m_concentrations.num_rows(), 2);
}

TEST_F(DrawnTest, AfterAnAutomaticRunTheConsoleSolvesWithTheEditedSpectra)
{
    open();
    unmixAutomatically();
    const AutomaticRunFacts facts = engine().m_runFacts;
    engine().m_runFacts.iterations = -7;
    giveSpectra({"one", "two", "three"});
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    engine().onClickDrawingFinished(1);
    EXPECT_EQ(engine().m_eMode, RUNMODE_MANUAL);
    EXPECT_EQ(engine().m_concentrations.num_rows(), 3);
    EXPECT_EQ(engine().m_runFacts.iterations, -7); // no curve resolution
    EXPECT_GT(facts.iterations, 0);
    EXPECT_EQ(m_palette->m_pSPUnResultsLV->topLevelItem(3)->text(1), "Manual");
}

TEST_F(DrawnTest, ARunWithAnErrorLeavesTheLastResultAlone)
{
    open();
    unmixAutomatically();
    const std::vector<double> before = concentrations();
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    const QStringList items = resultItems();
    qDeleteAll(engine().m_spectrumPlots);
    engine().m_spectrumPlots.clear();
    engine().m_eMode = RUNMODE_MANUAL;
    m_answers.asked.clear();
    const QString strName = m_palette->m_pSavedResultsCB->currentText();
    Q_EMIT engine().readyToRun();
    EXPECT_TRUE(m_log.has("SpumKyvo: Incorrect initial guess settings!", 3));
    EXPECT_EQ(concentrations(), before);
    EXPECT_EQ(m_palette->m_pSavedResultsCB->currentText(), strName.left(0));
    EXPECT_TRUE(m_palette->isEnabled());
    EXPECT_EQ(ended(), 0);
    EXPECT_FALSE(items.isEmpty());
}

TEST_F(SetUpTest, ComingBackToASequenceFindsTheAnalysisAsItWas)
{
    auto& first = open();
    box(5, 0)->setChecked(false);
    unmixAutomatically();
    const std::vector<double> maps = concentrations();
    const int eUnit = engine().m_eUnit;
    const QStringList items = resultItems();
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    open(other());
    EXPECT_EQ(ticked(), 4);
    EXPECT_TRUE(resultItems().isEmpty());
    m_palette->onSequenceChanged(&first.sequence());
    EXPECT_EQ(ticked(), 5);
    EXPECT_FALSE(box(5, 0)->isChecked());
    EXPECT_EQ(engine().m_selectedKeyPairs.size(), 5);
    EXPECT_EQ(engine().m_eUnit, eUnit);
    EXPECT_EQ(resultItems(), items);
    EXPECT_EQ(console().distributionView()->getImageNumber(), 3);
    engine().onClickDrawingFinished(1);
    EXPECT_FALSE(engine().hasError());
    EXPECT_EQ(complaints(), "");
    EXPECT_EQ(concentrations().size(), maps.size());
}

TEST_F(SetUpTest, ASelectionWhoseImagesAreGoneDoesNotComeBack)
{
    auto& opened = open();
    unmixAutomatically();
    engine().m_selectedKeyPairs.first().second = "999";
    m_palette->onSequenceChanged(&opened.sequence());
    EXPECT_EQ(engine().m_selectedKeyPairs, engine().m_allKeyPairs);
}

TEST_F(SetUpTest, AnOpenWizardKeepsItsSelectionOverAnotherSequence)
{
    auto& first = open();
    box(0, 0)->setChecked(false);
    start("Automatic");
    open(other());
    m_palette->onSequenceChanged(&first.sequence());
    EXPECT_EQ(ticked(), 5);
    run();
    EXPECT_EQ(engine().m_spectra.num_cols(), 5);
}

TEST_F(SetUpTest, AnAnnouncementDuringARunLeavesTheEngineInPlace)
{
    open();
    auto& second = open(other());
    m_palette->onSequenceChanged(&m_opened.front()->sequence());
    bool bValidMeanwhile = true;
    QString strCurrent;
    start("Automatic");
    QObject::connect(m_palette.get(), &CORVSpumKyvoPalette::restoreWindows, m_palette.get(), [&](bool bBack) {
        if (!bBack) {
            m_palette->onSequenceChanged(&second.sequence());
            bValidMeanwhile = m_palette->getSequenceValidity();
            strCurrent = engine().m_strSeqId;
        }
    });
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    run();
    EXPECT_FALSE(bValidMeanwhile);
    EXPECT_EQ(strCurrent, "seq-A");
    // What was announced is current once the run is over.
    EXPECT_EQ(engine().m_strSeqId, "seq-B");
    EXPECT_TRUE(m_palette->getSequenceValidity());
}

TEST_F(SetUpTest, TheHostMayAnnounceTheSequenceAgainAfterTheRun)
{
    auto& opened = open();
    QObject::connect(m_palette.get(), &CORVSpumKyvoPalette::restoreWindows, m_palette.get(), [&](bool bBack) {
        if (bBack) {
            m_palette->onSequenceChanged(&opened.sequence());
        }
    });
    box(0, 0)->setChecked(false);
    unmixAutomatically();
    EXPECT_EQ(ticked(), 5);
    EXPECT_FALSE(resultItems().isEmpty());
    EXPECT_TRUE(m_palette->getSequenceValidity());
    EXPECT_EQ(m_answers.asked.size(), 0);
}

TEST_F(SetUpTest, AbortsAtRandomMomentsLeaveAWorkingPalette)
{
    open();
    unmixAutomatically();
    const std::vector<double> fresh = concentrations();
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    std::mt19937 random(7);
    int nAborted = 0;
    for (int i = 0; i < 20; ++i) {
        start("Automatic");
        const int nDelay = static_cast<int>(random() % 12);
        QTimer::singleShot(nDelay, m_palette.get(), [] {
            if (orv::processState().m_nRunning > 0) {
                orv::requestAbort();
            }
        });
        run();
        EXPECT_TRUE(m_palette->isEnabled());
        EXPECT_TRUE(m_palette->getSequenceValidity());
        EXPECT_EQ(engine().m_pProgress, nullptr);
        EXPECT_FALSE(engine().isRunning());
        EXPECT_EQ(ended(), 0);
        nAborted += m_log.count("SpumKyvo: unmixing aborted by user.", 16) > nAborted ? 1 : 0;
    }
    QTest::qWait(20);
    start("Automatic");
    run();
    EXPECT_EQ(concentrations(), fresh);
    RecordProperty("aborted", nAborted);
}

TEST_F(SetUpTest, ASequenceThatClosesDuringItsRunTakesTheEngineAlong)
{
    auto& opened = open();
    const QPointer<CORVSpumKyvo> pEngine(&engine());
    QObject::connect(m_palette.get(), &CORVSpumKyvoPalette::restoreWindows, m_palette.get(), [&](bool bBack) {
        if (!bBack) {
            QTimer::singleShot(0, m_palette.get(), [&] { close(opened); });
        }
    });
    unmixAutomatically();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QTest::qWait(1);
    EXPECT_TRUE(pEngine.isNull());
    EXPECT_EQ(m_palette->engine(), nullptr);
    EXPECT_TRUE(m_palette->isEnabled());
    EXPECT_EQ(ended(), 0);
}

TEST_F(SetUpTest, APCAShowsItsWindowAndKeepsTheEigenvalues)
{
    open();
    start("Automatic");
    QString strShown;
    QTimer::singleShot(0, m_palette.get(), [&] {
        auto* pTimer = new QTimer(m_palette.get());
        QObject::connect(pTimer, &QTimer::timeout, m_palette.get(), [&strShown, pTimer] {
            if (auto* pDialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                strShown = pDialog->windowTitle();
                pDialog->accept();
                pTimer->stop();
            }
        });
        pTimer->start(5);
    });
    Q_EMIT wizard().runPCA();
    EXPECT_EQ(strShown, "Principle Component Analysis");
    ASSERT_GT(engine().m_pcaResult.size(), 0);
    EXPECT_LT(engine().m_pcaResult[engine().m_pcaResult.size() - 1], engine().m_pcaResult[0]);
    EXPECT_FALSE(engine().m_bRunPCA);
    EXPECT_TRUE(m_palette->isEnabled());
    EXPECT_FALSE(wizard().isHidden());
}

TEST_F(SetUpTest, AUserWhoBacksOutOfTheQuestionStartsNothing)
{
    open();
    unmixAutomatically();
    m_answers.answer = CORVMessageBox::CancelButton;
    m_answers.asked.clear();
    choose("Automatic");
    m_palette->onClickUnmixSpectra();
    EXPECT_EQ(m_answers.asked.size(), 1);
    EXPECT_TRUE(wizard().isHidden());
    EXPECT_FALSE(CORVMessageBox::getCancelClicked());
    EXPECT_FALSE(resultItems().isEmpty());
    EXPECT_EQ(engine().m_concentrations.num_rows(), 2);
}

// Pages of this process that are in memory.
long residentPages()
{
    QFile file("/proc/self/statm");
    return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').value(1).toLong() : 0;
}

TEST_F(SetUpTest, ThirtyAnalysesInOneProcess)
{
    open();
    unmixAutomatically();
    const std::vector<double> first = concentrations();
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    long nAfterTheThird = 0;
    for (int i = 2; i <= 30; ++i) {
        start("Automatic");
        run();
        ASSERT_EQ(concentrations(), first) << "analysis " << i;
        nAfterTheThird = i == 3 ? residentPages() : nAfterTheThird;
    }
    EXPECT_EQ(complaints(), "");
    EXPECT_GT(nAfterTheThird, 0);
    EXPECT_LT(residentPages(), nAfterTheThird + nAfterTheThird / 10);
}

} // namespace
