// SPDX-License-Identifier: GPL-3.0-or-later
// How sequences come into the window.
#include "MainWindowFixture.h"

#include "host/CORVImageWindow.h"
#include "host/CORVSequenceWindow.h"
#include "workbench/application/recentPaths.h"

#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QToolButton>
#include <QUrl>

namespace {

class OpeningTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        MainWindowFixture::SetUp();
        makeWindow();
    }
    QStringList openNames() const
    {
        QStringList names;
        for (const CORVSequenceDataset* pSequence : m_pWindow->documents().sequences()) {
            names << pSequence->getSequenceName();
        }
        return names;
    }
    void drop(const QList<QUrl>& urls) const
    {
        QMimeData data;
        data.setUrls(urls);
        const QPoint at = m_pWindow->rect().center();
        QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_pWindow.get(), &enter);
        if (enter.isAccepted()) {
            QDropEvent dropped(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(m_pWindow.get(), &dropped);
        }
    }
};

TEST_F(OpeningTest, NothingOpenShowsHowToBegin)
{
    EXPECT_TRUE(find("startPage")->isVisible());
    for (const char* pName : {"openActionButton", "importActionButton", "simulateActionButton"}) {
        EXPECT_TRUE(find<QPushButton>(pName)->isVisible()) << pName;
    }
}

TEST_F(OpeningTest, PathsOfTheCommandLineOpenOneAfterTheOther)
{
    m_pWindow->openLater({mouse(), other()});
    EXPECT_TRUE(openNames().isEmpty());
    EXPECT_TRUE(QTest::qWaitFor([&] { return openNames() == QStringList({"mouse", "other"}); }, 5000));
    EXPECT_FALSE(find("startPage")->isVisible());
    EXPECT_EQ(m_pWindow->documents().currentSequence()->getSequenceName(), "other");
}

TEST_F(OpeningTest, TheMenuAsksForAFolder)
{
    m_script.m_file = mouse();
    trigger("openAction");
    EXPECT_EQ(m_script.m_titles, QStringList("Open a sequence"));
    EXPECT_EQ(openNames(), QStringList("mouse"));
    // The next question starts where this sequence lies.
    EXPECT_EQ(CORVPreference::getSettings()->getRecentFilePath(), QFileInfo(mouse()).path());
}

TEST_F(OpeningTest, WhoBacksOutOpensNothing)
{
    trigger("openAction");
    EXPECT_EQ(m_script.m_titles.size(), 1);
    EXPECT_TRUE(openNames().isEmpty());
    EXPECT_TRUE(m_script.m_asked.isEmpty());
}

TEST_F(OpeningTest, AnInfoFileOpensItsSequence)
{
    EXPECT_TRUE(m_pWindow->open(mouse() + "/SequenceInfo.txt"));
    EXPECT_EQ(openNames(), QStringList("mouse"));
}

TEST_F(OpeningTest, ADroppedFolderOpens)
{
    drop({QUrl::fromLocalFile(mouse())});
    EXPECT_TRUE(QTest::qWaitFor([&] { return openNames() == QStringList("mouse"); }, 5000));
}

TEST_F(OpeningTest, WhatIsNoFileIsNotTaken)
{
    drop({QUrl(QStringLiteral("https://example.org/mouse"))});
    settle();
    EXPECT_TRUE(openNames().isEmpty());
    EXPECT_TRUE(m_script.m_asked.isEmpty());
}

TEST_F(OpeningTest, AnOpenSequenceComesToTheFront)
{
    m_pWindow->open(mouse());
    m_pWindow->open(other());
    EXPECT_TRUE(m_pWindow->open(mouse() + "/"));
    EXPECT_EQ(openNames().size(), 2);
    EXPECT_EQ(m_pWindow->documents().currentSequence()->getSequenceName(), "mouse");
}

TEST_F(OpeningTest, ABrokenSequenceSaysWhy)
{
    const QString folder = m_folder.filePath("broken");
    QDir().mkpath(folder);
    QFile info(folder + "/SequenceInfo.txt");
    ASSERT_TRUE(info.open(QIODevice::WriteOnly));
    info.write("nothing of sense\n");
    info.close();
    EXPECT_FALSE(m_pWindow->open(folder));
    ASSERT_EQ(m_script.m_asked.size(), 1);
    EXPECT_TRUE(m_script.m_asked.first().contains(folder)) << qPrintable(m_script.m_asked.first());
    EXPECT_TRUE(m_script.m_asked.first().contains("holds no dataset that can be read"));
    EXPECT_TRUE(find("startPage")->isVisible());
    EXPECT_TRUE(recentPaths::read(*CORVPreference::getSettings()).isEmpty());
}

TEST_F(OpeningTest, AFolderThatIsGoneLeavesTheRecentOnes)
{
    CORVSettings& settings = *CORVPreference::getSettings();
    const QString gone = m_folder.filePath("gone");
    recentPaths::write(settings, {gone, mouse()});
    EXPECT_FALSE(m_pWindow->open(gone));
    ASSERT_EQ(m_script.m_asked.size(), 1);
    EXPECT_TRUE(m_script.m_asked.first().contains(gone));
    EXPECT_EQ(recentPaths::read(settings), QStringList(mouse()));
}

TEST_F(OpeningTest, RecentSequencesAreInTheMenuAndOnTheFirstPage)
{
    m_pWindow->open(mouse());
    m_pWindow->open(other());
    const auto entries = find<QMenu>("recentMenu")->actions();
    ASSERT_GE(entries.size(), 2);
    EXPECT_TRUE(entries[0]->text().contains(QFileInfo(other()).fileName()));
    EXPECT_TRUE(m_pWindow->documents().closeAll());
    settle();
    const auto buttons = m_pWindow->findChildren<QToolButton*>("recentButton");
    ASSERT_EQ(buttons.size(), 2);
    EXPECT_TRUE(buttons[1]->isVisible());
    QTest::mouseClick(buttons[1], Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return openNames() == QStringList("mouse"); }, 5000));
    find<QMenu>("recentMenu")->actions().at(1)->trigger();
    EXPECT_EQ(openNames(), QStringList({"mouse", "other"}));
}

TEST_F(OpeningTest, ADatasetOpensInAnImageWindow)
{
    const QStringList folders = QDir(mouse()).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    QString dataset;
    for (const QString& folder : folders) {
        if (QFile::exists(mouse() + '/' + folder + "/ClickInfo.txt")) {
            dataset = mouse() + '/' + folder;
        }
    }
    ASSERT_FALSE(dataset.isEmpty());
    EXPECT_TRUE(m_pWindow->open(dataset));
    ASSERT_NE(m_pWindow->documents().currentDataset(), nullptr);
    EXPECT_FALSE(m_pWindow->documents().currentDataset()->isSequenceWindowMember);
    EXPECT_EQ(m_pWindow->documents().currentSequence(), nullptr);
}

TEST_F(OpeningTest, ClosingTheLastShowsTheFirstPageAgain)
{
    m_pWindow->open(mouse());
    QTest::keyClick(m_pWindow.get(), Qt::Key_W, Qt::ControlModifier);
    settle();
    EXPECT_TRUE(openNames().isEmpty());
    EXPECT_EQ(CORVSequenceDataset::openSequences().size(), 0);
    EXPECT_TRUE(find("startPage")->isVisible());
}

TEST_F(OpeningTest, AWindowThatIsClosedByItselfTakesItsSequenceAlong)
{
    m_pWindow->open(mouse());
    EXPECT_TRUE(CORVSequenceWindow::getSequenceWindow(m_pWindow->documents().currentSequence())->close());
    settle();
    EXPECT_EQ(m_pWindow->documents().count(), 0);
    EXPECT_EQ(CORVSequenceDataset::openSequences().size(), 0);
}

TEST_F(OpeningTest, ImagesOfASequenceGoWithIt)
{
    m_pWindow->open(mouse());
    CORVDataset* pDataset = m_pWindow->documents().currentSequence()->getDatasets().first();
    m_pWindow->documents().showDataset(pDataset);
    EXPECT_EQ(m_pWindow->documents().currentDataset(), pDataset);
    EXPECT_EQ(m_pWindow->documents().count(), 2);
    CORVSequenceWindow::getSequenceWindow(pDataset->sequence())->close();
    settle();
    EXPECT_EQ(m_pWindow->documents().count(), 0);
}

} // namespace
