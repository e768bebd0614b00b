// SPDX-License-Identifier: GPL-3.0-or-later
// What happens while the tool runs something.
#include "MainWindowFixture.h"

#include "host/CORVMessageBox.h"
#include "host/CORVSequenceWindow.h"
#include "host/CORVUtilityFns.h"
#include "platform/orvutils/ProcessControl.h"

#include <QDialog>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>

namespace {

class RunLockTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        MainWindowFixture::SetUp();
        makeWindowWithTool();
        m_pWindow->open(mouse());
        m_pTool->m_told.clear();
        m_script.m_nAnswer = CORVMessageBox::YesButton;
    }
    // Runs until `during` has been called often enough.
    void run(const std::function<void()>& during, int nAtTurn = 20)
    {
        int nTurn = 0;
        m_pTool->m_during = [this, during, nAtTurn, nTurn]() mutable {
            if (++nTurn == nAtTurn) {
                during();
            }
            m_pTool->m_bEnd = nTurn >= nAtTurn + 20 && !m_bGoesOn;
        };
        m_pTool->run();
        m_pTool->m_during = nullptr;
    }

    bool m_bGoesOn = false; // until it is aborted
};

TEST_F(RunLockTest, EverythingIsOffButProgressLogAndAbort)
{
    find<QAction>("printAction"); // is there
    run([this] {
        EXPECT_FALSE(find("mdiArea")->isEnabled());
        EXPECT_FALSE(m_pWindow->menuBar()->isEnabled());
        EXPECT_FALSE(find("palettePages")->isEnabled());
        for (const char* pName : {"openAction", "importAction", "simulateAction", "printAction", "preferencesAction",
                                  "copyPictureAction", "tileAction"}) {
            EXPECT_FALSE(find<QAction>(pName)->isEnabled()) << pName;
        }
        EXPECT_TRUE(find("progressPanel")->isVisible());
        EXPECT_TRUE(find("abortButton")->isEnabled());
        EXPECT_TRUE(find("logView")->isEnabled());
        EXPECT_TRUE(find("logFilter")->isEnabled());
    });
    EXPECT_TRUE(find("mdiArea")->isEnabled());
    EXPECT_TRUE(m_pWindow->menuBar()->isEnabled());
    EXPECT_TRUE(find("palettePages")->isEnabled());
    EXPECT_TRUE(find<QAction>("openAction")->isEnabled());
    EXPECT_FALSE(find("progressPanel")->isVisible());
}

TEST_F(RunLockTest, TheFocusIsBackWhereItWas)
{
    m_pTool->m_pStart->setFocus();
    ASSERT_EQ(QApplication::focusWidget(), m_pTool->m_pStart);
    run([this] { EXPECT_NE(QApplication::focusWidget(), m_pTool->m_pStart); });
    EXPECT_EQ(QApplication::focusWidget(), m_pTool->m_pStart);
}

// As the wizard, which goes with the press that starts the run.
TEST_F(RunLockTest, AFocusThatWasHiddenMeanwhileGoesToTheWork)
{
    auto* pWindow = m_pWindow->documents().currentSequenceWindow();
    QPushButton finish("Finish");
    pWindow->addTabWidget(&finish, nullptr, nullptr, QIcon(), "Auto Unmix", -1, true);
    finish.setFocus();
    run([&] { pWindow->removeTabWidget("Auto Unmix"); });
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    EXPECT_TRUE(pWindow->isAncestorOf(QApplication::focusWidget()));
}

TEST_F(RunLockTest, TheCurrentSequenceIsAnnouncedAgain)
{
    run([] {});
    EXPECT_EQ(m_pTool->m_told, QStringList({"run", "ended"}));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            return m_pTool->m_told == QStringList({"run", "ended", "changed mouse"});
        },
        2000));
}

TEST_F(RunLockTest, NothingIsAnnouncedWhileTheToolAsksSomething)
{
    run([] {});
    QDialog question(m_pWindow.get());
    question.setModal(true);
    question.show();
    QTest::qWait(150);
    EXPECT_EQ(m_pTool->m_told.size(), 2);
    question.close();
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_pTool->m_told.size() == 3; }, 2000));
}

TEST_F(RunLockTest, TheButtonAborts)
{
    m_bGoesOn = true;
    run([this] {
        QTest::mouseClick(find("abortButton"), Qt::LeftButton);
        EXPECT_FALSE(find("abortButton")->isEnabled());
        EXPECT_EQ(find<QLabel>("progressMessage")->text(), "Aborting...");
    });
    EXPECT_TRUE(m_pTool->m_bAborted);
}

TEST_F(RunLockTest, EscapeAborts)
{
    m_bGoesOn = true;
    run([this] { QTest::keyClick(m_pWindow.get(), Qt::Key_Escape); });
    EXPECT_TRUE(m_pTool->m_bAborted);
}

TEST_F(RunLockTest, EscapeInTheFilterOfTheLogAbortsToo)
{
    m_bGoesOn = true;
    find("logDock")->show();
    run([this] {
        find("logFilter")->setFocus();
        QTest::keyClick(find("logFilter"), Qt::Key_Escape);
    });
    EXPECT_TRUE(m_pTool->m_bAborted);
}

TEST_F(RunLockTest, ADropIsNotTaken)
{
    run([this] {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(other())});
        QDragEnterEvent enter(QPoint(200, 200), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enter.ignore();
        QApplication::sendEvent(m_pWindow.get(), &enter);
        EXPECT_FALSE(enter.isAccepted());
        QDropEvent dropped(QPoint(200, 200), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_pWindow.get(), &dropped);
    });
    settle();
    EXPECT_EQ(m_pWindow->documents().count(), 1);
}

TEST_F(RunLockTest, KeysOfTheMenusDoNothing)
{
    run([this] {
        QTest::keyClick(m_pWindow.get(), Qt::Key_O, Qt::ControlModifier);
        QTest::keyClick(m_pWindow.get(), Qt::Key_P, Qt::ControlModifier);
        QTest::keyClick(m_pWindow.get(), Qt::Key_F1);
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    });
    EXPECT_TRUE(m_script.m_titles.isEmpty());
}

TEST_F(RunLockTest, ClosingTheSequenceAsksAbortsWaitsAndCloses)
{
    m_bGoesOn = true;
    m_script.m_nAnswer = CORVMessageBox::YesButton;
    run([this] {
        QTest::keyClick(m_pWindow.get(), Qt::Key_W, Qt::ControlModifier);
        EXPECT_EQ(m_pWindow->documents().count(), 1); // not before the end
    });
    EXPECT_EQ(m_script.m_asked, QStringList("An analysis is running. Abort it and close?"));
    EXPECT_TRUE(m_pTool->m_bAborted);
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_pWindow->documents().count() == 0; }, 2000));
    const int nAborted = m_pTool->m_told.indexOf("aborted");
    EXPECT_GE(nAborted, 0);
    EXPECT_GT(m_pTool->m_told.indexOf("removed mouse"), nAborted);
}

TEST_F(RunLockTest, WhoGoesOnKeepsTheRunAndTheSequence)
{
    m_script.m_nAnswer = CORVMessageBox::NoButtonAnswer;
    run([this] { EXPECT_FALSE(m_pWindow->documents().closeCurrent()); });
    EXPECT_EQ(m_script.m_asked.size(), 1);
    EXPECT_FALSE(m_pTool->m_bAborted);
    settle();
    EXPECT_EQ(m_pWindow->documents().count(), 1);
}

TEST_F(RunLockTest, ClosingTheProgramAsksAbortsWaitsAndCloses)
{
    m_bGoesOn = true;
    run([this] {
        EXPECT_FALSE(m_pWindow->close());
        EXPECT_TRUE(m_pWindow->isVisible());
    });
    EXPECT_EQ(m_script.m_asked, QStringList("An analysis is running. Abort it and quit?"));
    EXPECT_TRUE(m_pTool->m_bAborted);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !m_pWindow->isVisible(); }, 2000));
    EXPECT_TRUE(m_pTool->m_told.contains("removed mouse"));
}

TEST_F(RunLockTest, ARunThatEndsDuringTheQuestionIsNotWaitedFor)
{
    m_script.m_whileAsked = [this] { m_pTool->m_bEnd = true; };
    m_bGoesOn = false;
    run([this] { m_pWindow->close(); });
    EXPECT_TRUE(QTest::qWaitFor([&] { return !m_pWindow->isVisible(); }, 2000));
}

TEST_F(RunLockTest, AProcessWithoutALockIsAskedAboutToo)
{
    CORVProcess::startLongProcess(0, LONGPROCESS_LOADING, true, QString());
    m_script.m_nAnswer = CORVMessageBox::NoButtonAnswer;
    EXPECT_FALSE(m_pWindow->close());
    CORVProcess::endLongProcess(LONGPROCESS_LOADING);
    EXPECT_EQ(m_script.m_asked.size(), 1);
    EXPECT_TRUE(m_pWindow->close());
    EXPECT_EQ(m_script.m_asked.size(), 1);
}

TEST_F(RunLockTest, AResultThatIsNotKeptCanHoldTheClosing)
{
    m_pTool->m_askToSave = [] { CORVMessageBox::setCancelClicked(true); };
    EXPECT_FALSE(m_pWindow->documents().closeCurrent());
    EXPECT_FALSE(m_pWindow->close());
    EXPECT_EQ(m_pWindow->documents().count(), 1);
    m_pTool->m_askToSave = nullptr;
    EXPECT_TRUE(m_pWindow->close());
}

TEST_F(RunLockTest, TheToolCanHoldTheProgram)
{
    CORVUtilityFns::setCanClose(false);
    EXPECT_FALSE(m_pWindow->close());
    CORVUtilityFns::setCanClose(true);
    EXPECT_TRUE(m_pWindow->close());
}

TEST_F(RunLockTest, TheTimeSinceTheStartIsShown)
{
    run([this] { EXPECT_EQ(find<QLabel>("progressTime")->text(), "0:00"); });
}

} // namespace
