// SPDX-License-Identifier: GPL-3.0-or-later
// What is found again at the next start.
#include "MainWindowFixture.h"

#include "workbench/application/windowPlaces.h"

#include <QDockWidget>
#include <QGuiApplication>
#include <QMainWindow>
#include <QScreen>

namespace {

class PlacesTest : public MainWindowFixture
{
protected:
    void restart()
    {
        EXPECT_TRUE(m_pWindow->close());
        m_pWindow.reset();
        makeWindow();
    }
};

TEST_F(PlacesTest, WindowAndPanelsAreWhereTheyWere)
{
    makeWindow();
    m_pWindow->setGeometry(10, 20, 786, 540);
    find("logDock")->show();
    m_pWindow->addDockWidget(Qt::LeftDockWidgetArea, find<QDockWidget>("paletteDock"));
    settle();
    restart();
    EXPECT_EQ(m_pWindow->geometry(), QRect(10, 20, 786, 540));
    EXPECT_TRUE(find("logDock")->isVisible());
    EXPECT_EQ(m_pWindow->dockWidgetArea(find<QDockWidget>("paletteDock")), Qt::LeftDockWidgetArea);
}

TEST_F(PlacesTest, PanelsInTabsStaySo)
{
    makeWindow();
    find("logDock")->show();
    m_pWindow->tabifyDockWidget(find<QDockWidget>("paletteDock"), find<QDockWidget>("logDock"));
    settle();
    restart();
    EXPECT_EQ(m_pWindow->tabifiedDockWidgets(find<QDockWidget>("paletteDock")).size(), 1);
}

TEST_F(PlacesTest, AnOptionBeginsAnew)
{
    makeWindow();
    find("logDock")->show();
    m_pWindow->setGeometry(40, 50, 640, 480);
    EXPECT_TRUE(m_pWindow->close());
    m_options.freshPlaces = true;
    makeWindow();
    EXPECT_FALSE(find("logDock")->isVisible());
    EXPECT_NE(m_pWindow->size(), QSize(640, 480));
}

TEST_F(PlacesTest, AWindowOnAScreenThatIsGoneIsBroughtBack)
{
    makeWindow();
    auto* pLog = find<QDockWidget>("logDock");
    pLog->show();
    pLog->setFloating(true);
    pLog->setGeometry(6000, 4000, 400, 300);
    m_pWindow->setGeometry(5000, 3000, 700, 500);
    settle();
    restart();
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_TRUE(screen.contains(m_pWindow->geometry().topLeft())) << m_pWindow->x() << ' ' << m_pWindow->y();
    EXPECT_TRUE(screen.contains(find("logDock")->geometry().topLeft()))
        << find("logDock")->x() << ' ' << find("logDock")->y();
}

TEST_F(PlacesTest, SettingsOfNoUseDoNoHarm)
{
    CORVPreference::getSettings()->setValue("Workbench/Window/Geometry", QByteArray("rubbish"));
    CORVPreference::getSettings()->setValue("Workbench/Window/State", QByteArray("rubbish"));
    makeWindow();
    EXPECT_TRUE(m_pWindow->isVisible());
    EXPECT_TRUE(find("paletteDock")->isVisible());
    EXPECT_GT(m_pWindow->width(), 600 / static_cast<int>(m_pWindow->devicePixelRatioF()));
}

TEST_F(PlacesTest, TheFolderOfTheLastSequenceIsWhereTheNextIsLookedFor)
{
    makeWindow();
    m_pWindow->open(mouse());
    restart();
    EXPECT_EQ(CORVPreference::getSettings()->getRecentFilePath(), QFileInfo(mouse()).path());
}

} // namespace
