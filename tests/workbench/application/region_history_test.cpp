// SPDX-License-Identifier: GPL-3.0-or-later
// Changes of regions in the windows of images are taken back and made again, by keys and by the menu of the main
// window.
#include "MainWindowFixture.h"
#include "RegionHand.h"

#include "host/CORVDataset.h"
#include "host/CORVMessageBox.h"
#include "host/CORVSequenceDataset.h"
#include "host/CROIManager.h"
#include "platform/orvapi/ROIShape.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QTableWidget>
#include <QUndoStack>

namespace {

// A sequence that the test may write into, and the window of its second image in front.
class RegionHistoryTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        MainWindowFixture::SetUp();
        m_strFolder = m_folder.filePath("mine");
        simulated::into(m_strFolder, {"--size", "32", "--bands", "4"});
        makeWindowWithTool();
        m_pWindow->resize(1200, 900);
        m_pWindow->open(m_strFolder);
        m_pImage = show(1);
    }
    void TearDown() override
    {
        // What a test has left unsaved is given up.
        m_script.m_nAnswer = CORVMessageBox::NoButtonAnswer;
        MainWindowFixture::TearDown();
    }
    DatasetWindow* show(int nImage)
    {
        CORVDataset* pDataset = m_pWindow->documents().sequences().first()->getDatasets().at(nImage);
        m_pWindow->documents().showDataset(pDataset);
        settle();
        auto* pImage = qobject_cast<DatasetWindow*>(CORVImageWindow::getImageWindow(pDataset));
        EXPECT_NE(pImage, nullptr);
        pImage->view()->setFocus();
        return pImage;
    }
    RegionHand hand() { return RegionHand(*m_pImage); }
    CORVDataset& dataset() { return *m_pImage->dataset(); }
    QTableWidget& table() { return *m_pImage->findChild<QTableWidget*>("m_pRegionTable"); }
    static QStringList regionsOf(CORVDataset& dataset)
    {
        QStringList texts;
        for (const tagROIInfo& region : dataset.roiManager()->regions()) {
            texts << region.name + ' ' + ROIShape::toText(region);
        }
        return texts;
    }
    QStringList regions() { return regionsOf(dataset()); }
    void undo() { QTest::keyClick(m_pImage->view(), Qt::Key_Z, Qt::ControlModifier); }
    void redo() { QTest::keyClick(m_pImage->view(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier); }
    void hold(int nKey, int nTimes)
    {
        for (int i = 0; i < nTimes; ++i) {
            QKeyEvent press(QEvent::KeyPress, nKey, Qt::NoModifier, QString(), i > 0);
            QApplication::sendEvent(m_pImage->view(), &press);
        }
        QKeyEvent release(QEvent::KeyRelease, nKey, Qt::NoModifier);
        QApplication::sendEvent(m_pImage->view(), &release);
    }
    QStringList saved() const
    {
        CORVSequenceDataset sequence;
        EXPECT_EQ(sequence.open(m_strFolder), ESTATUS_SUCCESS);
        return regionsOf(*sequence.getDatasets().at(1));
    }

    QString m_strFolder;
    DatasetWindow* m_pImage = nullptr;
};

TEST_F(RegionHistoryTest, EveryKindOfChangeIsTakenBackAndMadeAgain)
{
    QList<QStringList> states{regions()};
    const auto note = [&] {
        ASSERT_NE(regions(), states.last());
        states.append(regions());
    };
    hand().rectangle({4, 4}, {12, 10});
    note();
    hand().polygon({{16, 16}, {24, 16}, {24, 24}});
    note();
    hand().freeHand(beanAround({8, 22}, 4.0));
    hand().layDown();
    note();
    hand().drag({8, 7}, {10, 8}); // the rectangle
    note();
    hand().drag({14, 11}, {15, 13}); // its lower right corner
    note();
    m_pImage->view()->setFocus();
    QTest::keyClick(m_pImage->view(), Qt::Key_Right);
    note();
    table().item(1, 0)->setText("liver");
    note();
    QTest::keyClick(m_pImage->view(), Qt::Key_Delete);
    note();
    hand().drag({8, 22}, {9, 23}); // the line by hand
    note();

    for (int i = states.size() - 2; i >= 0; --i) {
        undo();
        EXPECT_EQ(regions(), states.at(i)) << i;
    }
    undo();
    EXPECT_TRUE(regions().isEmpty()) << "there is nothing before";
    for (int i = 1; i < states.size(); ++i) {
        redo();
        EXPECT_EQ(regions(), states.at(i)) << i;
    }
    redo();
    EXPECT_EQ(regions(), states.last());
    undo();
    undo();
    hand().rectangle({1, 1}, {3, 3});
    EXPECT_FALSE(find<QAction>("redoAction")->isEnabled()) << "a new change takes the place of those taken back";
}

TEST_F(RegionHistoryTest, WhatComesBackIsMeasuredAndChosen)
{
    hand().rectangle({4, 4}, {12, 10});
    hand().ellipse({16, 12}, {26, 24});
    hand().layDown();
    const double mean = dataset().roiManager()->regions().at(0).statistics.mean;
    table().selectRow(0);
    m_pImage->view()->setFocus();
    QTest::keyClick(m_pImage->view(), Qt::Key_Delete);
    ASSERT_EQ(table().rowCount(), 1);
    undo();
    ASSERT_EQ(table().rowCount(), 2);
    EXPECT_EQ(table().currentRow(), 0) << "in its old place";
    EXPECT_EQ(m_pImage->view()->regions().chosen(), 0);
    EXPECT_EQ(table().item(0, 0)->text(), "ROI 1");
    EXPECT_EQ(dataset().roiManager()->regions().at(0).statistics.mean, mean);
    m_pImage->showImage(IMAGETYPE_MAIN_DATA, DISPLAYUNIT_COUNTS);
    m_pImage->view();
    redo();
    undo();
    EXPECT_EQ(dataset().roiManager()->regions().at(0).statistics.unit, "Counts") << "in the unit that is shown now";
}

TEST_F(RegionHistoryTest, BackAtWhatWasSavedTheMarkGoesAndSavingWritesWhatIsThere)
{
    const auto* pSave = m_pImage->findChild<QToolButton*>("m_pSaveRegionsButton");
    hand().rectangle({4, 4}, {12, 10});
    undo();
    EXPECT_FALSE(m_pImage->isWindowModified());
    EXPECT_FALSE(dataset().isModified());
    EXPECT_FALSE(pSave->isEnabled());
    redo();
    EXPECT_TRUE(m_pImage->isWindowModified());
    m_pImage->findChild<QToolButton*>("m_pSaveRegionsButton")->click();
    EXPECT_EQ(saved(), regions());
    hand().rectangle({14, 14}, {20, 20});
    EXPECT_TRUE(m_pImage->isWindowModified());
    undo();
    EXPECT_FALSE(m_pImage->isWindowModified()) << "as it was saved";
    undo();
    EXPECT_TRUE(m_pImage->isWindowModified()) << "what is saved has a region that is not there any more";
    EXPECT_TRUE(pSave->isEnabled());
    m_pImage->findChild<QToolButton*>("m_pSaveRegionsButton")->click();
    EXPECT_EQ(saved(), QStringList());
    redo();
    redo();
    EXPECT_TRUE(dataset().isModified());
    m_pImage->findChild<QToolButton*>("m_pSaveRegionsButton")->click();
    EXPECT_EQ(saved().size(), 2);
}

TEST_F(RegionHistoryTest, AKeyThatIsHeldIsOneChange)
{
    hand().rectangle({4, 4}, {12, 10});
    hand().layDown();
    const QStringList drawn = regions();
    hold(Qt::Key_Right, 10);
    hold(Qt::Key_Down, 3);
    const double binning = dataset().getBinningForImage(IMAGETYPE_MAIN_DATA);
    EXPECT_EQ(dataset().roiManager()->regions().at(0).x, 14.0 * binning);
    undo();
    EXPECT_EQ(dataset().roiManager()->regions().at(0).y, 4.0 * binning);
    EXPECT_EQ(dataset().roiManager()->regions().at(0).x, 14.0 * binning);
    undo();
    EXPECT_EQ(regions(), drawn);
    redo();
    redo();
    EXPECT_EQ(dataset().roiManager()->regions().at(0).y, 7.0 * binning);
}

TEST_F(RegionHistoryTest, WhileAPolygonIsDrawnItsCornersAreTakenBackAndNoRegion)
{
    hand().rectangle({4, 4}, {12, 10});
    const QStringList drawn = regions();
    hand().take("m_pDrawPolygonButton");
    hand().click({16, 16});
    hand().click({24, 16});
    hand().click({30, 30});
    undo();
    EXPECT_EQ(regions(), drawn);
    hand().click({24, 24});
    QTest::keyClick(m_pImage->view(), Qt::Key_Return);
    ASSERT_EQ(dataset().roiManager()->regions().size(), 2);
    EXPECT_EQ(dataset().roiManager()->regions().at(1).points.at(2).x,
              24.0 * dataset().getBinningForImage(IMAGETYPE_MAIN_DATA));
    hand().click({4, 20});
    undo();
    EXPECT_EQ(dataset().roiManager()->regions().size(), 2) << "its only corner";
    undo();
    EXPECT_EQ(regions(), drawn) << "and then the polygon before";
}

TEST_F(RegionHistoryTest, ADragIsGivenUpAndNothingElse)
{
    hand().rectangle({4, 4}, {12, 10});
    hand().layDown();
    const QStringList drawn = regions();
    pointer::press(*m_pImage->view(), hand().place({8, 7}));
    pointer::move(*m_pImage->view(), hand().place({14, 12}), Qt::LeftButton);
    undo();
    pointer::release(*m_pImage->view(), hand().place({14, 12}));
    EXPECT_EQ(regions(), drawn);
}

TEST_F(RegionHistoryTest, TheMenuTellsWhatIsTakenBack)
{
    const auto* pUndo = find<QAction>("undoAction");
    const auto* pRedo = find<QAction>("redoAction");
    EXPECT_FALSE(pUndo->isEnabled());
    EXPECT_EQ(pUndo->text(), "&Undo");
    hand().rectangle({4, 4}, {12, 10});
    hand().layDown();
    EXPECT_EQ(pUndo->text(), "&Undo drawing a region");
    hand().drag({8, 7}, {10, 8});
    EXPECT_EQ(pUndo->text(), "&Undo changing a region");
    table().item(0, 0)->setText("R&D");
    EXPECT_EQ(pUndo->text(), "&Undo renaming a region");
    QTest::keyClick(&table(), Qt::Key_Delete);
    EXPECT_EQ(pUndo->text(), "&Undo removing a region");
    EXPECT_FALSE(pRedo->isEnabled());
    trigger("undoAction");
    EXPECT_EQ(pRedo->text(), "&Redo removing a region");
    EXPECT_TRUE(regions().first().startsWith("R&D "));
    trigger("redoAction");
    EXPECT_TRUE(regions().isEmpty());
}

TEST_F(RegionHistoryTest, ANameThatIsRefusedIsNoChange)
{
    hand().rectangle({4, 4}, {12, 10});
    hand().rectangle({14, 14}, {20, 20});
    table().item(1, 0)->setText("ROI 1");
    EXPECT_EQ(m_script.m_asked.size(), 1);
    EXPECT_EQ(find<QAction>("undoAction")->text(), "&Undo drawing a region");
}

TEST_F(RegionHistoryTest, InTheFieldOfANameUndoIsOfTheText)
{
    hand().rectangle({4, 4}, {12, 10});
    const QStringList drawn = regions();
    table().setFocus();
    table().editItem(table().item(0, 0));
    auto* pEdit = table().findChild<QLineEdit*>();
    ASSERT_NE(pEdit, nullptr);
    pEdit->setFocus();
    QTest::keyClicks(pEdit, "lung");
    QTest::keyClick(pEdit, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(regions(), drawn);
    EXPECT_FALSE(pEdit->text().contains("lung"));
}

TEST_F(RegionHistoryTest, EachImageHasItsOwn)
{
    hand().rectangle({4, 4}, {12, 10});
    DatasetWindow* pFirst = m_pImage;
    m_pImage = show(2);
    EXPECT_FALSE(find<QAction>("undoAction")->isEnabled());
    hand().ellipse({4, 4}, {12, 10});
    hand().layDown();
    trigger("undoAction");
    EXPECT_TRUE(regions().isEmpty());
    EXPECT_FALSE(find<QAction>("undoAction")->isEnabled());
    EXPECT_EQ(regionsOf(*pFirst->dataset()).size(), 1);
    m_pImage = show(1);
    trigger("undoAction");
    EXPECT_TRUE(regions().isEmpty());
    m_pWindow->open(m_strFolder); // the sequence comes to the front
    settle();
    EXPECT_FALSE(find<QAction>("redoAction")->isEnabled());
}

TEST_F(RegionHistoryTest, ItEndsWithTheWindowAndTheRegionsAreStillToBeSaved)
{
    hand().rectangle({4, 4}, {12, 10});
    CORVDataset& image = dataset();
    EXPECT_TRUE(m_pWindow->documents().closeCurrent());
    settle();
    EXPECT_FALSE(find<QAction>("undoAction")->isEnabled());
    EXPECT_TRUE(image.isModified());
    EXPECT_EQ(regionsOf(image).size(), 1);
    m_pImage = show(1);
    EXPECT_EQ(table().rowCount(), 1);
    EXPECT_FALSE(find<QAction>("undoAction")->isEnabled());
    hand().rectangle({14, 14}, {20, 20});
    undo();
    EXPECT_TRUE(m_pImage->isWindowModified()) << "the first one is not saved";
}

TEST_F(RegionHistoryTest, DuringARunNothingIsTakenBack)
{
    hand().rectangle({4, 4}, {12, 10});
    const QStringList drawn = regions();
    int nTurn = 0;
    m_pTool->m_during = [&] {
        if (++nTurn == 20) {
            EXPECT_FALSE(find<QAction>("undoAction")->isEnabled());
            undo();
            QTest::keyClick(m_pWindow.get(), Qt::Key_Z, Qt::ControlModifier);
        }
        m_pTool->m_bEnd = nTurn >= 40;
    };
    m_pTool->run();
    m_pTool->m_during = nullptr;
    EXPECT_GE(nTurn, 40);
    EXPECT_EQ(regions(), drawn);
    EXPECT_TRUE(find<QAction>("undoAction")->isEnabled());
    trigger("undoAction");
    EXPECT_TRUE(regions().isEmpty());
}

// A map is not saved anywhere yet, whatever is taken back on it.
TEST_F(RegionHistoryTest, AnImageThatWasNotSavedBeforeKeepsItsMark)
{
    ESTATUS status = ESTATUS_FAILURE;
    Q_EMIT m_pTool->signalLoadFile(dataset().folderPath() + "ClickInfo.txt", true, &status, nullptr);
    CORVDataset* pMap = m_pWindow->documents().currentDataset();
    ASSERT_NE(pMap, nullptr);
    pMap->setModified(true);
    pMap->updateActiveImage();
    m_pImage = qobject_cast<DatasetWindow*>(CORVImageWindow::getImageWindow(pMap));
    hand().rectangle({4, 4}, {12, 10});
    trigger("undoAction");
    EXPECT_TRUE(regions().isEmpty());
    EXPECT_TRUE(m_pImage->isWindowModified());
    trigger("redoAction");
    m_script.m_file = m_folder.filePath("kept");
    trigger("saveImageAction");
    EXPECT_FALSE(m_pImage->isWindowModified());
    trigger("undoAction");
    EXPECT_TRUE(m_pImage->isWindowModified());
    trigger("redoAction");
    EXPECT_FALSE(m_pImage->isWindowModified());
}

// As where a tool brings other regions: what does not fit them any more changes nothing.
TEST_F(RegionHistoryTest, RegionsThatOthersChangedStayAsTheyAre)
{
    hand().rectangle({4, 4}, {12, 10});
    dataset().roiManager()->clearAllLists();
    tagROIInfo other;
    other.name = "other";
    other.width = other.height = 20.0;
    ASSERT_TRUE(dataset().roiManager()->addRegion(other));
    m_pImage->refreshImage();
    const QStringList before = regions();
    trigger("undoAction");
    EXPECT_EQ(regions(), before);
    EXPECT_FALSE(find<QAction>("undoAction")->isEnabled());
}

} // namespace
