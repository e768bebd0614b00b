// SPDX-License-Identifier: GPL-3.0-or-later
// Maps that a tool has opened are not lost without a question.
#include "MainWindowFixture.h"

#include "host/CILImage.h"
#include "host/CORVImageWindow.h"
#include "host/CORVMessageBox.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVUtilityFns.h"
#include "host/CROIManager.h"
#include "workbench/application/RegionPanel.h"

#include <QDir>
#include <QFile>
#include <QToolButton>

namespace {

using Box = CORVMessageBox;

class SavingTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        MainWindowFixture::SetUp();
        makeWindowWithTool();
        m_pWindow->open(mouse());
        m_pMap = openMap();
    }
    // As a tool opens a map of its result.
    CORVDataset* openMap()
    {
        const auto* pSequence = m_pWindow->documents().sequences().first();
        const QString folder = pSequence->getDatasets().first()->folderPath();
        ESTATUS status = ESTATUS_FAILURE;
        Q_EMIT m_pTool->signalLoadFile(folder + "ClickInfo.txt", true, &status, nullptr);
        CORVDataset* pMap = m_pWindow->documents().currentDataset();
        EXPECT_NE(pMap, nullptr);
        pMap->setModified(true);
        pMap->updateActiveImage();
        return pMap;
    }
    bool close(int nAnswer)
    {
        m_script.m_asked.clear();
        m_script.m_nAnswer = nAnswer;
        const bool bClosed = m_pWindow->documents().closeCurrent();
        settle();
        return bClosed;
    }
    int count() const { return m_pWindow->documents().count(); }

    CORVDataset* m_pMap = nullptr;
};

TEST_F(SavingTest, AMapHasTheMarkOfAChange)
{
    EXPECT_TRUE(CORVImageWindow::getImageWindow(m_pMap)->isWindowModified());
}

TEST_F(SavingTest, NoGivesTheMapUp)
{
    EXPECT_TRUE(close(Box::NoButtonAnswer));
    ASSERT_EQ(m_script.m_asked.size(), 1);
    EXPECT_TRUE(m_script.m_asked.first().endsWith("is not saved anywhere. Save it?"));
    EXPECT_EQ(count(), 1);
    EXPECT_TRUE(m_script.m_titles.isEmpty());
}

TEST_F(SavingTest, CancelKeepsTheWindow)
{
    EXPECT_FALSE(close(Box::CancelButton));
    EXPECT_EQ(count(), 2);
    EXPECT_EQ(m_pWindow->documents().currentDataset(), m_pMap);
}

TEST_F(SavingTest, YesSavesWhereTheUserSays)
{
    const QString target = m_folder.filePath("kept");
    m_script.m_file = target;
    const CILImage* pImage = m_pMap->getCoreImage(IMAGETYPE_MAIN_DATA);
    ASSERT_NE(pImage, nullptr);
    const double value = pImage->value(5);
    EXPECT_TRUE(close(Box::YesButton));
    EXPECT_EQ(m_script.m_titles, QStringList("Folder of the image"));
    EXPECT_EQ(count(), 1);
    CORVDataset saved;
    ASSERT_EQ(saved.open(target), ESTATUS_SUCCESS);
    EXPECT_EQ(saved.getCoreImage(IMAGETYPE_MAIN_DATA)->value(5), value);
}

TEST_F(SavingTest, WhoNamesNoFolderKeepsTheWindow)
{
    EXPECT_FALSE(close(Box::YesButton));
    EXPECT_EQ(count(), 2);
    EXPECT_TRUE(m_pMap->isModified());
}

TEST_F(SavingTest, AFolderThatHoldsSomethingStaysAsItIs)
{
    const QString target = m_folder.filePath("taken");
    ASSERT_TRUE(QDir().mkpath(target));
    QFile note(target + "/note.txt");
    ASSERT_TRUE(note.open(QIODevice::WriteOnly));
    note.close();
    m_script.m_file = target;
    EXPECT_FALSE(close(Box::YesButton));
    EXPECT_TRUE(m_script.m_asked.last().startsWith(target + " is there already"));
    EXPECT_EQ(QDir(target).entryList(QDir::Files), QStringList("note.txt"));
    EXPECT_EQ(count(), 2);
}

TEST_F(SavingTest, AFolderThatCannotBeWrittenIsTold)
{
    m_script.m_file = m_folder.filePath("no/such/place");
    EXPECT_FALSE(close(Box::YesButton));
    EXPECT_TRUE(m_script.m_asked.last().contains("could not be saved in " + *m_script.m_file));
    EXPECT_TRUE(m_pMap->isModified());
}

TEST_F(SavingTest, TheMenuSavesAndTakesTheMarkAway)
{
    m_script.m_file = m_folder.filePath("by menu");
    trigger("saveImageAction");
    EXPECT_TRUE(QFile::exists(*m_script.m_file + "/ClickInfo.txt"));
    EXPECT_FALSE(CORVImageWindow::getImageWindow(m_pMap)->isWindowModified());
    EXPECT_TRUE(close(Box::CancelButton));
    EXPECT_TRUE(m_script.m_asked.isEmpty());
}

TEST_F(SavingTest, OnlyImagesByThemselvesAreSaved)
{
    const auto* pAction = find<QAction>("saveImageAction");
    EXPECT_TRUE(pAction->isEnabled());
    EXPECT_TRUE(close(Box::NoButtonAnswer));
    EXPECT_FALSE(pAction->isEnabled());
    m_pWindow->documents().showDataset(m_pWindow->documents().currentSequence()->getDatasets().first());
    EXPECT_FALSE(pAction->isEnabled());
}

TEST_F(SavingTest, AnImageOfASequenceClosesWithoutAQuestion)
{
    EXPECT_TRUE(close(Box::NoButtonAnswer));
    CORVDataset* pDataset = m_pWindow->documents().currentSequence()->getDatasets().first();
    pDataset->setModified(true);
    m_pWindow->documents().showDataset(pDataset);
    EXPECT_TRUE(close(Box::CancelButton));
    EXPECT_TRUE(m_script.m_asked.isEmpty());
}

// However all windows close.
class AllWindowsTest : public SavingTest, public ::testing::WithParamInterface<const char*>
{
protected:
    bool closeAll(int nAnswer)
    {
        m_script.m_nAnswer = nAnswer;
        if (GetParam() == std::string("menu")) {
            trigger("closeAllAction");
        } else if (GetParam() == std::string("quit")) {
            trigger("quitAction");
        } else {
            m_pWindow->close();
        }
        settle();
        return count() == 0;
    }
};

TEST_P(AllWindowsTest, CancelKeepsWhatIsOpen)
{
    EXPECT_FALSE(closeAll(Box::CancelButton));
    EXPECT_EQ(count(), 2);
    EXPECT_TRUE(m_pWindow->isVisible());
    EXPECT_EQ(m_script.m_asked.size(), 1);
}

TEST_P(AllWindowsTest, NoIsAskedForEachMap)
{
    openMap();
    EXPECT_TRUE(closeAll(Box::NoButtonAnswer));
    EXPECT_EQ(m_script.m_asked.size(), 2);
}

TEST_P(AllWindowsTest, NoToAllIsAskedOnce)
{
    openMap();
    EXPECT_TRUE(closeAll(Box::NoToAllButton));
    EXPECT_EQ(m_script.m_asked.size(), 1);
    EXPECT_FALSE(CORVUtilityFns::getNoToAllClicked());
    EXPECT_FALSE(CORVUtilityFns::getCloseAllClicked());
}

TEST_P(AllWindowsTest, YesSaves)
{
    m_script.m_file = m_folder.filePath("saved");
    EXPECT_TRUE(closeAll(Box::YesButton));
    EXPECT_TRUE(QFile::exists(*m_script.m_file + "/ClickInfo.txt"));
}

// The tool is asked to keep its result while the program tells that everything closes.
TEST_P(AllWindowsTest, TheToolKnowsThatAllWindowsClose)
{
    bool bAll = false;
    m_pTool->m_askToSave = [&bAll] { bAll = CORVUtilityFns::getCloseAllClicked(); };
    m_pMap->setModified(false);
    EXPECT_TRUE(closeAll(Box::NoButtonAnswer));
    EXPECT_TRUE(bAll);
}

INSTANTIATE_TEST_SUITE_P(Ways, AllWindowsTest, ::testing::Values("menu", "quit", "window"));

// A sequence of its own, and a region on its second image.
class RegionSavingTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        MainWindowFixture::SetUp();
        m_strFolder = m_folder.filePath("mine");
        simulated::into(m_strFolder, {"--size", "16", "--bands", "3"});
        makeWindow();
        m_pWindow->open(m_strFolder);
        CORVDataset* pImage = m_pWindow->documents().sequences().first()->getDatasets().at(1);
        m_pWindow->documents().showDataset(pImage);
        tagROIInfo region;
        region.width = region.height = 8.0;
        m_pWindow->findChild<RegionPanel*>()->take(-1, region);
    }
    bool closeSequence(int nAnswer)
    {
        EXPECT_TRUE(m_pWindow->documents().closeCurrent()) << "the image's window: nothing is lost yet";
        settle();
        EXPECT_TRUE(m_script.m_asked.isEmpty());
        m_script.m_nAnswer = nAnswer;
        const bool bClosed = m_pWindow->documents().closeCurrent();
        settle();
        return bClosed;
    }
    int savedRegions() const
    {
        CORVSequenceDataset sequence;
        EXPECT_EQ(sequence.open(m_strFolder), ESTATUS_SUCCESS);
        return sequence.getDatasets().at(1)->roiManager()->regions().size();
    }

    QString m_strFolder;
};

TEST_F(RegionSavingTest, YesSavesThemWithTheSequence)
{
    EXPECT_TRUE(closeSequence(Box::YesButton));
    EXPECT_EQ(m_script.m_asked, QStringList("The regions of an image of \"mine\" are not saved. Save them?"));
    EXPECT_EQ(savedRegions(), 1);
}

TEST_F(RegionSavingTest, NoGivesThemUp)
{
    EXPECT_TRUE(closeSequence(Box::NoButtonAnswer));
    EXPECT_EQ(savedRegions(), 0);
}

TEST_F(RegionSavingTest, CancelKeepsTheSequenceOpen)
{
    EXPECT_FALSE(closeSequence(Box::CancelButton));
    EXPECT_EQ(m_pWindow->documents().count(), 1);
    EXPECT_EQ(m_script.m_asked.size(), 1);
    m_script.m_nAnswer = Box::NoButtonAnswer;
}

TEST_F(RegionSavingTest, WhatWasSavedIsNotAskedFor)
{
    m_pWindow->findChild<QToolButton*>("m_pSaveRegionsButton")->click();
    EXPECT_TRUE(closeSequence(Box::CancelButton));
    EXPECT_TRUE(m_script.m_asked.isEmpty());
    EXPECT_EQ(savedRegions(), 1);
}

TEST_F(RegionSavingTest, AFailureKeepsTheSequenceOpen)
{
    CORVDataset* pImage = m_pWindow->documents().sequences().first()->getDatasets().at(1);
    ASSERT_TRUE(QDir(pImage->folderPath()).removeRecursively());
    EXPECT_FALSE(closeSequence(Box::YesButton));
    ASSERT_EQ(m_script.m_asked.size(), 2);
    EXPECT_TRUE(m_script.m_asked.last().startsWith("The image could not be saved in ")) << "it was deleted meanwhile";
    EXPECT_TRUE(pImage->isModified());
    m_script.m_nAnswer = Box::NoButtonAnswer;
}

} // namespace
