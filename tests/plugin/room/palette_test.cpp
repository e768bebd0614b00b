// SPDX-License-Identifier: GPL-3.0-or-later
// The palette: sequences that come, change and go, and the table of images.
#include "WorkArea.h"

#include "host/CORVDataset.h"
#include "host/CORVUtilityFns.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QTest>

using namespace workarea;

namespace {

class PaletteTest : public WorkAreaTest
{
protected:
    static Plan temporal(const QStringList& times = Plan().times)
    {
        Plan plan;
        plan.id = "seq-T";
        plan.temporal = true;
        plan.times = times;
        return plan;
    }
    void expectRefused(int nTicked)
    {
        ASSERT_EQ(m_answers.asked.size(), 1);
        EXPECT_EQ(m_answers.asked.first().caption, engine().m_strSeqId);
        EXPECT_EQ(m_answers.asked.first().text, "Invalid image selection. Will restore to the last used selection.");
        EXPECT_EQ(m_answers.asked.first().parent, nullptr);
        EXPECT_EQ(ticked(), nTicked);
    }
};

TEST_F(PaletteTest, SlotsStandInTheirOrder)
{
    QStringList publicSlots;
    const QMetaObject* pMeta = &CORVSpumKyvoPalette::staticMetaObject;
    for (int i = pMeta->methodOffset(); i < pMeta->methodCount(); ++i) {
        const QMetaMethod method = pMeta->method(i);
        if (method.methodType() == QMetaMethod::Slot && method.access() == QMetaMethod::Public) {
            publicSlots << method.name();
        }
    }
    EXPECT_EQ(publicSlots, (QStringList{"saveROIsFromClosingResultDataset",
                                        "setInitialTab",
                                        "onChangeWLSelection",
                                        "onDatasetChanged",
                                        "onSequenceChanged",
                                        "onCloseSequenceDataset",
                                        "onClickUnmixSpectra",
                                        "onClickLoadResults",
                                        "onClickDeleteResults",
                                        "onClickSaveResults",
                                        "onTabChange",
                                        "onClickHHeader",
                                        "onClickVHeader",
                                        "onChangeResultsName",
                                        "keyPressEvent",
                                        "setBinningChanged",
                                        "setSequenceValidity",
                                        "getSequenceValidity",
                                        "updateProperties",
                                        "onClickPrintButtons",
                                        "onMenuActivated",
                                        "onMouseClicked",
                                        "exportSpUnmixResults",
                                        "writeSpUnmixResultsToFile",
                                        "CopyToClipboard",
                                        "getPrintPreviewPixmap",
                                        "advanced_mode_options",
                                        "askToSaveExistingResults",
                                        "initializeUI",
                                        "updateUI",
                                        "onRunUnmixing",
                                        "onCancelUnmixing",
                                        "onRunPCA",
                                        "onAxisTypeChanged"}));
}

TEST_F(PaletteTest, ANewPaletteIsInvalid)
{
    EXPECT_FALSE(m_palette->getSequenceValidity());
    EXPECT_EQ(m_palette->windowTitle(), "Spectral Unmixing Toolbox");
    EXPECT_FALSE(m_palette->m_pSpectrumAxisCMB->isEnabled());
    EXPECT_FALSE(m_palette->m_pUnmixSpectraButton->isEnabled());
    EXPECT_EQ(m_palette->tabWidget1->minimumHeight(), 350);
    EXPECT_FALSE(m_palette->tabWidget1->usesScrollButtons());
}

TEST_F(PaletteTest, ASequenceFillsTheTableAllTicked)
{
    Plan plan;
    plan.excitations = QStringList{"600", "640"};
    open(plan);
    EXPECT_TRUE(m_palette->getSequenceValidity());
    const QTableWidget& table = *m_palette->m_pWaveLengthTable;
    ASSERT_EQ(table.columnCount(), 2);
    EXPECT_EQ(table.horizontalHeaderItem(1)->text(), "640");
    EXPECT_EQ(rowTexts(), (QStringList{"660", "680", "700", "720", "740", "760"}));
    EXPECT_EQ(ticked(), 12);
    EXPECT_EQ(table.columnWidth(0), 30);
    EXPECT_EQ(table.rowHeight(0), 20);
    EXPECT_EQ(m_palette->m_pSpectrumAxisCMB->currentText(), "Emission");
    EXPECT_FALSE(m_palette->m_pSpectrumAxisCMB->isEnabled());
    QStringList methods;
    for (int i = 0; i < m_palette->m_pUnmixingMethodsCMB->count(); ++i) {
        methods << m_palette->m_pUnmixingMethodsCMB->itemText(i);
    }
    EXPECT_EQ(methods, (QStringList{"Library", "Guided", "Automatic", "Manual"}));
    EXPECT_EQ(box(2, 1)->accessibleName(), "excitation 640, emission 700");
}

TEST_F(PaletteTest, CellsWithoutAnImageStayEmpty)
{
    auto& opened = open();
    TestImage extra;
    extra.excitation = "600nm";
    extra.emission = "700nm";
    extra.side = side;
    opened.test().add(extra);
    m_palette->onSequenceChanged(&opened.sequence());
    EXPECT_NE(box(2, 0), nullptr);
    EXPECT_EQ(box(1, 0), nullptr);
    EXPECT_EQ(m_palette->m_pWaveLengthTable->item(1, 0), nullptr);
}

TEST_F(PaletteTest, AClickOnAColumnUnticksItAndASecondTicksIt)
{
    Plan plan;
    plan.excitations = QStringList{"600", "640"};
    open(plan);
    box(1, 0)->setChecked(false);
    m_palette->onClickHHeader(0);
    EXPECT_EQ(ticked(), 6);
    for (int r = 0; r < 6; ++r) {
        EXPECT_FALSE(box(r, 0)->isChecked());
        EXPECT_TRUE(box(r, 1)->isChecked());
    }
    m_palette->onClickHHeader(0);
    EXPECT_EQ(ticked(), 12);
    EXPECT_TRUE(m_answers.asked.isEmpty());
}

TEST_F(PaletteTest, AClickOnARowWorksLikewiseAndOthersDoNothing)
{
    Plan plan;
    plan.excitations = QStringList{"600", "640"};
    open(plan);
    m_palette->onClickVHeader(3);
    EXPECT_EQ(ticked(), 10);
    EXPECT_FALSE(box(3, 0)->isChecked() || box(3, 1)->isChecked());
    m_palette->onClickVHeader(-1);
    m_palette->onClickHHeader(-1);
    m_palette->onClickVHeader(99);
    EXPECT_EQ(ticked(), 10);
}

// One question for the line, not one a box.
TEST_F(PaletteTest, AClickThatLeavesTooLittleIsRefusedOnce)
{
    open();
    m_palette->onClickHHeader(0);
    expectRefused(6);
}

TEST_F(PaletteTest, OneImageAloneIsRefusedAndTheLastUsedSelectionComesBack)
{
    open();
    for (int r = 0; r < 4; ++r) {
        box(r, 0)->setChecked(false);
    }
    EXPECT_TRUE(m_answers.asked.isEmpty());
    EXPECT_TRUE(m_palette->hasEnoughSelected());
    box(4, 0)->setChecked(false);
    expectRefused(6); // what the engine used last, not what was ticked last
}

TEST_F(PaletteTest, ATemporalSelectionNeedsTwoTimePoints)
{
    open(temporal());
    for (int r = 0; r < 3; ++r) {
        box(r, 0)->setChecked(false);
    }
    expectRefused(4);
}

TEST_F(PaletteTest, TypesOfATemporalSequenceRenameItsRowsOnly)
{
    open(temporal());
    EXPECT_TRUE(m_palette->m_pSpectrumAxisCMB->isEnabled());
    EXPECT_EQ(m_palette->m_pWaveLengthTable->horizontalHeaderItem(0)->text(), "Int1");
    EXPECT_EQ(rowTexts(), (QStringList{"00:00:00", "00:00:10", "01:01:01", "01:00:00"}));
    box(1, 0)->setChecked(false);
    m_palette->m_pSpectrumAxisCMB->setCurrentIndex(1);
    EXPECT_EQ(rowTexts(), (QStringList{"1", "2", "3", "4"}));
    EXPECT_EQ(ticked(), 3);
    m_palette->updateUI();
    EXPECT_FALSE(box(1, 0)->isChecked());
    EXPECT_EQ(ticked(), 3);
    m_palette->m_pSpectrumAxisCMB->setCurrentIndex(0);
    EXPECT_EQ(rowTexts().first(), "00:00:00");
    EXPECT_TRUE(m_answers.asked.isEmpty());
}

// Two rows read alike; each is the image that it is.
TEST_F(PaletteTest, TimesBeyondADayAreToldApart)
{
    open(temporal({"0", "10", "3600", "90000"}));
    EXPECT_EQ(rowTexts().mid(2), (QStringList{"01:00:00", "01:00:00"}));
    box(2, 0)->setChecked(false);
    choose("Automatic");
    m_palette->onClickUnmixSpectra();
    ASSERT_EQ(engine().m_selectedKeyPairs.size(), 3);
    EXPECT_EQ(engine().m_selectedKeyPairs.last().second, "90000");
}

TEST_F(PaletteTest, TheChosenMethodStaysWhileItIsOffered)
{
    open();
    choose("Automatic");
    box(0, 0)->setChecked(false);
    m_palette->updateUI();
    EXPECT_EQ(m_palette->m_pUnmixingMethodsCMB->currentText(), "Automatic");
    choose("Guided");
    open(temporal());
    EXPECT_EQ(m_palette->m_pUnmixingMethodsCMB->currentText(), "Automatic");
    EXPECT_EQ(m_palette->m_pUnmixingMethodsCMB->count(), 2);
}

TEST_F(PaletteTest, AScanOffersTheAutomaticMethodAlone)
{
    Plan plan;
    plan.scan = true;
    open(plan);
    ASSERT_EQ(m_palette->m_pUnmixingMethodsCMB->count(), 1);
    EXPECT_EQ(m_palette->m_pUnmixingMethodsCMB->currentText(), "Automatic");
}

TEST_F(PaletteTest, ASequenceThatIsNotOfferedMakesItInvalid)
{
    auto& first = open();
    auto& second = open(otherPlan());
    second.sequence().isSpectrallyAnalysable = false;
    m_palette->onSequenceChanged(&first.sequence());
    m_palette->onSequenceChanged(&second.sequence());
    EXPECT_FALSE(m_palette->getSequenceValidity());
    EXPECT_EQ(engine().m_strSeqId, "seq-A");
}

TEST_F(PaletteTest, ASequenceThatCannotBeInspectedLosesItsEngineAndSaysSo)
{
    auto& opened = open();
    QSignalSpy changed(&opened.sequence(), SIGNAL(sequencePropertyChanged(CORVSequenceDataset*)));
    setBandsOf(opened, "700nm");
    const QPointer<CORVSpumKyvo> pEngine(&engine());
    m_palette->onSequenceChanged(&opened.sequence());
    EXPECT_EQ(changed.count(), 1);
    EXPECT_FALSE(opened.sequence().isSpectrallyAnalysable);
    EXPECT_FALSE(m_palette->getSequenceValidity());
    EXPECT_EQ(m_palette->engine(), nullptr);
    EXPECT_TRUE(pEngine.isNull());
    EXPECT_TRUE(m_answers.asked.isEmpty());
}

TEST_F(PaletteTest, ATomographyScanIsLeftOutOnlyOfTheSecondKind)
{
    auto& opened = open();
    opened.sequence().setCTScan(true, true);
    m_palette->onSequenceChanged(&opened.sequence());
    EXPECT_TRUE(m_palette->getSequenceValidity());
    opened.sequence().isSecondKind = true;
    m_palette->onSequenceChanged(&opened.sequence());
    EXPECT_FALSE(m_palette->getSequenceValidity());
    EXPECT_FALSE(opened.sequence().isSpectrallyAnalysable);
}

TEST_F(PaletteTest, ADatasetLeadsToItsSequence)
{
    auto& first = open();
    open(otherPlan());
    m_palette->onDatasetChanged(nullptr);
    EXPECT_TRUE(m_palette->getSequenceValidity());
    m_palette->onDatasetChanged(first.sequence().getDatasets().first());
    EXPECT_EQ(engine().m_strSeqId, "seq-A");
    EXPECT_TRUE(m_palette->getSequenceValidity());
    CORVDataset alone;
    m_palette->onDatasetChanged(&alone);
    EXPECT_FALSE(m_palette->getSequenceValidity());
}

TEST_F(PaletteTest, EveryNewSequenceStartsOnTheFirstTab)
{
    auto& first = open();
    m_palette->tabWidget1->setCurrentIndex(1);
    open(otherPlan());
    EXPECT_EQ(m_palette->tabWidget1->currentIndex(), 0);
    m_palette->tabWidget1->setCurrentIndex(1);
    m_palette->onSequenceChanged(&first.sequence());
    EXPECT_EQ(m_palette->tabWidget1->currentIndex(), 1);
}

TEST_F(PaletteTest, EachSequenceKeepsItsEngine)
{
    auto& first = open();
    CORVSpumKyvo* pFirst = &engine();
    auto& second = open(otherPlan());
    CORVSpumKyvo* pSecond = &engine();
    EXPECT_NE(pFirst, pSecond);
    m_palette->onSequenceChanged(&first.sequence());
    EXPECT_EQ(&engine(), pFirst);
    m_palette->onSequenceChanged(&second.sequence());
    EXPECT_EQ(&engine(), pSecond);
}

TEST_F(PaletteTest, AClosedSequenceThatIsNotCurrentGoesWithoutAQuestion)
{
    auto& first = open();
    const QPointer<CORVSpumKyvo> pFirst(&engine());
    unmixAutomatically();
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    open(otherPlan());
    m_answers.asked.clear();
    close(first);
    EXPECT_TRUE(pFirst.isNull());
    EXPECT_TRUE(m_answers.asked.isEmpty());
    EXPECT_EQ(engine().m_strSeqId, "seq-B");
}

TEST_F(PaletteTest, TheCurrentSequenceAsksBeforeItGoes)
{
    auto& opened = open();
    unmixAutomatically();
    const QPointer<SpumKyvoConsoleWnd> pConsole(&console());
    m_answers.asked.clear();
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    close(opened);
    EXPECT_EQ(m_answers.texts(), QStringList("Save Spectral Unmixing results for sequence [name of seq-A]?"));
    EXPECT_EQ(m_palette->engine(), nullptr);
    EXPECT_TRUE(pConsole.isNull());
    EXPECT_FALSE(m_palette->getSequenceValidity());
    EXPECT_TRUE(resultItems().isEmpty());
    EXPECT_FALSE(m_palette->m_pSaveButton->isEnabled());
}

TEST_F(PaletteTest, RegionsOfAClosingMapGoToItsEngine)
{
    open();
    CORVDataset map;
    CPLSection section("luminescent image");
    section.setValue("Spectral Unmix Seq Dataset", QString("seq-A"));
    section.setValue("Unmixed Concentration", QString("seqUMX2"));
    map.clickInfo.addSection(&section);
    m_palette->saveROIsFromClosingResultDataset(nullptr);
    m_palette->saveROIsFromClosingResultDataset(&map);
    EXPECT_TRUE(engine().m_roiResults.isEmpty()); // nobody opened it out of a sequence's window
    map.isSequenceWindowMember = true;
    m_palette->saveROIsFromClosingResultDataset(&map);
    m_palette->saveROIsFromClosingResultDataset(&map);
    ASSERT_EQ(engine().m_roiResults.size(), 1);
    EXPECT_EQ(engine().m_roiResults.first().concentrationMap, "seqUMX2");
}

TEST_F(PaletteTest, KeysGoNowhereElse)
{
    open();
    QKeyEvent key(QEvent::KeyPress, Qt::Key_F5, Qt::NoModifier);
    key.accept();
    m_palette->keyPressEvent(&key);
    EXPECT_TRUE(key.isAccepted());
}

TEST_F(PaletteTest, TheBoxesOfTheTableAreReachedByTab)
{
    open();
    m_palette->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m_palette.get()));
    QApplication::setActiveWindow(m_palette.get());
    box(0, 0)->setFocus(Qt::TabFocusReason);
    QTest::keyClick(box(0, 0), Qt::Key_Tab);
    EXPECT_TRUE(box(1, 0)->hasFocus());
    QTest::keyClick(box(1, 0), Qt::Key_Space);
    EXPECT_FALSE(box(1, 0)->isChecked());
}

TEST_F(PaletteTest, ABatchAsksNothingAndLeavesTheTable)
{
    open();
    m_palette->m_pSPUnResultsLV->addTopLevelItem(new QTreeWidgetItem(QStringList{"a", "b"}));
    CORVUtilityFns::setSpumBatchStatus(true);
    m_palette->onSequenceChanged(&m_opened.front()->sequence());
    EXPECT_TRUE(m_palette->askToSaveResults(true));
    EXPECT_EQ(resultItems().size(), 1);
    m_palette->endBatch();
    EXPECT_TRUE(m_palette->askToSaveResults(true));
    EXPECT_TRUE(resultItems().isEmpty());
}

} // namespace
