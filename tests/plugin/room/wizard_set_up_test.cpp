// SPDX-License-Identifier: GPL-3.0-or-later
// An analysis that is set up in the wizard.
#include "WorkArea.h"

#include "host/CILImage.h"
#include "host/CORVDataset.h"
#include "host/CORVProcess.h"
#include "spectra/SpectrumPlotParams.h"
#include "windows/CORVDistributionView.h"

#include <QSignalSpy>

using namespace workarea;

namespace {

using WizardSetUpTest = WorkAreaTest;

TEST_F(WizardSetUpTest, TheWizardOpensInATabWithWhatTheEngineKnows)
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

TEST_F(WizardSetUpTest, AnAutomaticRunEndsWithTilesSpectraAndProperties)
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
    EXPECT_EQ(processes(), 0);
}

TEST_F(WizardSetUpTest, AnEngineWithoutAWindowForItsSequenceStaysAsItIs)
{
    auto& opened = open();
    const QWidget* pFrame = opened.window().parentWidget();
    delete &opened.window();
    delete pFrame;
    start("Automatic");
    EXPECT_EQ(engine().m_pWizard, nullptr);
    EXPECT_EQ(engine().m_eMode, RUNMODE_MANUAL);
}

TEST_F(WizardSetUpTest, CancelTakesTheTabAwayAndKeepsTheOverview)
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
TEST_F(WizardSetUpTest, AWizardResultOfZeroStillGivesTheOverview)
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

TEST_F(WizardSetUpTest, AnAcquisitionStopsTheWizardForGood)
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

TEST_F(WizardSetUpTest, AnImageThatIsMissingShowsTheWizardAgain)
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

TEST_F(WizardSetUpTest, ASizeThatCannotBeSetIsToldInABox)
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

TEST_F(WizardSetUpTest, WithoutAMaskNothingStarts)
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

TEST_F(WizardSetUpTest, ASubjectThatTheUserChoseIsTheEngines)
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

TEST_F(WizardSetUpTest, NamesAndConstraintsAreTheWizards)
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

} // namespace
