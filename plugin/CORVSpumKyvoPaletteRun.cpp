// SPDX-License-Identifier: GPL-3.0-or-later
// Starting an analysis, and its runs.
#include "plugin/CORVSpumKyvoPalette.h"

#include "plugin/AnswerByNumber.h"
#include "plugin/ComboResultsList.h"
#include "plugin/JobThread.h"
#include "plugin/warningsOfRun.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "engine/runTexts.h"
#include "host/CORVLog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVResultsTabControl.h"
#include "host/CORVSequenceDataset.h"
#include "services/results/keptWarnings.h"
#include "spectra/logLine.h"
#include "storage/SavedResults.h"
#include "windows/SpumKyvoPCAWnd.h"

#include <QPointer>

#include <exception>
#include <utility>

namespace {

void tellFailure(const std::exception& failure)
{
    logLine(QStringLiteral("SpumKyvo: the analysis cannot go on: ") + QString::fromLocal8Bit(failure.what()),
            CORVLOG_ERROR);
}

} // namespace

void CORVSpumKyvoPalette::onClickUnmixSpectra()
{
    if (m_pRunning != nullptr) {
        return;
    }
    const QPointer<CORVSpumKyvoPalette> self(this);
    if (m_pEngine != nullptr) {
        m_pEngine->m_bSkipSavePrompt = false;
    }
    if (!askToSaveResults(true)) {
        CORVMessageBox::setCancelClicked(false);
        return;
    }
    // The question may have taken its time.
    if (!self || m_pEngine == nullptr || m_pEngine->isRunning()) {
        return;
    }
    if (!m_pEngine->applySelection(m_selection)) {
        logLine(QStringLiteral("SpumKyvo: image selection got adjusted"), CORVLOG_WARNING);
    }
    const bool bBatch = m_pResults->m_bBatchMode;
    const int nMode =
        bBatch ? static_cast<int>(RUNMODE_LIBRARY) : runModeFromText(m_pUnmixingMethodsCMB->currentText());
    if (bBatch) {
        giveBatchSpectra();
    }
    try {
        m_pEngine->prepareAnalysis(nMode, bBatch);
    } catch (const std::exception& failure) {
        tellFailure(failure);
    }
    if (self) {
        onAnalysisLeft();
    }
}

// What was announced while the cube was filled waits until here where no run has followed.
void CORVSpumKyvoPalette::onAnalysisLeft()
{
    if (m_pRunning == nullptr && !m_bUpdating) {
        finishWaiting();
    }
}

// Who asks for a run is made the current engine first: its window may be in use while the palette shows another
// sequence.
CORVSpumKyvo* CORVSpumKyvoPalette::engineToRun()
{
    CORVSpumKyvo* pEngine = qobject_cast<CORVSpumKyvo*>(sender());
    if (pEngine == nullptr) {
        pEngine = m_pEngine;
    }
    if (pEngine == nullptr || m_pRunning != nullptr || pEngine->isRunning()) {
        return nullptr;
    }
    if (pEngine != m_pEngine) {
        updateProperties(CORVSequenceDataset::getSequenceDataset(pEngine->m_strSeqId));
    }
    return pEngine == m_pEngine ? pEngine : nullptr;
}

void CORVSpumKyvoPalette::lock()
{
    setEnabled(false);
    m_bLocked = true;
    Q_EMIT restoreWindows(false);
}

void CORVSpumKyvoPalette::unlock()
{
    setEnabled(true);
    if (std::exchange(m_bLocked, false)) {
        Q_EMIT restoreWindows(true);
    }
}

void CORVSpumKyvoPalette::showOutcome()
{
    m_bPropertiesSeen = true;
    m_bSequenceValid = true;
    Q_EMIT updateValidity(this, true);
}

RunOutcome CORVSpumKyvoPalette::runLocked(CORVSpumKyvo& engine, RunSteps steps)
{
    m_pRunning = &engine;
    m_bRunningClosed = false;
    setEnabled(false);
    steps.started = [this] { lock(); };
    const std::function<void()> ended = std::move(steps.ended);
    steps.ended = [this, &ended] {
        unlock();
        if (ended && !m_bRunningClosed) {
            ended();
        }
    };
    const std::function<void()> succeeded = std::move(steps.succeeded);
    steps.succeeded = [this, &succeeded] {
        if (succeeded && !m_bRunningClosed) {
            succeeded();
        }
    };
    RunOutcome outcome = RunOutcome::Failed;
    try {
        outcome = runEngine(engine, steps);
    } catch (const std::exception& failure) {
        tellFailure(failure);
    }
    if (m_bRunningClosed) {
        // Windows of the engine may still be on the stack.
        outcome = RunOutcome::Aborted;
        engine.deleteLater();
    }
    m_bAborted = outcome == RunOutcome::Aborted;
    if (m_bAborted) {
        setEnabled(true);
        if (m_pEngine != nullptr) {
            showOutcome();
        }
    }
    unlock();
    return outcome;
}

void CORVSpumKyvoPalette::doJob(CORVSpumKyvo& engine, JobThread& job, const QString& strMessage, int nPatience)
{
    const QPointer<CORVSpumKyvoPalette> self(this);
    m_pRunning = &engine;
    m_bRunningClosed = false;
    m_pJob = &job;
    job.runToEnd(strMessage, nPatience, [this] { lock(); });
    if (!self) {
        return;
    }
    m_pJob = nullptr;
    unlock();
    if (self && m_bRunningClosed) {
        engine.deleteLater();
    }
}

bool CORVSpumKyvoPalette::lookForWarnings(CORVSpumKyvo& engine)
{
    const CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(engine.m_strSeqId);
    if (pSequence == nullptr) {
        return true;
    }
    const QPointer<CORVSpumKyvoPalette> self(this);
    QList<RunWarning> warnings;
    JobThread job([&](JobMonitor&) { warnings = warningsOfRun(engine, *pSequence); });
    doJob(engine, job, tr("Looking for what is to be said against the result"), m_nPatience);
    if (!self) {
        return false;
    }
    // Whoever aborts a batch here wants nothing of the sequence kept.
    m_bAborted = job.isStopped();
    // The result stands without them.
    if (job.reason().isEmpty()) {
        keepWarnings(warnings, engine);
    } else if (m_bAborted) {
        logLine(tr("The look for what is to be said against the result was aborted."), CORVLOG_PROGRESS);
    } else {
        logLine(QStringLiteral("SpumKyvo: the result could not be looked at for warnings: %1").arg(job.reason()),
                CORVLOG_WARNING);
    }
    return true;
}

void CORVSpumKyvoPalette::onFillingBegins(CORVSpumKyvo& engine)
{
    m_pRunning = &engine;
    m_bRunningClosed = false;
    lock();
}

void CORVSpumKyvoPalette::onFillingEnds(CORVSpumKyvo& engine, bool bAborted)
{
    m_bAborted = bAborted;
    unlock();
    m_pRunning = nullptr;
    if (m_bRunningClosed) {
        engine.deleteLater();
    } else if (bAborted && m_pEngine != nullptr) {
        showOutcome();
    }
}

void CORVSpumKyvoPalette::onRunUnmixing()
{
    const QPointer<CORVSpumKyvo> pEngine(engineToRun());
    if (!pEngine) {
        return;
    }
    pEngine->m_bSkipSavePrompt = false;
    if (!askToSaveResults(true)) {
        CORVMessageBox::setCancelClicked(false);
        return;
    }
    if (!pEngine || pEngine != m_pEngine || pEngine->isRunning()) {
        return;
    }
    RunSteps steps;
    steps.ended = [&pEngine] { pEngine->refreshDecayPanel(); };
    steps.succeeded = [&pEngine] {
        pEngine->updateConsoleSpectra();
        pEngine->updateUnmixedImages(true);
        pEngine->storeDecayState();
    };
    const RunOutcome outcome = runLocked(*pEngine, steps);
    if (outcome == RunOutcome::Succeeded && pEngine == m_pEngine) {
        CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(pEngine->m_strSeqId);
        if (AnswerByNumber* pAnswer = answerByNumber(); pAnswer != nullptr && pSequence != nullptr) {
            pAnswer->takeRun(*pSequence);
        }
        // What there is already is seen while the rest is looked for.
        fillResultsTree();
        if (!lookForWarnings(*pEngine)) {
            return;
        }
    }
    m_pRunning = nullptr;
    if (outcome == RunOutcome::Succeeded && pEngine == m_pEngine) {
        showNewResult();
    }
    finishWaiting();
}

void CORVSpumKyvoPalette::showNewResult()
{
    m_pResultsTab->m_bResultModified = true;
    m_pResultsList->updateSavedResultsForSelSeqId(m_pEngine->m_strSeqId);
    fillResultsTree();
    tabWidget1->setCurrentIndex(1);
    m_pResults->m_strAutoName = m_pSavedResultsCB->currentText();
    showOutcome();
}

void CORVSpumKyvoPalette::onRunPCA()
{
    const QPointer<CORVSpumKyvo> pEngine(engineToRun());
    if (!pEngine) {
        return;
    }
    const RunOutcome outcome = runLocked(*pEngine, RunSteps());
    m_pRunning = nullptr;
    if (outcome == RunOutcome::Succeeded && pEngine == m_pEngine) {
        tellNumberOfComponents(*pEngine);
        const QPointer<CORVSpumKyvoPalette> self(this);
        const QPointer<SpumKyvoPCAWnd> pWindow(new SpumKyvoPCAWnd(this));
        // It cumulates the numbers where they lie.
        XTNT::Vector<double> eigenvalues = pEngine->m_pcaResult.deepCopy();
        pWindow->setEigenvalues(eigenvalues);
        pWindow->exec();
        if (!self) {
            return;
        }
        delete pWindow;
        showOutcome();
    }
    finishWaiting();
}
