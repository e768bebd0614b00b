// SPDX-License-Identifier: GPL-3.0-or-later
// The ways to leave a result that nobody has saved: each asks the tool, once, while all is still there, and whoever
// goes back finds everything open.
#include "MainWindowFixture.h"

#include "host/CORVLog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVSequenceWindow.h"

namespace {

struct Way
{
    const char* name;
    void (*leave)(MainWindow& window);
    int sequences; // that go
};

void PrintTo(const Way& way, std::ostream* pStream)
{
    *pStream << way.name;
}

void press(MainWindow& window, int nKey, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(&window, static_cast<Qt::Key>(nKey), modifiers);
}

void closeFrame(MainWindow& window)
{
    CORVSequenceWindow::getSequenceWindow(window.documents().sequences().last())->parentWidget()->close();
}

void closeByItself(MainWindow& window)
{
    CORVSequenceWindow::getSequenceWindow(window.documents().sequences().last())->close();
}

class LeavingTest : public MainWindowFixture, public ::testing::WithParamInterface<Way>
{
protected:
    // Two sequences, the result is the second one's, and one of its maps is in front or not.
    void open(bool bMapInFront)
    {
        makeWindowWithTool();
        m_pWindow->open(mouse());
        m_pWindow->open(other());
        m_pTool->m_askToSave = [this] {
            ++m_nAsked;
            m_nOpenWhenAsked = m_pWindow->documents().sequences().size();
            CORVMessageBox::setCancelClicked(m_bGoesBack);
            if (m_bFails) {
                CORVLog::getLogObject()->log("Failed to create the folder.", QString(), 0, QString(), CORVLOG_ERROR,
                                             false);
            }
        };
        if (bMapInFront) {
            ESTATUS status = ESTATUS_FAILURE;
            const QString folder = m_pWindow->documents().sequences().last()->getDatasets().first()->folderPath();
            Q_EMIT m_pTool->signalLoadFile(folder + "ClickInfo.txt", true, &status, nullptr);
            EXPECT_EQ(status, ESTATUS_SUCCESS);
        }
        m_pTool->m_told.clear();
    }
    void leave()
    {
        GetParam().leave(*m_pWindow);
        settle();
    }
    int removed() const
    {
        return m_pTool->m_told.filter("removed o").size() + m_pTool->m_told.filter("removed m").size();
    }

    bool m_bGoesBack = false;
    bool m_bFails = false; // to save it
    int m_nAsked = 0;
    int m_nOpenWhenAsked = 0;
};

TEST_P(LeavingTest, TheToolIsAskedOnceWhileAllIsThere)
{
    open(false);
    leave();
    EXPECT_EQ(m_nAsked, 1);
    EXPECT_EQ(m_nOpenWhenAsked, 2);
    EXPECT_EQ(removed(), GetParam().sequences);
    EXPECT_LT(m_pTool->m_told.indexOf("ask"), m_pTool->m_told.indexOf("removed other"));
}

TEST_P(LeavingTest, WhoGoesBackFindsEverythingOpen)
{
    open(false);
    m_bGoesBack = true;
    leave();
    EXPECT_EQ(m_nAsked, 1);
    EXPECT_EQ(removed(), 0);
    EXPECT_EQ(m_pWindow->documents().count(), 2);
    EXPECT_TRUE(m_pWindow->isVisible());
    EXPECT_EQ(m_pWindow->documents().currentSequence()->getSequenceName(), "other");
    // The answer holds for this once.
    m_bGoesBack = false;
    leave();
    EXPECT_EQ(m_nAsked, 2);
    EXPECT_EQ(removed(), GetParam().sequences);
}

TEST_P(LeavingTest, AMapInFrontDoesNotHideTheQuestion)
{
    open(true);
    m_bGoesBack = true;
    leave();
    leave(); // the map first, where windows close one by one
    EXPECT_GE(m_nAsked, 1);
    EXPECT_EQ(removed(), 0);
    EXPECT_EQ(m_pWindow->documents().sequences().size(), 2);
}

TEST_P(LeavingTest, AResultThatCouldNotBeSavedIsNotLostInSilence)
{
    open(false);
    m_bFails = true;
    m_script.m_nAnswer = CORVMessageBox::NoButtonAnswer;
    leave();
    EXPECT_EQ(m_script.m_asked, QStringList("The result was not saved: Failed to create the folder.\n\n"
                                            "Close the sequence all the same?"));
    EXPECT_EQ(removed(), 0);
    EXPECT_EQ(m_pWindow->documents().count(), 2);
    m_script.m_nAnswer = CORVMessageBox::YesButton;
    leave();
    EXPECT_EQ(removed(), GetParam().sequences);
}

INSTANTIATE_TEST_SUITE_P(
    Ways, LeavingTest,
    ::testing::Values(Way{"close", [](MainWindow& w) { press(w, Qt::Key_W, Qt::ControlModifier); }, 1},
                      Way{"frame", closeFrame, 1}, Way{"window by itself", closeByItself, 1},
                      Way{"close all",
                          [](MainWindow& w) { press(w, Qt::Key_W, Qt::ControlModifier | Qt::ShiftModifier); }, 2},
                      Way{"quit", [](MainWindow& w) { press(w, Qt::Key_Q, Qt::ControlModifier); }, 2},
                      Way{"title bar", [](MainWindow& w) { w.close(); }, 2},
                      Way{"all windows", [](MainWindow&) { QApplication::closeAllWindows(); }, 2},
                      Way{"end of the system's session", [](MainWindow& w) { w.endSession(true); }, 2}));

} // namespace
