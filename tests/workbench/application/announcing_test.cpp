// SPDX-License-Identifier: GPL-3.0-or-later
// What the tool hears of what is open and in front, and what the panel shows.
#include "MainWindowFixture.h"

#include "host/CORVSequenceWindow.h"
#include "workbench/application/paletteReason.h"

#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QStatusTipEvent>
#include <QTabWidget>

namespace {

class AnnouncingTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        MainWindowFixture::SetUp();
        makeWindowWithTool();
    }
    QStringList heard()
    {
        const QStringList told = m_pTool->m_told;
        m_pTool->m_told.clear();
        return told;
    }
};

TEST_F(AnnouncingTest, ANewSequenceIsToldAndThenThatItIsInFront)
{
    m_pWindow->open(mouse());
    EXPECT_EQ(heard(), QStringList({"added mouse", "changed mouse"}));
    m_pWindow->open(other());
    EXPECT_EQ(heard(), QStringList({"added other", "changed other"}));
    m_pWindow->open(mouse());
    EXPECT_EQ(heard(), QStringList("changed mouse"));
}

TEST_F(AnnouncingTest, AClosedSequenceIsToldAheadOfItsEnd)
{
    m_pWindow->open(mouse());
    m_pWindow->open(other());
    heard();
    m_pWindow->documents().closeCurrent();
    settle();
    EXPECT_EQ(heard(), QStringList({"ask", "removed other", "changed mouse"}));
    m_pWindow->documents().closeCurrent();
    settle();
    EXPECT_EQ(heard(), QStringList({"ask", "removed mouse", "changed nothing"}));
}

TEST_F(AnnouncingTest, WhenAllCloseNoneComesToTheFront)
{
    m_pWindow->open(mouse());
    m_pWindow->open(other());
    heard();
    EXPECT_TRUE(m_pWindow->documents().closeAll());
    settle();
    EXPECT_EQ(heard(), QStringList({"ask", "removed other", "removed mouse", "changed nothing"}));
}

TEST_F(AnnouncingTest, BehindAClosedWindowComesTheOneBefore)
{
    m_pWindow->open(mouse());
    m_pWindow->open(other());
    m_pWindow->documents().showDataset(m_pWindow->documents().currentSequence()->getDatasets().first());
    heard();
    m_pWindow->documents().closeCurrent();
    settle();
    EXPECT_EQ(heard(), QStringList("changed other"));
}

TEST_F(AnnouncingTest, AnImageInFrontIsToldAsADataset)
{
    m_pWindow->open(mouse());
    CORVDataset* pDataset = m_pWindow->documents().currentSequence()->getDatasets().first();
    heard();
    m_pWindow->documents().showDataset(pDataset);
    EXPECT_EQ(heard(), QStringList("dataset " + pDataset->getClickNumber()));
    EXPECT_TRUE(find("fakePalette")->isVisible());
}

TEST_F(AnnouncingTest, TheToolHasAMapOpened)
{
    m_pWindow->open(mouse());
    const QString folder = m_pWindow->documents().currentSequence()->getDatasets().first()->folderPath();
    ESTATUS status = ESTATUS_FAILURE;
    Q_EMIT m_pTool->signalLoadFile(folder + "ClickInfo.txt", true, &status, nullptr);
    EXPECT_EQ(status, ESTATUS_SUCCESS);
    CORVDataset* pMap = m_pWindow->documents().currentDataset();
    ASSERT_NE(pMap, nullptr);
    EXPECT_TRUE(pMap->isSequenceWindowMember);
    EXPECT_FALSE(pMap->belongsToSequence());
    EXPECT_FALSE(find("fakePalette")->isVisible());
    EXPECT_TRUE(find<QLabel>("paletteReason")->text().contains("shows the image"));
    heard();
    const QString number = pMap->getClickNumber();
    m_pWindow->documents().closeCurrent();
    settle();
    EXPECT_EQ(heard().first(), "dataset removed " + number);
}

TEST_F(AnnouncingTest, AMapThatIsNotThereIsToldToTheTool)
{
    ESTATUS status = ESTATUS_SUCCESS;
    Q_EMIT m_pTool->signalLoadFile(m_folder.filePath("none/ClickInfo.txt"), true, &status, nullptr);
    EXPECT_NE(status, ESTATUS_SUCCESS);
    EXPECT_EQ(m_pWindow->documents().count(), 0);
}

TEST_F(AnnouncingTest, AnotherTabIsTold)
{
    m_pWindow->open(mouse());
    auto* pWindow = m_pWindow->documents().currentSequenceWindow();
    heard();
    QWidget tab;
    pWindow->addTabWidget(&tab, nullptr, nullptr, QIcon(), "Other", -1, true);
    EXPECT_EQ(heard(), QStringList("tab Other"));
    EXPECT_FALSE(find("fakePalette")->isVisible());
    EXPECT_TRUE(find<QLabel>("paletteReason")->text().contains("The tab \"Other\""));
    pWindow->removeTabWidget("Other");
}

TEST_F(AnnouncingTest, APaletteThatIsOffIsReplacedByTheReason)
{
    m_pTool->m_bTakesUp = false;
    m_pWindow->open(mouse());
    EXPECT_FALSE(find("fakePalette")->isVisible());
    EXPECT_TRUE(find<QLabel>("paletteReason")->text().contains("\"mouse\" was not taken up"));
    m_pTool->m_bTakesUp = true;
    m_pWindow->palette().announce();
    EXPECT_TRUE(find("fakePalette")->isVisible());
    EXPECT_EQ(find("paletteDock")->windowTitle(), "Fake Toolbox");
}

// Keys of a part of a sub-window count only with the focus in there.
TEST_F(AnnouncingTest, PrintGivesWayToAToolbarWithAButtonOfItsOwn)
{
    m_pWindow->open(mouse());
    auto* pWindow = m_pWindow->documents().currentSequenceWindow();
    const auto* pPrint = find<QAction>("printAction");
    QPushButton tab("in the tab");
    QWidget bar;
    QPushButton button("Print", &bar);
    button.setShortcut(QKeySequence("Ctrl+P"));
    int nClicked = 0;
    QObject::connect(&button, &QPushButton::clicked, [&nClicked] { ++nClicked; });
    pWindow->addTabWidget(&tab, &bar, nullptr, QIcon(), "Unmixing", -1, true);
    tab.setFocus();
    EXPECT_TRUE(pPrint->shortcut().isEmpty());
    QTest::keyClick(&tab, Qt::Key_P, Qt::ControlModifier);
    EXPECT_TRUE(QTest::qWaitFor([&nClicked] { return nClicked == 1; }, 2000)); // the button is seen to go down
    EXPECT_FALSE(m_pTool->m_told.contains("print"));
    m_pTool->m_pFirst->setFocus();
    EXPECT_EQ(pPrint->shortcut(), QKeySequence("Ctrl+P"));
    tab.setFocus();
    EXPECT_TRUE(pPrint->shortcut().isEmpty());
    pWindow->removeTabWidget("Unmixing");
    settle();
    EXPECT_EQ(pPrint->shortcut(), QKeySequence("Ctrl+P"));
}

// What lies below the pointer in a view of the tool.
TEST_F(AnnouncingTest, WhatAViewOfTheToolTellsIsReadAtTheLowerEdge)
{
    m_pWindow->open(mouse());
    auto* pWindow = m_pWindow->documents().currentSequenceWindow();
    QWidget tab;
    auto* pView = new QWidget(&tab);
    pWindow->addTabWidget(&tab, nullptr, nullptr, QIcon(), "Unmixing", -1, true);
    const auto tell = [pView](const QString& strText) {
        QStatusTipEvent tip(strText);
        QApplication::sendEvent(pView, &tip);
    };
    const auto* pReadOut = find<QLabel>("readOut");
    tell("x 3, y 4, 17.5 counts");
    EXPECT_EQ(pReadOut->text(), "x 3, y 4, 17.5 counts");
    EXPECT_TRUE(find("statusText")->isVisible()); // in place
    tell(QString());
    EXPECT_EQ(pReadOut->text(), "");
    // A view that leaves the front can't tell it any more.
    tell("x 3, y 4, 17.5 counts");
    pWindow->setActiveTab("Sequence View");
    EXPECT_EQ(pReadOut->text(), "");
    pWindow->removeTabWidget("Unmixing");
}

PaletteFacts inFront(int nImages, bool bAnalysable, const QString& strTab = "Sequence View")
{
    PaletteFacts facts;
    facts.anythingOpen = facts.sequenceInFront = true;
    facts.name = "m";
    facts.images = nImages;
    facts.analysable = bAnalysable;
    facts.tab = strTab;
    return facts;
}

TEST(PaletteReasonTest, SaysWhatIsMissing)
{
    PaletteFacts running = inFront(6, true);
    running.running = true;
    EXPECT_TRUE(paletteReason(running).startsWith("An analysis is running."));
    EXPECT_EQ(paletteReason({}), "Open a sequence to unmix its images.");
    PaletteFacts image;
    image.anythingOpen = true;
    image.name = "C1";
    EXPECT_TRUE(paletteReason(image).contains("shows the image \"C1\""));
    EXPECT_TRUE(paletteReason(inFront(1, false)).contains("has a single image"));
    EXPECT_TRUE(paletteReason(inFront(6, false)).contains("cannot be unmixed"));
    EXPECT_TRUE(paletteReason(inFront(6, true, "Notes")).contains("The tab \"Notes\""));
    // Names of tabs count without regard to case.
    EXPECT_TRUE(paletteReason(inFront(6, true, "unmixing")).contains("was not taken up"));
}

TEST(PaletteReasonTest, ALongNameDoesNotWidenThePanel)
{
    PaletteFacts facts = inFront(6, false);
    facts.name = QString(300, 'n');
    for (const QString& word : paletteReason(facts).split(' ')) {
        EXPECT_LT(word.size(), 40);
    }
}

TEST(PaletteReasonTest, TellsWhatTheLogSaid)
{
    PaletteFacts facts = inFront(6, false);
    facts.lastComplaint = "the file x.tif is broken";
    EXPECT_TRUE(paletteReason(facts).endsWith("The log says: the file x.tif is broken"));
}

} // namespace
