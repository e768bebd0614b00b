// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/runEngine.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/LogCapture.h"
#include "engine/TestSequence.h"

#include "XTNT/xtnt_parallel.h"
#include "host/CAutoProgressUpdate.h"
#include "host/CORVProcess.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvutils/LogSinks.h"
#include "platform/orvutils/ProcessControl.h"

#include <QTimer>

#include <gtest/gtest.h>

#include <atomic>
#include <string>

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
            m_nRunningAtSuccess = orv::processState().m_nRunning;
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
    int m_nRunningAtSuccess = -1;
};

TEST_F(RunEngineTest, ASuccessCallsItsStepsInOrder)
{
    QString strFirst;
    m_engine.m_bSkipSavePrompt = true;
    m_engine.m_work = [&strFirst](CORVSpumKyvo& engine) { strFirst = engine.m_pProgress->statusMessage(); };
    EXPECT_EQ(runEngine(m_engine, m_steps), RunOutcome::Succeeded);
    EXPECT_EQ(m_order, (QStringList{"started", "ended", "succeeded"}));
    EXPECT_EQ(m_nRunningAtSuccess, 1);
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

TEST_F(RunEngineTest, AThrowingStepLeavesNothingBehind)
{
    m_engine.m_work = [](CORVSpumKyvo&) {};
    for (std::function<void()> RunSteps::*pStep : {&RunSteps::started, &RunSteps::ended, &RunSteps::succeeded}) {
        for (const bool bPCA : {false, true}) {
            RunSteps steps;
            steps.*pStep = [] { throw 1; };
            m_engine.m_bRunPCA = bPCA;
            EXPECT_THROW(runEngine(m_engine, steps), int);
            expectAllEnded();
        }
    }
}

// A PCA shows its result in a window, and an error of it is told, once nothing runs any more; an unmixing is shown
// while its progress is.
class EndOfRunTest : public RunEngineTest
{
protected:
    EndOfRunTest()
    {
        m_steps.started = {};
        m_steps.succeeded = [this] { m_order << "succeeded"; };
        m_nObserver = orv::addProcessObserver([this](const orv::ProcessState& state) {
            if (state.m_nRunning == 0) {
                m_order << "process over";
            }
        });
        m_nSink = orv::addLogSink([this](const orv::LogRecord& line) {
            if (line.m_nLevel > 1) {
                m_order << line.m_strMessage;
            }
        });
    }
    ~EndOfRunTest() override
    {
        orv::removeLogSink(m_nSink);
        orv::removeProcessObserver(m_nObserver);
    }
    void run(bool bPCA, int nError)
    {
        m_engine.m_bRunPCA = bPCA;
        m_engine.m_work = [nError](CORVSpumKyvo& engine) { engine.m_nError = nError; };
        runEngine(m_engine, m_steps);
    }
    std::string order() const { return m_order.join(", ").toStdString(); }

    int m_nObserver = 0;
    int m_nSink = 0;
};

TEST_F(EndOfRunTest, OfAPCA)
{
    run(true, 0);
    EXPECT_EQ(order(), "ended, process over, succeeded");
}

TEST_F(EndOfRunTest, OfAPCAWithAnError)
{
    run(true, 5);
    EXPECT_EQ(order(), "ended, process over, SpumKyvo: Invalid data mask or matrix!");
}

TEST_F(EndOfRunTest, OfAnUnmixing)
{
    run(false, 0);
    EXPECT_EQ(order(), "ended, succeeded, process over");
}

TEST_F(EndOfRunTest, OfAnUnmixingWithAnError)
{
    run(false, 5);
    EXPECT_EQ(order(), "ended, SpumKyvo: Invalid data mask or matrix!, process over");
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
