// SPDX-License-Identifier: GPL-3.0-or-later
// An analysis with spectra that are drawn or edited in the console.
#include "WorkArea.h"

#include "spectra/SpectrumPlotParams.h"

#include <QSignalSpy>

using namespace workarea;

namespace {

using DrawingSetUpTest = WorkAreaTest;

TEST_F(DrawingSetUpTest, TheGuidedMethodOpensTheConsoleForDrawing)
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

TEST_F(DrawingSetUpTest, TheManualMethodOpensTheConsoleWithProbesUnlessTemporal)
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

TEST_F(DrawingSetUpTest, AFailedOverviewOfTheDrawingMethodsIsTold)
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

TEST_F(DrawingSetUpTest, LeavingTheConsoleTakesItsTabAway)
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
class EditedSpectraTest : public DrawingSetUpTest
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

TEST_F(EditedSpectraTest, AnEmptyNameLeavesTheConsoleOpenAndStartsNothing)
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

TEST_F(EditedSpectraTest, NamedSpectraAreUnmixed)
{
    open();
    start("Manual");
    giveSpectra({"one", "two", "three"});
    engine().onClickDrawingFinished(1);
    EXPECT_EQ(engine().m_eMode, RUNMODE_MANUAL);
    EXPECT_EQ(engine().m_concentrations.num_rows(), 3);
    EXPECT_EQ(m_palette->m_pSPUnResultsLV->topLevelItem(3)->text(1), "Manual");
}

TEST_F(EditedSpectraTest, TheDrawingStepBecomesTheAnalysis)
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

TEST_F(EditedSpectraTest, AfterAnAutomaticRunTheConsoleSolvesWithTheEditedSpectra)
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

TEST_F(EditedSpectraTest, ARunWithAnErrorLeavesTheLastResultAlone)
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
    EXPECT_EQ(processes(), 0);
    EXPECT_FALSE(items.isEmpty());
}

} // namespace
