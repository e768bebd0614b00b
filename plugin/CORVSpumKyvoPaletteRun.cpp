// SPDX-License-Identifier: GPL-3.0-or-later
// Starting an analysis, and its runs.
#include "plugin/CORVSpumKyvoPalette.h"

#include "plugin/ComboResultsList.h"
#include "plugin/warningsOfRun.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "engine/runTexts.h"
#include "host/CORVLog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVResultsTabControl.h"
#include "host/CORVSequenceDataset.h"
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
    steps.started = [this] {
        m_bLocked = true;
        Q_EMIT restoreWindows(false);
    };
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
        keepWarningsOfRun(*pEngine);
    };
    const RunOutcome outcome = runLocked(*pEngine, steps);
    m_pRunning = nullptr;
    if (outcome == RunOutcome::Succeeded && pEngine == m_pEngine) {
        m_pResultsTab->m_bResultModified = true;
        m_pResultsList->updateSavedResultsForSelSeqId(pEngine->m_strSeqId);
        fillResultsTree();
        tabWidget1->setCurrentIndex(1);
        m_pResults->m_strAutoName = m_pSavedResultsCB->currentText();
        showOutcome();
    }
    finishWaiting();
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
