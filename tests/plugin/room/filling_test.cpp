// SPDX-License-Identifier: GPL-3.0-or-later
// What goes on around a run on the thread of the user interface, with events let through: the filling of the cube ahead
// of it, and the look for what is to be said against its result.
#include "WorkArea.h"

#include "platform/orvutils/ProcessControl.h"
#include "services/results/keptWarnings.h"

#include "host/CORVUtilityFns.h"

#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <utility>

using namespace workarea;

namespace {

const char* const filling = "Reading the images of sequence [seq-A]";
const char* const looking = "Looking for what is to be said against the result";

class FillingTest : public WorkAreaTest
{
protected:
    FillingTest()
    {
        m_palette->setPatience(0);
        m_nObserver = orv::addProcessObserver([this](const orv::ProcessState& state) {
            if (m_meanwhile && state.m_nRunning > 0 && state.m_strMessage == m_strStage) {
                m_bCouldAbort = state.m_bCanAbort;
                std::exchange(m_meanwhile, nullptr)();
            }
        });
    }
    ~FillingTest() override { orv::removeProcessObserver(m_nObserver); }

    // Called once, when that stage first tells how far it is.
    void during(const char* pStage, const std::function<void()>& meanwhile)
    {
        m_strStage = pStage;
        m_meanwhile = meanwhile;
    }
    bool wasThere() const { return !m_meanwhile; }
    void expectAllBack()
    {
        EXPECT_TRUE(wasThere());
        EXPECT_TRUE(m_palette->isEnabled());
        EXPECT_EQ(processes(), 0);
        EXPECT_EQ(complaints(), "");
    }

    QString m_strStage;
    std::function<void()> m_meanwhile;
    bool m_bCouldAbort = false;
    int m_nObserver = 0;
};

class StageTest : public FillingTest, public ::testing::WithParamInterface<const char*>
{
};

TEST_P(StageTest, NothingButItsAbortIsWithinReach)
{
    open();
    QSignalSpy windows(m_palette.get(), &CORVSpumKyvoPalette::restoreWindows);
    bool bEnabled = true;
    bool bLocked = false;
    during(GetParam(), [&] {
        bEnabled = m_palette->isEnabled();
        bLocked = !windows.isEmpty() && !windows.last().at(0).toBool();
        m_palette->onRunUnmixing();
        m_palette->onRunPCA();
        m_palette->onClickUnmixSpectra();
        m_palette->m_pReportButton->click();
    });
    unmixAutomatically();
    expectAllBack();
    EXPECT_FALSE(bEnabled);
    EXPECT_TRUE(bLocked);
    EXPECT_TRUE(m_bCouldAbort);
    EXPECT_TRUE(m_answers.asked.isEmpty());
    // Each lock is taken back: that of the filling, of the run, and of the look at its result.
    ASSERT_EQ(windows.size(), 6);
    for (int i = 0; i < windows.size(); ++i) {
        EXPECT_EQ(windows.at(i).at(0).toBool(), i % 2 == 1) << i;
    }
    EXPECT_FALSE(resultItems().isEmpty());
    EXPECT_TRUE(m_palette->getSequenceValidity());
}

TEST_P(StageTest, EventsGoOn)
{
    open();
    bool bCame = false;
    bool bCameInTime = false;
    during(GetParam(), [&] {
        QMetaObject::invokeMethod(
            m_palette.get(),
            [&] {
                bCame = true;
                bCameInTime = orv::processState().m_strMessage == m_strStage;
            },
            Qt::QueuedConnection);
    });
    unmixAutomatically();
    expectAllBack();
    EXPECT_TRUE(bCame);
    EXPECT_TRUE(bCameInTime);
}

TEST_P(StageTest, ASequenceThatIsAnnouncedMeanwhileBecomesCurrentAfterwards)
{
    open();
    QString strMeanwhile;
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    during(GetParam(), [&] {
        open(otherPlan());
        strMeanwhile = engine().m_strSeqId;
    });
    unmixAutomatically();
    expectAllBack();
    EXPECT_EQ(strMeanwhile, "seq-A");
    EXPECT_EQ(engine().m_strSeqId, "seq-B");
    EXPECT_TRUE(m_palette->getSequenceValidity());
}

// A host asks first and closes later; whatever it does, nothing is read that has gone.
TEST_P(StageTest, ASequenceThatClosesMeanwhileTakesTheEngineAlong)
{
    auto& opened = open();
    const QPointer<CORVSpumKyvo> pEngine(&engine());
    during(GetParam(), [&] { close(opened); });
    unmixAutomatically();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QTest::qWait(1);
    expectAllBack();
    EXPECT_TRUE(pEngine.isNull());
    EXPECT_EQ(m_palette->engine(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Stages, StageTest, ::testing::Values(filling, looking),
                         [](const auto& stage) { return stage.param == filling ? "Filling" : "Looking"; });

TEST_F(FillingTest, AnAbortOfTheFillingLeavesNoResultAndTheNextRunIsAFreshOne)
{
    auto& opened = open();
    unmixAutomatically();
    const std::vector<double> fresh = concentrations();
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    start("Automatic");
    QSignalSpy cancelled(&engine(), SIGNAL(cancelRun()));
    QSignalSpy ready(&engine(), SIGNAL(readyToRun()));
    during(filling, [] { orv::requestAbort(); });
    run();
    expectAllBack();
    EXPECT_EQ(m_log.count("SpumKyvo: unmixing aborted by user.", 16), 1);
    EXPECT_EQ(cancelled.count(), 1);
    EXPECT_EQ(ready.count(), 0);
    EXPECT_EQ(opened.tabs(), QStringList());
    EXPECT_TRUE(engine().m_cube.m_data.empty());
    EXPECT_FALSE(engine().m_bCubeValid);
    EXPECT_EQ(engine().m_pProgress, nullptr);
    EXPECT_TRUE(m_palette->getSequenceValidity());
    start("Automatic");
    run();
    EXPECT_EQ(concentrations(), fresh);
}

TEST_F(FillingTest, AnAbortComesAheadOfTheQuestionForSpectra)
{
    open();
    QSignalSpy cancelled(&engine(), SIGNAL(cancelRun()));
    bool bAsked = false;
    during(filling, [] { orv::requestAbort(); });
    QTimer::singleShot(200, m_palette.get(), [&bAsked] {
        if (QWidget* pDialog = QApplication::activeModalWidget()) {
            bAsked = true;
            pDialog->close();
        }
    });
    start("Library");
    EXPECT_FALSE(bAsked);
    EXPECT_EQ(cancelled.count(), 1);
    expectAllBack();
}

// Without a run the host has no reason to announce it again.
TEST_F(FillingTest, ASequenceThatIsAnnouncedMeanwhileBecomesCurrentWhereTheMaskEndsTheRoad)
{
    open();
    start("Automatic");
    during(filling, [this] { open(otherPlan()); });
    *wizard().m_pMaskImage = CILImage();
    finishWizard(1);
    EXPECT_TRUE(wasThere());
    EXPECT_TRUE(m_log.has("SpumKyvo: unable to get a valid photo mask!", 2));
    EXPECT_EQ(engine().m_strSeqId, "seq-B");
    EXPECT_TRUE(m_palette->isEnabled());
    EXPECT_TRUE(m_palette->getSequenceValidity());
}

TEST_F(FillingTest, ASequenceThatIsAnnouncedMeanwhileBecomesCurrentAfterTheQuestionThatTheUserBacksOutOf)
{
    open();
    unmixAutomatically();
    engine().m_bCubeValid = false; // as after another choice of images
    m_answers.answer = CORVMessageBox::CancelButton;
    QString strWhenAsked;
    m_answers.whileOpen = [&] { strWhenAsked = strWhenAsked.isEmpty() ? engine().m_strSeqId : strWhenAsked; };
    during(filling, [this] { open(otherPlan()); });
    QSignalSpy ready(&engine(), SIGNAL(readyToRun()));
    finishWizard(1);
    EXPECT_EQ(ready.count(), 1);
    EXPECT_EQ(strWhenAsked, "seq-A") << "the question is about the result that is seen";
    EXPECT_EQ(engine().m_strSeqId, "seq-B");
    expectAllBack();
    EXPECT_TRUE(m_palette->getSequenceValidity());
}

class DrawnTest : public FillingTest, public ::testing::WithParamInterface<const char*>
{
};

TEST_P(DrawnTest, ASequenceThatIsAnnouncedMeanwhileBecomesCurrentAfterwards)
{
    open();
    during(filling, [this] { open(otherPlan()); });
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    start(GetParam());
    expectAllBack();
    EXPECT_EQ(engine().m_strSeqId, "seq-B");
    EXPECT_TRUE(m_palette->getSequenceValidity());
}

TEST_P(DrawnTest, AnAbortOfTheFillingShowsNoConsole)
{
    auto& opened = open();
    QSignalSpy cancelled(&engine(), SIGNAL(cancelRun()));
    during(filling, [] { orv::requestAbort(); });
    start(GetParam());
    EXPECT_EQ(cancelled.count(), 1);
    EXPECT_EQ(opened.tabs(), QStringList());
    expectAllBack(); // and not told as a failure
    start(GetParam());
    EXPECT_EQ(opened.tabs(), QStringList("Unmixing"));
}

INSTANTIATE_TEST_SUITE_P(Modes, DrawnTest, ::testing::Values("Guided", "Manual"),
                         [](const auto& mode) { return std::string(mode.param); });

TEST_F(FillingTest, ABatchKeepsNothingOfASequenceThatWasAbortedInIt)
{
    const QTemporaryDir folder;
    const auto kept = [](const QString& strSequence) {
        QDirIterator entries(strSequence, {"SPUM*"}, QDir::Dirs);
        return entries.hasNext();
    };
    CORVUtilityFns::setSpumBatchStatus(true);
    Plan plan;
    plan.folder = folder.filePath("aborted");
    during(filling, [] { orv::requestAbort(); });
    open(plan);
    expectAllBack();
    EXPECT_FALSE(kept(plan.folder));
    // Otherwise there is its folder, whatever becomes of the run.
    plan.id = "seq-C";
    plan.folder = folder.filePath("whole");
    open(plan);
    EXPECT_TRUE(kept(plan.folder));
    EXPECT_EQ(engine().m_strBatchPath, "");
    EXPECT_FALSE(engine().m_bBatchMode);
}

TEST_F(FillingTest, AnAbortOfTheLookLeavesTheResultWithoutWarnings)
{
    open();
    during(looking, [] { orv::requestAbort(); });
    // Told at its very start, before the thread begins.
    QObject::connect(m_palette.get(), &CORVSpumKyvoPalette::restoreWindows, m_palette.get(),
                     [this, n = 0](bool) mutable {
                         if (++n == 5) {
                             orv::requestAbort();
                         }
                     });
    unmixAutomatically();
    expectAllBack();
    EXPECT_TRUE(m_log.mentions("The look for what is to be said against the result was aborted."));
    EXPECT_TRUE(warningsAmong(engine().m_properties).isEmpty());
    EXPECT_FALSE(concentrations().empty());
    EXPECT_EQ(resultItems().size(), engine().m_properties.size());
    EXPECT_TRUE(m_palette->m_pSaveButton->isEnabled());
}

TEST_F(FillingTest, WhatIsOverSoonShowsNothingOfItself)
{
    m_palette->setPatience(600000);
    open();
    QSignalSpy windows(m_palette.get(), &CORVSpumKyvoPalette::restoreWindows);
    bool bShown = false;
    during(filling, [&bShown] { bShown = true; });
    unmixAutomatically();
    EXPECT_FALSE(bShown);
    EXPECT_EQ(windows.size(), 2) << "the run's alone";
    EXPECT_EQ(complaints(), "");
}

} // namespace
