// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/widgets/sendReadOut.h"

#include "windows_on_screen/StatusTips.h"

#include <QDialog>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QStatusBar>
#include <QTabWidget>

#include <gtest/gtest.h>

namespace {

// As deep as a view of an analysis lies.
class SendReadOutTest : public ::testing::Test
{
protected:
    SendReadOutTest()
    {
        m_window.statusBar(); // a window without one shows nothing
        auto* pArea = new QMdiArea(&m_window);
        m_window.setCentralWidget(pArea);
        auto* pTabs = new QTabWidget;
        m_pSubWindow = pArea->addSubWindow(pTabs);
        auto* pPage = new QDialog(&m_window);
        m_pView = new QWidget(pPage);
        pTabs->addTab(pPage, "Auto Unmix");
    }

    QMainWindow m_window;
    QMdiSubWindow* m_pSubWindow;
    QWidget* m_pView;
};

TEST_F(SendReadOutTest, ReachesTheWindowAroundAViewInATab)
{
    StatusTips tips(m_window);
    sendReadOut(*m_pView, "x 3, y 4: 5 counts");
    EXPECT_EQ(tips.m_told, QStringList{"x 3, y 4: 5 counts"});
    EXPECT_EQ(m_window.statusBar()->currentMessage(), "x 3, y 4: 5 counts");
    sendReadOut(*m_pView, QString());
    EXPECT_EQ(tips.last(), "");
    EXPECT_EQ(m_window.statusBar()->currentMessage(), "");
}

TEST_F(SendReadOutTest, IsHeardOnceOnTheWay)
{
    StatusTips tips(*m_pSubWindow);
    sendReadOut(*m_pView, "x 0, y 0");
    EXPECT_EQ(tips.m_told.size(), 1);
}

} // namespace
