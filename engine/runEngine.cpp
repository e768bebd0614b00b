// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/runEngine.h"

#include "engine/CORVSpumKyvo.h"
#include "spectra/logLine.h"

#include "XTNT/xtnt_assert.h"
#include "host/CAutoProgressUpdate.h"
#include "host/CORVLog.h"
#include "host/CORVProcess.h"

#include <QCoreApplication>

namespace {

// Longest pause between two looks at the events, in milliseconds; the end of the thread ends a pause at once.
constexpr unsigned long pause = 5;

void call(const std::function<void()>& step)
{
    if (step) {
        step();
    }
}

// The long process of a run: announced at once, ended once, at the latest with the scope.
class LongProcess
{
public:
    LongProcess(CAutoProgressUpdate& progress, bool bPCA) : m_progress(progress)
    {
        CORVProcess::startLongProcess(0, bPCA ? LONGPROCESS_ANALYSIS : LONGPROCESS_GENERAL, true, "Aborting...");
    }
    ~LongProcess() { end(); }
    LongProcess(const LongProcess&) = delete;
    LongProcess& operator=(const LongProcess&) = delete;

    void end()
    {
        if (m_bEnded) {
            return;
        }
        m_bEnded = true;
        m_progress.stop();
        // Both kinds of run end as an analysis, but only the PCA starts as one: the host counts on it.
        CORVProcess::endLongProcess(LONGPROCESS_ANALYSIS);
    }

private:
    CAutoProgressUpdate& m_progress;
    bool m_bEnded = false;
};

// The engine's progress display for the time of a run.
class ProgressOf
{
public:
    ProgressOf(CORVSpumKyvo& engine, CAutoProgressUpdate& progress) : m_engine(engine)
    {
        m_engine.m_pProgress = &progress;
    }
    ~ProgressOf() { m_engine.m_pProgress = nullptr; }
    ProgressOf(const ProgressOf&) = delete;
    ProgressOf& operator=(const ProgressOf&) = delete;

private:
    CORVSpumKyvo& m_engine;
};

// True when the thread came to its end by itself.
bool waitForEnd(CORVSpumKyvo& engine)
{
    while (engine.isRunning()) {
        QCoreApplication::processEvents();
        if (CORVProcess::isProcessAborted()) {
            engine.abortRun();
            engine.wait();
            return false;
        }
        engine.wait(pause);
    }
    engine.wait();
    return true;
}

} // namespace

RunOutcome runEngine(CORVSpumKyvo& engine, const RunSteps& steps)
{
    XTNT_ASSERT(!engine.isRunning());
    const bool bPCA = engine.m_bRunPCA;
    engine.m_bSkipSavePrompt = false;

    CAutoProgressUpdate progress(
        QStringLiteral("Starting %1 for sequence [%2]...?").arg(engine.getAnalysisName(), engine.m_strSeqId));
    LongProcess process(progress, bPCA);
    call(steps.started);
    const ProgressOf progressOfRun(engine, progress);
    progress.start(QThread::InheritPriority);
    engine.start(QThread::InheritPriority);
    if (!engine.isRunning() && !engine.isFinished()) {
        // The system gives no thread: too many processes, or no memory for a stack.
        logLine("SpumKyvo: there is no thread to be had for the analysis!", CORVLOG_ERROR);
        engine.m_nError = RUNERROR_MEMORY;
    }

    const bool bEnded = waitForEnd(engine);
    // A worker that was struck at its very start has not taken the request back.
    engine.m_bRunPCA = false;
    if (!bEnded) {
        engine.reportStatus(bPCA ? "PCA aborted by user." : "unmixing aborted by user.", CORVLOG_PROGRESS);
        return RunOutcome::Aborted;
    }
    call(steps.ended);
    // Whoever shows the result of a PCA does so in a window that is waited for, so its process is over before that.
    if (bPCA) {
        process.end();
    }
    if (engine.hasError()) {
        engine.reportStatus(engine.getErrorText(), CORVLOG_ERROR);
        return RunOutcome::Failed;
    }
    call(steps.succeeded);
    return RunOutcome::Succeeded;
}
