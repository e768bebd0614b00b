// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVDataset.h"
#include "host/CORVImageWindow.h"
#include "host/CORVMdiSubWindow.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSequenceWindow.h"

#include <QDialog>
#include <QMainWindow>
#include <QMdiArea>
#include <QPointer>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

class WindowsTest : public ::testing::Test
{
protected:
    WindowsTest()
    {
        m_sequence.setSequenceID("S1");
        m_sequence.setSequenceName("mouse");
        m_main.setCentralWidget(&m_area);
        CORVChildWindow::setMainWindow(&m_main);
        m_main.show();
    }
    ~WindowsTest() override
    {
        CORVChildWindow::setMainWindow(nullptr);
        m_main.takeCentralWidget();
    }

    // In a frame of its own, which is made current.
    CORVSequenceWindow* open(CORVSequenceDataset* pSequence)
    {
        auto* pWindow = new CORVSequenceWindow(pSequence);
        m_pFrame = new CORVMdiSubWindow;
        m_pFrame->setWidget(pWindow);
        m_pFrame->setAttribute(Qt::WA_DeleteOnClose);
        m_area.addSubWindow(m_pFrame);
        m_pFrame->showWindow();
        return pWindow;
    }

    void addTab(CORVSequenceWindow* pWindow, QWidget* pWidget, const char* pTitle, bool bActivate = true,
                QWidget* pToolBar = nullptr, int nIndex = -1)
    {
        pWindow->addTabWidget(pWidget, pToolBar, nullptr, QIcon(), QString::fromLatin1(pTitle), nIndex, bActivate);
    }

    QMainWindow m_main;
    QMdiArea m_area;
    CORVSequenceDataset m_sequence;
    QPointer<CORVMdiSubWindow> m_pFrame;
};

TEST_F(WindowsTest, TheActiveChildIsThatOfTheCurrentFrame)
{
    EXPECT_EQ(CORVChildWindow::getActiveChildWnd(), &m_main);
    CORVSequenceWindow* pFirst = open(&m_sequence);
    EXPECT_EQ(CORVChildWindow::getActiveChildWnd(), pFirst);
    EXPECT_EQ(CORVSequenceWindow::activeSequence(), &m_sequence);
    CORVMdiSubWindow* pFrame = m_pFrame;
    CORVSequenceDataset other;
    CORVSequenceWindow* pSecond = open(&other);
    EXPECT_EQ(CORVChildWindow::getActiveChildWnd(), pSecond);
    pFrame->showWindow();
    EXPECT_EQ(CORVChildWindow::getActiveChildWnd(), pFirst);
    m_area.closeAllSubWindows();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(CORVChildWindow::getActiveChildWnd(), &m_main);
    EXPECT_EQ(CORVSequenceWindow::activeSequence(), nullptr);
}

TEST_F(WindowsTest, WithoutAMainWindowNoChildIsActive)
{
    CORVChildWindow::setMainWindow(nullptr);
    EXPECT_EQ(CORVChildWindow::getActiveChildWnd(), nullptr);
    auto* pGone = new QWidget;
    CORVChildWindow::setMainWindow(pGone);
    delete pGone;
    EXPECT_EQ(CORVChildWindow::getActiveChildWnd(), nullptr);
}

TEST_F(WindowsTest, AHiddenFrameIsNotActiveAndComesBackToTheFront)
{
    CORVSequenceWindow* pWindow = open(&m_sequence);
    QTimer::singleShot(0, m_pFrame, SLOT(hideWindow()));
    QTest::qWait(20);
    EXPECT_TRUE(m_pFrame->isHidden());
    EXPECT_EQ(CORVChildWindow::getActiveChildWnd(), &m_main);
    m_pFrame->showWindow();
    EXPECT_TRUE(m_pFrame->isVisible());
    EXPECT_EQ(CORVChildWindow::getActiveChildWnd(), pWindow);
}

TEST_F(WindowsTest, AMinimisedFrameIsRestored)
{
    open(&m_sequence);
    m_pFrame->showMinimized();
    ASSERT_TRUE(m_pFrame->isMinimized());
    m_pFrame->showWindow();
    EXPECT_FALSE(m_pFrame->isMinimized());
    EXPECT_TRUE(m_pFrame->isVisible());
}

TEST_F(WindowsTest, ASequenceFindsItsWindowAsLongAsThereIsOne)
{
    EXPECT_EQ(CORVSequenceWindow::getSequenceWindow(&m_sequence), nullptr);
    EXPECT_EQ(CORVSequenceWindow::getSequenceWindow(nullptr), nullptr);
    auto* pWindow = new CORVSequenceWindow(&m_sequence);
    EXPECT_EQ(pWindow->windowTitle(), "mouse");
    EXPECT_EQ(CORVSequenceWindow::getSequenceWindow(&m_sequence), pWindow);
    delete pWindow;
    EXPECT_EQ(CORVSequenceWindow::getSequenceWindow(&m_sequence), nullptr);
}

TEST_F(WindowsTest, TabsAreFoundWithoutRegardToCaseAndTellTheirTitleAsGiven)
{
    CORVSequenceWindow window(&m_sequence);
    EXPECT_EQ(window.getCurrentTabName(), "");
    QDialog console;
    addTab(&window, &console, "Unmixing & more");
    EXPECT_TRUE(window.isTabPresent("UNMIXING & MORE"));
    EXPECT_FALSE(window.isTabPresent("Unmixing"));
    EXPECT_EQ(window.getCurrentTabName(), "Unmixing & more");
    EXPECT_EQ(window.tabWidget()->tabText(0), "Unmixing && more");
}

TEST_F(WindowsTest, ATabIsActivatedWhenAskedFor)
{
    CORVSequenceWindow window(&m_sequence);
    QDialog first;
    QDialog second;
    QDialog third;
    QSignalSpy told(&window, SIGNAL(updatePluginPalette(QString)));
    addTab(&window, &first, "First");
    addTab(&window, &second, "Second", false);
    EXPECT_EQ(window.getCurrentTabName(), "First");
    addTab(&window, &third, "Third", true);
    EXPECT_EQ(window.getCurrentTabName(), "Third");
    window.setActiveTab("SECOND");
    EXPECT_EQ(window.getCurrentTabName(), "Second");
    window.setActiveTab("nobody");
    EXPECT_EQ(window.getCurrentTabName(), "Second");
    ASSERT_EQ(told.size(), 3);
    EXPECT_EQ(told[0][0], "First");
    EXPECT_EQ(told[1][0], "Third");
    EXPECT_EQ(told[2][0], "Second");
}

TEST_F(WindowsTest, ATabGoesToItsPlaceOrTheEnd)
{
    CORVSequenceWindow window(&m_sequence);
    QDialog tabs[4];
    QSignalSpy told(&window, SIGNAL(updatePluginPalette(QString)));
    addTab(&window, &tabs[0], "a");
    addTab(&window, &tabs[1], "b", false, nullptr, -1);
    addTab(&window, &tabs[2], "c", false, nullptr, 0);
    addTab(&window, &tabs[3], "d", false, nullptr, 99);
    QString order;
    for (int i = 0; i < window.tabWidget()->count(); ++i) {
        order += window.tabWidget()->tabText(i);
    }
    EXPECT_EQ(order, "cabd");
    // The current one has only another place now.
    EXPECT_EQ(window.getCurrentTabName(), "a");
    EXPECT_EQ(told.size(), 1);
}

TEST_F(WindowsTest, ASecondAddOfATitleActivatesTheTabThatIsThere)
{
    CORVSequenceWindow window(&m_sequence);
    window.show();
    QDialog first;
    QDialog second;
    QDialog another;
    addTab(&window, &first, "Unmixing");
    addTab(&window, &second, "Composite");
    addTab(&window, &another, "UNMIXING");
    EXPECT_EQ(window.tabWidget()->count(), 2);
    EXPECT_EQ(window.tabWidget()->currentWidget(), &first);
    EXPECT_FALSE(window.isAncestorOf(&another));
}

TEST_F(WindowsTest, ADialogThatWasDoneIsShownAgain)
{
    CORVSequenceWindow window(&m_sequence);
    window.show();
    QDialog dialog;
    addTab(&window, &dialog, "Auto Unmix");
    EXPECT_TRUE(dialog.isVisible());
    dialog.done(1);
    EXPECT_FALSE(dialog.isVisible());
    addTab(&window, &dialog, "Auto Unmix");
    EXPECT_TRUE(dialog.isVisible());
    dialog.done(0);
    window.removeTabWidget("Auto Unmix");
    addTab(&window, &dialog, "Auto Unmix");
    EXPECT_TRUE(dialog.isVisible());
}

TEST_F(WindowsTest, ARemovedTabHandsItsWidgetOut)
{
    CORVSequenceWindow* pWindow = open(&m_sequence);
    auto* pConsole = new QDialog(pWindow);
    addTab(pWindow, pConsole, "Unmixing");
    EXPECT_TRUE(pWindow->isAncestorOf(pConsole));
    pWindow->removeTabWidget("nobody");
    EXPECT_TRUE(pWindow->isTabPresent("Unmixing"));
    QSignalSpy told(pWindow, SIGNAL(updatePluginPalette(QString)));
    pWindow->removeTabWidget("unmixing");
    EXPECT_FALSE(pWindow->isTabPresent("Unmixing"));
    EXPECT_EQ(pConsole->parentWidget(), &m_main);
    EXPECT_TRUE(pConsole->isHidden());
    ASSERT_EQ(told.size(), 1);
    EXPECT_EQ(told[0][0], "");
}

TEST_F(WindowsTest, AToolbarShowsWhileItsTabIsCurrentAndGoesBackToItsParent)
{
    CORVSequenceWindow window(&m_sequence);
    window.show();
    QDialog console;
    auto* pToolBar = new QFrame(&console);
    pToolBar->setObjectName("ConsoleToolbar");
    auto* pButton = new QWidget(pToolBar);
    QDialog other;
    addTab(&window, &console, "Unmixing", true, pToolBar);
    EXPECT_TRUE(pToolBar->isVisible());
    EXPECT_FALSE(console.isAncestorOf(pToolBar));
    EXPECT_EQ(pButton->parentWidget()->objectName(), "ConsoleToolbar");
    addTab(&window, &other, "Composite");
    EXPECT_FALSE(pToolBar->isVisible());
    window.setActiveTab("Unmixing");
    EXPECT_TRUE(pToolBar->isVisible());
    window.removeTabWidget("Unmixing");
    EXPECT_EQ(pToolBar->parentWidget(), &console);
    EXPECT_TRUE(pToolBar->isHidden());
}

TEST_F(WindowsTest, AWidgetThatDiesTakesItsTabAndToolbarAlong)
{
    CORVSequenceWindow window(&m_sequence);
    auto* pConsole = new QDialog;
    QPointer<QFrame> pToolBar(new QFrame(pConsole));
    addTab(&window, pConsole, "Unmixing", true, pToolBar);
    delete pConsole;
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(window.isTabPresent("Unmixing"));
    EXPECT_EQ(window.tabWidget()->count(), 0);
    EXPECT_TRUE(pToolBar.isNull());
    QDialog again;
    addTab(&window, &again, "Unmixing");
    EXPECT_EQ(window.tabWidget()->currentWidget(), &again);
}

TEST_F(WindowsTest, ClosingTakesEveryForeignWidgetOutFirst)
{
    CORVSequenceWindow* pWindow = open(&m_sequence);
    const QPointer<CORVSequenceWindow> pGone(pWindow);
    QPointer<QDialog> pConsole(new QDialog(pWindow));
    QPointer<QFrame> pToolBar(new QFrame(pConsole));
    QPointer<QDialog> pComposite(new QDialog(pWindow)); // not in a tab
    QPointer<QWidget> pOwn(new QWidget(pWindow));
    addTab(pWindow, pOwn, "Sequence View");
    addTab(pWindow, pConsole, "Unmixing", true, pToolBar);
    QSignalSpy told(pWindow, SIGNAL(updatePluginPalette(QString)));
    m_pFrame->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(pGone.isNull());
    EXPECT_TRUE(pOwn.isNull());
    ASSERT_FALSE(pConsole.isNull());
    ASSERT_FALSE(pComposite.isNull());
    ASSERT_FALSE(pToolBar.isNull());
    EXPECT_EQ(pConsole->parentWidget(), &m_main);
    EXPECT_EQ(pComposite->parentWidget(), &m_main);
    EXPECT_EQ(pToolBar->parentWidget(), pConsole);
    EXPECT_FALSE(pConsole->isVisible());
    EXPECT_FALSE(pComposite->isVisible());
    EXPECT_EQ(told.size(), 0);
    delete pConsole;
    delete pComposite;
}

TEST_F(WindowsTest, DeletingTakesForeignWidgetsOutAsWell)
{
    CORVChildWindow::setMainWindow(nullptr);
    auto* pWindow = new CORVSequenceWindow(&m_sequence);
    QPointer<QDialog> pConsole(new QDialog(pWindow));
    QPointer<QDialog> pOther(new QDialog(pWindow));
    addTab(pWindow, pConsole, "Unmixing");
    delete pWindow;
    ASSERT_FALSE(pConsole.isNull());
    ASSERT_FALSE(pOther.isNull());
    EXPECT_EQ(pConsole->parentWidget(), nullptr);
    EXPECT_EQ(pOther->parentWidget(), nullptr);
    delete pConsole;
    delete pOther;
}

TEST_F(WindowsTest, AWidgetThatIsTakenOutCanBeATabAgain)
{
    QDialog console;
    for (int i = 0; i < 30; ++i) {
        CORVSequenceWindow window(&m_sequence);
        window.show();
        addTab(&window, &console, "Unmixing");
        ASSERT_TRUE(console.isVisible());
        if (i % 2 == 0) {
            window.removeTabWidget("Unmixing");
        }
    }
    EXPECT_EQ(console.parentWidget(), &m_main);
    console.setParent(nullptr);
}

TEST_F(WindowsTest, AWindowThatStaysOpenKeepsItsTabs)
{
    class Staying : public CORVSequenceWindow
    {
    public:
        using CORVSequenceWindow::CORVSequenceWindow;

    protected:
        bool event(QEvent* pEvent) override
        {
            if (pEvent->type() == QEvent::Close) {
                pEvent->ignore();
                return true;
            }
            return CORVSequenceWindow::event(pEvent);
        }
    };
    Staying window(&m_sequence);
    window.show();
    QDialog console;
    addTab(&window, &console, "Unmixing");
    EXPECT_FALSE(window.close());
    EXPECT_TRUE(window.isTabPresent("Unmixing"));
}

TEST_F(WindowsTest, ASequenceWithoutAFolderHasNoHome)
{
    CORVSequenceWindow window(&m_sequence);
    EXPECT_NE(window.giveSequenceHome(), 0);
}

TEST_F(WindowsTest, TheAdaptiveBackgroundShowsTheImagesAnew)
{
    class Counting : public CORVSequenceWindow
    {
    public:
        using CORVSequenceWindow::CORVSequenceWindow;
        void refreshView() override { ++m_nRefreshed; }
        int m_nRefreshed = 0;
    };
    Counting window(&m_sequence);
    window.setAdaptiveBackground(true);
    EXPECT_TRUE(window.adaptiveBackground());
    EXPECT_EQ(window.m_nRefreshed, 1);
}

TEST_F(WindowsTest, ADatasetFindsItsImageWindow)
{
    CORVDataset dataset;
    EXPECT_EQ(CORVImageWindow::getImageWindow(&dataset), nullptr);
    EXPECT_EQ(CORVImageWindow::getImageWindow(nullptr), nullptr);
    {
        CORVImageWindow window(&dataset);
        EXPECT_EQ(CORVImageWindow::getImageWindow(&dataset), &window);
        EXPECT_EQ(window.dataset(), &dataset);
    }
    EXPECT_EQ(CORVImageWindow::getImageWindow(&dataset), nullptr);
}

TEST_F(WindowsTest, AnImageWindowTellsWhereItsThumbnailIsToBeMadeFrom)
{
    CORVDataset dataset;
    CORVImageWindow window(&dataset);
    QSignalSpy told(&window, SIGNAL(thumbnailChanged(QString)));
    window.updateThumnailViewForSpumBatchProcessing("/data/batch/map_1/");
    EXPECT_EQ(window.windowFilePath(), "/data/batch/map_1/");
    ASSERT_EQ(told.size(), 1);
    EXPECT_EQ(told[0][0], "/data/batch/map_1/");
}

} // namespace
