// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVProcess.h"
#include "platform/orvutils/ProcessControl.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <csignal>
#include <thread>
#include <vector>

namespace {

class ProcessTest : public ::testing::Test
{
protected:
    void SetUp() override { orv::clearAborts(); }
    void TearDown() override
    {
        EXPECT_EQ(orv::processState().m_nRunning, 0);
        orv::clearAborts();
    }
    static void start(tag_eLongProcessTypes eType, bool bCanAbort = true)
    {
        CORVProcess::startLongProcess(0, eType, bCanAbort, "Aborting...");
    }
};

TEST_F(ProcessTest, NothingRunsAtFirst)
{
    for (const auto type : {LONGPROCESS_GENERAL, LONGPROCESS_LOADING, LONGPROCESS_ANALYSIS, LONGPROCESS_ACQUISITION}) {
        EXPECT_FALSE(CORVProcess::isProcessInProgress(type));
    }
    EXPECT_FALSE(CORVProcess::isProcessAborted());
    EXPECT_FALSE(orv::processState().m_bCanAbort);
}

TEST_F(ProcessTest, TypesAreCountedApart)
{
    start(LONGPROCESS_LOADING);
    start(LONGPROCESS_LOADING);
    start(LONGPROCESS_ACQUISITION);
    CORVProcess::endLongProcess(LONGPROCESS_LOADING);
    EXPECT_TRUE(CORVProcess::isProcessInProgress(LONGPROCESS_LOADING));
    CORVProcess::endLongProcess(LONGPROCESS_LOADING);
    EXPECT_FALSE(CORVProcess::isProcessInProgress(LONGPROCESS_LOADING));
    EXPECT_TRUE(CORVProcess::isProcessInProgress(LONGPROCESS_ACQUISITION));
    CORVProcess::endLongProcess(LONGPROCESS_ACQUISITION);
}

TEST_F(ProcessTest, EndOfAnAnalysisEndsARunThatBeganAsGeneral)
{
    start(LONGPROCESS_GENERAL);
    EXPECT_TRUE(CORVProcess::isProcessInProgress(LONGPROCESS_GENERAL));
    CORVProcess::endLongProcess(LONGPROCESS_ANALYSIS);
    EXPECT_FALSE(CORVProcess::isProcessInProgress(LONGPROCESS_GENERAL));
    start(LONGPROCESS_ANALYSIS);
    CORVProcess::endLongProcess(LONGPROCESS_ANALYSIS);
    EXPECT_FALSE(CORVProcess::isProcessInProgress(LONGPROCESS_ANALYSIS));
}

TEST_F(ProcessTest, EndOfAnAnalysisEndsTheLatestOfBothTypes)
{
    start(LONGPROCESS_GENERAL);
    start(LONGPROCESS_ANALYSIS);
    CORVProcess::endLongProcess(LONGPROCESS_ANALYSIS);
    EXPECT_TRUE(CORVProcess::isProcessInProgress(LONGPROCESS_GENERAL));
    EXPECT_FALSE(CORVProcess::isProcessInProgress(LONGPROCESS_ANALYSIS));
    CORVProcess::endLongProcess(LONGPROCESS_ANALYSIS);
}

TEST_F(ProcessTest, EndWithoutAStartEndsNothing)
{
    CORVProcess::endLongProcess(LONGPROCESS_LOADING);
    start(LONGPROCESS_ANALYSIS);
    CORVProcess::endLongProcess(LONGPROCESS_LOADING);
    EXPECT_TRUE(CORVProcess::isProcessInProgress(LONGPROCESS_ANALYSIS));
    CORVProcess::endLongProcess(LONGPROCESS_ANALYSIS);
}

TEST_F(ProcessTest, AbortHoldsUntilTheNextStart)
{
    start(LONGPROCESS_GENERAL);
    orv::requestAbort();
    EXPECT_TRUE(CORVProcess::isProcessAborted());
    CORVProcess::endLongProcess(LONGPROCESS_ANALYSIS);
    EXPECT_TRUE(CORVProcess::isProcessAborted());
    start(LONGPROCESS_GENERAL);
    EXPECT_FALSE(CORVProcess::isProcessAborted());
    CORVProcess::endLongProcess(LONGPROCESS_ANALYSIS);
}

TEST_F(ProcessTest, StartInsideAnotherProcessKeepsTheAbort)
{
    start(LONGPROCESS_GENERAL);
    orv::requestAbort();
    start(LONGPROCESS_LOADING);
    EXPECT_TRUE(CORVProcess::isProcessAborted());
    CORVProcess::endLongProcess(LONGPROCESS_LOADING);
    CORVProcess::endLongProcess(LONGPROCESS_ANALYSIS);
}

TEST_F(ProcessTest, AbortForGoodOutlastsEveryStart)
{
    orv::requestAbortForGood();
    start(LONGPROCESS_GENERAL);
    EXPECT_TRUE(CORVProcess::isProcessAborted());
    orv::clearAborts();
    EXPECT_FALSE(CORVProcess::isProcessAborted());
    CORVProcess::endLongProcess(LONGPROCESS_ANALYSIS);
}

TEST_F(ProcessTest, SignalHandlerMayAskForTheAbort)
{
    start(LONGPROCESS_GENERAL);
    const auto earlier = std::signal(SIGUSR1, [](int) { orv::requestAbort(); });
    std::raise(SIGUSR1);
    std::signal(SIGUSR1, earlier);
    EXPECT_TRUE(CORVProcess::isProcessAborted());
    CORVProcess::endLongProcess(LONGPROCESS_ANALYSIS);
}

TEST_F(ProcessTest, StateIsThatOfTheInnermostProcess)
{
    start(LONGPROCESS_GENERAL, true);
    EXPECT_TRUE(orv::processState().m_bCanAbort);
    EXPECT_EQ(orv::processState().m_strAbortText, "Aborting...");
    start(LONGPROCESS_LOADING, false);
    EXPECT_FALSE(orv::processState().m_bCanAbort);
    EXPECT_EQ(orv::processState().m_nRunning, 2);
    CORVProcess::endLongProcess(LONGPROCESS_LOADING);
    EXPECT_TRUE(orv::processState().m_bCanAbort);
    CORVProcess::endLongProcess(LONGPROCESS_ANALYSIS);
    EXPECT_EQ(orv::processState().m_strAbortText, QString());
}

TEST_F(ProcessTest, MessageCarriesItsStepAndTellsOfAnAbort)
{
    start(LONGPROCESS_LOADING);
    bool aborted = true;
    CORVProcess::setProcessMessage("Loading", 3, 12, &aborted);
    EXPECT_FALSE(aborted);
    EXPECT_EQ(orv::currentMessage(), "Loading");
    EXPECT_EQ(orv::processState().m_nStep, 3);
    EXPECT_EQ(orv::processState().m_nSteps, 12);
    orv::requestAbort();
    CORVProcess::setProcessMessage("Loading", 4, 12, &aborted);
    EXPECT_TRUE(aborted);
    CORVProcess::setProcessMessage("Loading", 5, 12, nullptr);
    CORVProcess::endLongProcess("Loading Failed!", 1000, LONGPROCESS_LOADING);
    EXPECT_EQ(orv::currentMessage(), "Loading Failed!");
    EXPECT_EQ(orv::processState().m_nMilliseconds, 1000);
    EXPECT_EQ(orv::processState().m_nSteps, 0);
}

TEST_F(ProcessTest, ObserverHearsOfEachChangeAndMayAskTheRegistry)
{
    QStringList heard;
    const int observer = orv::addProcessObserver([&heard](const orv::ProcessState& state) {
        EXPECT_EQ(orv::processState().m_nRunning, state.m_nRunning);
        heard.append(QString("%1 %2").arg(state.m_nRunning).arg(state.m_strMessage));
    });
    start(LONGPROCESS_LOADING);
    CORVProcess::setProcessMessage("half", 1, 2, nullptr);
    CORVProcess::endLongProcess("done", 10, LONGPROCESS_LOADING);
    orv::removeProcessObserver(observer);
    start(LONGPROCESS_LOADING);
    CORVProcess::endLongProcess(LONGPROCESS_LOADING);
    EXPECT_EQ(heard, QStringList({"1 ", "1 half", "0 done"}));
}

TEST_F(ProcessTest, ThreadsMayStartAndEndAtOnce)
{
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([] {
            for (int i = 0; i < 500; ++i) {
                start(LONGPROCESS_LOADING);
                EXPECT_TRUE(CORVProcess::isProcessInProgress(LONGPROCESS_LOADING));
                CORVProcess::setProcessMessage("x", i, 500, nullptr);
                CORVProcess::endLongProcess(LONGPROCESS_LOADING);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_FALSE(CORVProcess::isProcessInProgress(LONGPROCESS_LOADING));
}

} // namespace
