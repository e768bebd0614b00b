// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/runEngine.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/LogCapture.h"
#include "engine/TestSequence.h"

#include "XTNT/xtnt_parallel.h"
#include "host/CAutoProgressUpdate.h"
#include "host/CORVProcess.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvutils/ProcessControl.h"

#include <QTimer>

#include <gtest/gtest.h>

#include <atomic>

namespace {

// An engine whose worker does what the test says.
class ScriptedEngine : public CORVSpumKyvo
{
public:
    ScriptedEngine() : CORVSpumKyvo("seq %1 7") {}
    void run() override
    {
        setTerminationEnabled(false);
        m_work(*this);
    }
    void abortRun() override
    {
        ++m_nAborts;
        CORVSpumKyvo::abortRun();
    }

    std::function<void(CORVSpumKyvo&)> m_work;
    int m_nAborts = 0;
};

// Works on until it is ended.
void workForever(CORVSpumKyvo&)
{
    while (true) {
        QThread::msleep(1);
        XTNT::cancellationPoint();
    }
}

class RunEngineTest : public ::testing::Test
{
protected:
    RunEngineTest()
    {
        m_steps.started = [this] {
            m_order << "started";
            EXPECT_FALSE(m_engine.isRunning());
            EXPECT_EQ(m_engine.m_pProgress, nullptr);
            EXPECT_EQ(CORVProcess::isProcessInProgress(LONGPROCESS_ANALYSIS), m_engine.m_bRunPCA);
            EXPECT_EQ(CORVProcess::isProcessInProgress(LONGPROCESS_GENERAL), !m_engine.m_bRunPCA);
            EXPECT_TRUE(orv::processState().m_bCanAbort);
            EXPECT_EQ(orv::processState().m_strAbortText, QString("Aborting..."));
        };
        m_steps.ended = [this] {
            m_order << "ended";
            EXPECT_FALSE(m_engine.isRunning());
            EXPECT_NE(m_engine.m_pProgress, nullptr);
        };
        m_steps.succeeded = [this] {
            m_order << "succeeded";
            EXPECT_NE(m_engine.m_pProgress, nullptr);
            EXPECT_GT(orv::processState().m_nRunning, 0);
        };
    }

    void expectAllEnded()
    {
        EXPECT_EQ(m_engine.m_pProgress, nullptr);
        EXPECT_FALSE(m_engine.isRunning());
        EXPECT_EQ(orv::processState().m_nRunning, 0);
    }

    LogCapture m_log;
    ScriptedEngine m_engine;
    RunSteps m_steps;
    QStringList m_order;
};

TEST_F(RunEngineTest, ASuccessCallsItsStepsInOrder)
{
    QString strFirst;
    m_engine.m_bSkipSavePrompt = true;
    m_engine.m_work = [&strFirst](CORVSpumKyvo& engine) { strFirst = engine.m_pProgress->statusMessage(); };
    EXPECT_EQ(runEngine(m_engine, m_steps), RunOutcome::Succeeded);
    EXPECT_EQ(m_order, (QStringList{"started", "ended", "succeeded"}));
    EXPECT_EQ(strFirst, QString("Starting Spectral Unmixing for sequence [seq %1 7]...?"));
    EXPECT_FALSE(m_engine.m_bSkipSavePrompt);
    EXPECT_TRUE(m_log.lines().empty());
    expectAllEnded();
}

TEST_F(RunEngineTest, AnErrorIsReportedWithItsText)
{
    m_engine.m_work = [](CORVSpumKyvo& engine) { engine.m_nError = 5; };
    EXPECT_EQ(runEngine(m_engine, m_steps), RunOutcome::Failed);
    EXPECT_EQ(m_order, (QStringList{"started", "ended"}));
    EXPECT_TRUE(m_log.has("SpumKyvo: Invalid data mask or matrix!", 3));
    expectAllEnded();
}

TEST_F(RunEngineTest, AnAbortEndsTheWorkerAndSaysSo)
{
    m_engine.m_nError = 4;
    m_engine.m_work = workForever;
    QTimer::singleShot(20, [] { orv::requestAbort(); });
    EXPECT_EQ(runEngine(m_engine, m_steps), RunOutcome::Aborted);
    EXPECT_EQ(m_engine.m_nAborts, 1);
    EXPECT_EQ(m_engine.m_nError, 4);
    EXPECT_EQ(m_order, (QStringList{"started"}));
    EXPECT_TRUE(m_log.has("SpumKyvo: unmixing aborted by user.", 16));
    expectAllEnded();
}

TEST_F(RunEngineTest, AnAbortedPCASaysSo)
{
    m_engine.m_bRunPCA = true;
    m_engine.m_work = workForever;
    QTimer::singleShot(20, [] { orv::requestAbort(); });
    EXPECT_EQ(runEngine(m_engine, m_steps), RunOutcome::Aborted);
    EXPECT_TRUE(m_log.has("SpumKyvo: PCA aborted by user.", 16));
    EXPECT_FALSE(m_engine.m_bRunPCA);
    expectAllEnded();
}

// A worker that is struck before it begins has not taken the request for a PCA back.
TEST_F(RunEngineTest, ARequestForAPCAEndsWithItsRun)
{
    m_engine.m_work = [](CORVSpumKyvo&) {};
    m_engine.m_bRunPCA = true;
    EXPECT_EQ(runEngine(m_engine), RunOutcome::Succeeded);
    EXPECT_FALSE(m_engine.m_bRunPCA);
}

TEST_F(RunEngineTest, APCAStartsAndEndsAsAnAnalysis)
{
    m_engine.m_bRunPCA = true;
    m_engine.m_work = [](CORVSpumKyvo& engine) { engine.m_bRunPCA = false; };
    EXPECT_EQ(runEngine(m_engine, m_steps), RunOutcome::Succeeded);
    expectAllEnded();
}

TEST_F(RunEngineTest, StepsMayBeLeftOut)
{
    m_engine.m_work = [](CORVSpumKyvo&) {};
    EXPECT_EQ(runEngine(m_engine), RunOutcome::Succeeded);
    expectAllEnded();
}

TEST_F(RunEngineTest, EventsFlowMeanwhile)
{
    std::atomic<bool> bDone{false};
    m_engine.m_work = [&bDone](CORVSpumKyvo&) {
        while (!bDone) {
            QThread::msleep(1);
        }
    };
    QTimer::singleShot(10, [&bDone] { bDone = true; });
    EXPECT_EQ(runEngine(m_engine, m_steps), RunOutcome::Succeeded);
}

TEST_F(RunEngineTest, AThrowingStepLeavesNoProgressBehind)
{
    m_engine.m_work = [](CORVSpumKyvo&) {};
    m_steps.succeeded = [] { throw 1; };
    EXPECT_THROW(runEngine(m_engine, m_steps), int);
    EXPECT_EQ(m_engine.m_pProgress, nullptr);
    CORVProcess::endLongProcess(LONGPROCESS_GENERAL);
}

TEST(RunEngineOnDataTest, AFailedAutomaticRunIsTold)
{
    LogCapture log;
    CORVSpumKyvo engine("an id");
    engine.m_eMode = RUNMODE_AUTOMATIC;
    EXPECT_EQ(runEngine(engine), RunOutcome::Failed);
    EXPECT_TRUE(log.has("SpumKyvo: Invalid data mask or matrix!", 3));
}

} // namespace
