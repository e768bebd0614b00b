// SPDX-License-Identifier: GPL-3.0-or-later
// The sequences that are open again at the next start, however the program has ended.
#include "MainWindowFixture.h"

#include "host/CORVMdiSubWindow.h"
#include "host/CORVMessageBox.h"
#include "host/CORVSequenceWindow.h"
#include "workbench/application/Session.h"

#include <QDir>
#include <QDockWidget>
#include <QProcess>

namespace {

using Windows = Session::Windows;

QStringList records()
{
    const QFileInfo settings(CORVPreference::getSettings()->fileName());
    return settings.dir().entryList({QStringLiteral("session-*")}, QDir::Files);
}

class SessionTest : public MainWindowFixture
{
protected:
    static CORVSettings& settings() { return *CORVPreference::getSettings(); }

    const Windows m_two = {{"/data/a", QRect(3, 4, 300, 200)}, {"/data/b", QRect()}};
};

TEST_F(SessionTest, WhatWasOpenAtTheEndIsTakenUpOnce)
{
    {
        Session session(settings());
        session.keep(m_two);
        session.close(m_two);
    }
    Session next(settings());
    EXPECT_TRUE(next.takeAbandoned().isEmpty());
    EXPECT_EQ(next.takeLast(), m_two);
    EXPECT_TRUE(next.takeLast().isEmpty());
}

TEST_F(SessionTest, WhatAKilledProgramHadOpenIsTakenUpOnce)
{
    {
        Session session(settings());
        session.keep({{"/data/c", QRect()}});
        session.keep(m_two);
    }
    Session next(settings());
    EXPECT_TRUE(next.takeLast().isEmpty());
    EXPECT_EQ(next.takeAbandoned(), m_two);
    EXPECT_TRUE(next.takeAbandoned().isEmpty());
    EXPECT_EQ(records().size(), 1); // its own
}

TEST_F(SessionTest, AProgramThatLivesKeepsItsSession)
{
    Session living(settings());
    living.keep(m_two);
    Session next(settings());
    EXPECT_TRUE(next.takeAbandoned().isEmpty());
    living.close(m_two);
    EXPECT_EQ(next.takeLast(), m_two);
}

TEST_F(SessionTest, NothingOpenLeavesNothingBehind)
{
    {
        Session session(settings());
        session.keep(m_two);
        session.keep({});
    }
    EXPECT_TRUE(Session(settings()).takeAbandoned().isEmpty());
    EXPECT_TRUE(records().isEmpty());
}

class SessionOfTheWindowTest : public SessionTest
{
protected:
    QStringList openNames() const
    {
        QStringList names;
        for (const CORVSequenceDataset* pSequence : m_pWindow->documents().sequences()) {
            names << pSequence->getSequenceName();
        }
        return names;
    }
    void start(const QStringList& paths = {})
    {
        m_script.m_asked.clear();
        makeWindow();
        m_pWindow->start(paths);
        for (int i = 0; i < 6; ++i) {
            settle();
        }
    }
    CORVMdiSubWindow* frameInFront() const
    {
        return qobject_cast<CORVMdiSubWindow*>(m_pWindow->documents().currentSequenceWindow()->parentWidget());
    }
};

TEST_F(SessionOfTheWindowTest, WhatWasOpenIsOpenAgainTheOneInFrontInFront)
{
    start({mouse(), other()});
    m_pWindow->open(mouse());
    EXPECT_TRUE(m_pWindow->close());
    m_pWindow.reset();
    start();
    EXPECT_EQ(openNames(), QStringList({"other", "mouse"}));
    EXPECT_EQ(m_pWindow->documents().currentSequence()->getSequenceName(), "mouse");
    EXPECT_TRUE(frameInFront()->isMaximized());
    EXPECT_TRUE(m_script.m_asked.isEmpty());
}

TEST_F(SessionOfTheWindowTest, WindowsAreWhereTheyWere)
{
    start({mouse()});
    const QRect place(20, 30, 420, 330);
    frameInFront()->showNormal();
    frameInFront()->setGeometry(place);
    EXPECT_TRUE(m_pWindow->close());
    m_pWindow.reset();
    start();
    ASSERT_EQ(openNames(), QStringList("mouse"));
    EXPECT_FALSE(frameInFront()->isMaximized());
    EXPECT_EQ(frameInFront()->geometry(), place);
}

TEST_F(SessionOfTheWindowTest, ASequenceThatIsGoneIsToldOnce)
{
    const QString gone = m_folder.filePath("gone");
    Session(settings()).close({{gone, QRect()}, {mouse(), QRect()}});
    start();
    EXPECT_EQ(openNames(), QStringList("mouse"));
    ASSERT_EQ(m_script.m_asked.size(), 1);
    EXPECT_TRUE(m_script.m_asked.first().endsWith(gone)) << qPrintable(m_script.m_asked.first());
    EXPECT_TRUE(m_pWindow->close());
    m_pWindow.reset();
    start();
    EXPECT_EQ(openNames(), QStringList("mouse"));
    EXPECT_TRUE(m_script.m_asked.isEmpty());
}

TEST_F(SessionOfTheWindowTest, OthersThatWereNamedOpenInItsPlace)
{
    Session(settings()).close({{mouse(), QRect()}});
    start({other()});
    EXPECT_EQ(openNames(), QStringList("other"));
    EXPECT_TRUE(m_script.m_asked.isEmpty());
}

// The program itself, killed.
class KilledProgramTest : public SessionOfTheWindowTest
{
protected:
    void SetUp() override
    {
        SessionOfTheWindowTest::SetUp();
        QProcess program;
        program.start(QStringLiteral(ORV_BINARY_DIR "/bin/spum-workbench"), {mouse(), other()});
        const auto isKept = [] {
            settings().sync();
            const auto keys = settings().allKeys().filter(QStringLiteral("/OpenSequences"));
            return keys.size() == 1 && settings().value(keys.first()).toStringList() == QStringList({mouse(), other()});
        };
        // Both are kept from the start, as they wait to be opened; this is the time in which they open.
        EXPECT_TRUE(QTest::qWaitFor(isKept, 30000));
        program.kill();
        EXPECT_TRUE(program.waitForFinished());
        EXPECT_EQ(program.exitStatus(), QProcess::CrashExit);
    }
};

TEST_F(KilledProgramTest, TheNextStartOffersWhatWasOpen)
{
    m_script.m_nAnswer = CORVMessageBox::YesButton;
    start();
    ASSERT_EQ(m_script.m_asked.size(), 1);
    EXPECT_TRUE(m_script.m_asked.first().contains(mouse()));
    EXPECT_TRUE(m_script.m_asked.first().contains(other()));
    EXPECT_EQ(openNames(), QStringList({"mouse", "other"}));
}

TEST_F(KilledProgramTest, WhoDoesNotWantItIsNotAskedAgain)
{
    m_script.m_nAnswer = CORVMessageBox::NoButtonAnswer;
    start();
    EXPECT_EQ(m_script.m_asked.size(), 1);
    EXPECT_TRUE(openNames().isEmpty());
    EXPECT_TRUE(m_pWindow->close());
    m_pWindow.reset();
    start();
    EXPECT_TRUE(m_script.m_asked.isEmpty());
}

TEST_F(KilledProgramTest, WhatIsNamedOpensBesides)
{
    m_script.m_nAnswer = CORVMessageBox::YesButton;
    start({other()});
    EXPECT_EQ(m_script.m_asked.size(), 1);
    EXPECT_EQ(openNames(), QStringList({"other", "mouse"}));
}

TEST_F(KilledProgramTest, WhatIsOpenByNowIsNotAskedAbout)
{
    m_script.m_nAnswer = CORVMessageBox::NoButtonAnswer;
    start({other()});
    ASSERT_EQ(m_script.m_asked.size(), 1);
    EXPECT_FALSE(m_script.m_asked.first().contains(other()));
    m_pWindow->close();
    m_pWindow.reset();
}

TEST_F(KilledProgramTest, WhereAllIsOpenByNowNothingIsAsked)
{
    start({mouse(), other()});
    EXPECT_TRUE(m_script.m_asked.isEmpty());
    EXPECT_EQ(openNames(), QStringList({"mouse", "other"}));
}

TEST_F(KilledProgramTest, WhoIsKilledAtTheQuestionIsAskedAgain)
{
    Windows meanwhile;
    m_script.m_whileAsked = [&meanwhile] {
        for (const QString& key : settings().allKeys().filter(QStringLiteral("/OpenSequences"))) {
            meanwhile.append({settings().value(key).toStringList().join(' '), QRect()});
        }
    };
    start();
    ASSERT_EQ(meanwhile.size(), 1);
    EXPECT_EQ(meanwhile.first().folder, mouse() + ' ' + other());
}

class SessionEndTest : public SessionOfTheWindowTest
{
protected:
    void SetUp() override
    {
        SessionOfTheWindowTest::SetUp();
        makeWindowWithTool();
        m_pWindow->open(mouse());
    }
};

TEST_F(SessionEndTest, AResultIsAskedFor)
{
    int nAsked = 0;
    m_pTool->m_askToSave = [&nAsked] { ++nAsked; };
    EXPECT_TRUE(m_pWindow->endSession(true));
    EXPECT_EQ(nAsked, 1);
    EXPECT_FALSE(m_pWindow->isVisible());
    EXPECT_EQ(Session(settings()).takeLast().size(), 1);
}

TEST_F(SessionEndTest, WhoGoesBackKeepsTheSession)
{
    m_pTool->m_askToSave = [] { CORVMessageBox::setCancelClicked(true); };
    EXPECT_FALSE(m_pWindow->endSession(true));
    EXPECT_TRUE(m_pWindow->isVisible());
    EXPECT_EQ(m_pWindow->documents().count(), 1);
}

TEST_F(SessionEndTest, WhereNobodyMayBeAskedNothingClosesAndAllIsOfferedAgain)
{
    int nAsked = 0;
    m_pTool->m_askToSave = [&nAsked] { ++nAsked; };
    EXPECT_TRUE(m_pWindow->endSession(false));
    EXPECT_EQ(nAsked, 0);
    EXPECT_EQ(m_pWindow->documents().count(), 1);
    m_pWindow.reset(); // the system ends the program
    EXPECT_EQ(Session(settings()).takeAbandoned().size(), 1);
}

TEST_F(SessionEndTest, AFloatingPanelIsThereAgain)
{
    find<QDockWidget>("logDock")->show();
    find<QDockWidget>("logDock")->setFloating(true);
    settle();
    EXPECT_FALSE(QGuiApplication::isFallbackSessionManagementEnabled());
    EXPECT_TRUE(m_pWindow->endSession(true));
    m_pWindow.reset();
    makeWindow();
    EXPECT_TRUE(find("logDock")->isVisible());
}

} // namespace
