// SPDX-License-Identifier: GPL-3.0-or-later
// The window on screens of several sizes and in a dark palette; the pictures are kept to be looked at.
#include "MainWindowFixture.h"

#include "host/CORVLog.h"
#include "workbench/application/PreferencesDialog.h"
#include "workbench/application/SimulateDialog.h"

#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>

namespace {

struct Look
{
    const char* name;
    QSize size;
    bool dark;
};

class ScreensTest : public MainWindowFixture, public ::testing::WithParamInterface<Look>
{
protected:
    void SetUp() override
    {
        MainWindowFixture::SetUp();
        m_before = QApplication::palette();
        if (GetParam().dark) {
            QApplication::setPalette(screen::darkPalette());
        }
    }
    void TearDown() override
    {
        MainWindowFixture::TearDown();
        QApplication::setPalette(m_before);
    }
    // On a screen of that many pixels, whatever their ratio.
    void fill()
    {
        m_pWindow->move(0, 0);
        m_pWindow->resize(GetParam().size / m_pWindow->devicePixelRatioF());
        settle();
        QTest::qWait(300);
    }
    void keep(const char* pWhat) const
    {
        screen::keep(screen::grab(*m_pWindow), (std::string(pWhat) + "_" + GetParam().name).c_str());
    }
    // Every part lies inside the window, and none of the named ones is squeezed below what it asks for.
    void expectFits() const
    {
        EXPECT_LE(m_pWindow->minimumSizeHint().width(), m_pWindow->width());
        EXPECT_LE(m_pWindow->minimumSizeHint().height(), m_pWindow->height());
    }

    QPalette m_before;
};

TEST_P(ScreensTest, FirstPage)
{
    CORVPreference::getSettings()->setValue("Workbench/RecentSequences", QStringList({mouse(), other()}));
    makeWindow();
    fill();
    expectFits();
    keep("first_page");
}

TEST_P(ScreensTest, SequenceWithTheLog)
{
    makeWindowWithTool();
    m_pWindow->open(mouse());
    find("logDock")->show();
    CORVLog::getLogObject()->log("a note of the test", QString(), 0, QString(), CORVLOG_NOTE, false);
    CORVLog::getLogObject()->log("SpumKyvo: unable to get a valid photo mask!", QString(), 0, QString(),
                                 CORVLOG_WARNING, false);
    fill();
    expectFits();
    EXPECT_TRUE(find<QLabel>("statusText")->isVisible());
    keep("sequence_with_log");
}

TEST_P(ScreensTest, Running)
{
    makeWindowWithTool();
    m_pWindow->open(mouse());
    fill();
    int nTurn = 0;
    m_pTool->m_during = [this, &nTurn] {
        if (++nTurn == 60) {
            CORVProcess::setProcessMessage("Calculating concentrations of sequence mouse", 3, 10, nullptr);
            QApplication::processEvents();
            keep("running");
            m_pTool->m_bEnd = true;
        }
    };
    m_pTool->run();
    EXPECT_GE(nTurn, 60);
}

TEST_P(ScreensTest, Dialogs)
{
    makeWindow();
    fill();
    PreferencesDialog preferences(m_pWindow.get());
    preferences.show();
    settle();
    screen::keep(screen::grab(preferences), (std::string("preferences_") + GetParam().name).c_str());
    SimulateDialog simulate(m_folder.path(), "spum", m_pWindow.get());
    simulate.show();
    settle();
    screen::keep(screen::grab(simulate), (std::string("simulate_") + GetParam().name).c_str());
    EXPECT_LE(simulate.width(), m_pWindow->width());
}

INSTANTIATE_TEST_SUITE_P(Sizes, ScreensTest,
                         ::testing::Values(Look{"small", {1024, 700}, false}, Look{"large", {1600, 1200}, false},
                                           Look{"dark", {1280, 900}, true}),
                         [](const auto& test) { return test.param.name; });

} // namespace
